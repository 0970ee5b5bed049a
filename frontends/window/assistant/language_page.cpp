#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "window/assistant/pages.h"
#include "window/assistant/texts.h"
#include "window/assistant/widgets.h"

namespace corvane::window::assistant {

LanguagePage::LanguagePage(Desk& desk) : AssistantPage(SetupPage::Language, desk) {
  AddIntroduction(
      "This assistant asks for what a network needs, a page at a time. Nothing is changed before Finish on "
      "the last page; Back and Cancel lose nothing. It can be run again at any time.",
      kLanguageIntro);
  selector_ = new QComboBox;
  selector_->setObjectName("setupLanguage");
  BeginAt(*selector_);
  auto* form = new QFormLayout;
  form->addRow(NewCaption("&Language:", kLanguage, *selector_), selector_);
  rows().addLayout(form);
  rows().addStretch(1);
  rows().addWidget(
      NewNote("No base station at hand? Practise with a simulated network: it has a folder of its own, "
              "and nothing of it stays.",
              kPractiseIntro, "practiseIntroduction"));
  QPushButton* const practise = NewPush("&Practise with a simulated network", kPractise, "setupPractise");
  rows().addWidget(practise, 0, Qt::AlignLeft);
  connect(selector_, &QComboBox::activated, this, [this] {
    TakeAll();
    if (language_chosen) language_chosen(this->desk().plan.language_file);
  });
  connect(practise, &QPushButton::clicked, this, [this] {
    if (practice_wanted) practice_wanted();
  });
}

void LanguagePage::Show() {
  selector_->clear();
  for (const SetupLanguage& language : languages_) {
    selector_->addItem(QString::fromStdString(language.name), QString::fromStdString(language.file));
  }
  const QString present = QString::fromStdString(desk().plan.language_file);
  if (selector_->findData(present) < 0 && !present.isEmpty()) selector_->addItem(present, present);
  selector_->setCurrentIndex(selector_->findData(present));
}

void LanguagePage::Take() {
  if (selector_->currentIndex() >= 0) desk().plan.language_file = selector_->currentData().toString().toStdString();
}

}  // namespace corvane::window::assistant
