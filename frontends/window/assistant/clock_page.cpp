#include <algorithm>

#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "window/assistant/pages.h"
#include "window/assistant/texts.h"
#include "window/assistant/widgets.h"

namespace corvane::window::assistant {

ClockPage::ClockPage(Desk& desk) : AssistantPage(SetupPage::Clock, desk) {
  AddIntroduction(
      "Ask one unit for its clock: it shows that radio, relay and ID are right. A clock that is off would "
      "give every reading a wrong time; it can be set here.",
      kClockIntro);
  unit_ = new QComboBox;
  unit_->setObjectName("setupClockUnit");
  auto* form = new QFormLayout;
  form->addRow(NewCaption("&Unit:", kClockUnit, *unit_), unit_);
  rows().addLayout(form);
  ask_ = NewPush("&Ask for the clock", kAskClock, "setupAskClock");
  set_ = NewPush("&Set the clock", kSetClock, "setupSetClock");
  AddTry(rows(), *ask_, "setupClockAnswer", &SetupTried::clock,
         [this](const SetupPlan& plan) { return Note(this->desk().app.setup().AskClock(plan, Chosen())); });
  AddTry(rows(), *set_, "setupClockSet", &SetupTried::clock,
         [this](const SetupPlan& plan) { return Note(this->desk().app.setup().SetClock(plan, Chosen())); });
  none_ = NewNote({}, 0, "setupNoUnit");
  rows().addWidget(none_);
  rows().addStretch(1);
  connect(unit_, &QComboBox::activated, this, [this] {
    this->desk().tried.clock.reset();
    is_off_ = false;
    set_->hide();
  });
}

QWidget* ClockPage::First() {
  return ask_->isEnabled() ? ask_ : nullptr;
}

void ClockPage::Show() {
  const QVariant before = unit_->currentData();
  unit_->clear();
  int place = 0;
  for (const SetupUnit& unit : desk().plan.units) {
    ++place;
    if (unit.get_from == kFromRadio) unit_->addItem(QString::fromStdString(unit.name), place);
  }
  unit_->setCurrentIndex(std::max(unit_->findData(before), unit_->count() > 0 ? 0 : -1));
  ask_->setEnabled(unit_->count() > 0);
  none_->setText(unit_->count() > 0 ? QString() : Say(kNoUnit));
  is_off_ = is_off_ && desk().tried.clock.has_value();
  set_->setVisible(is_off_);
}

std::size_t ClockPage::Chosen() const {
  return static_cast<std::size_t>(unit_->currentData().toInt());
}

SetupAnswer ClockPage::Note(const SetupClock& clock) {
  is_off_ = clock.is_off;
  set_->setVisible(is_off_);
  return clock;
}

}  // namespace corvane::window::assistant
