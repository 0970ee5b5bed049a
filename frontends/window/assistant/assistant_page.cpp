#include "window/assistant/assistant_page.h"

#include <utility>

#include <QAccessible>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "window/assistant/page_area.h"
#include "window/assistant/texts.h"
#include "window/assistant/widgets.h"

namespace corvane::window::assistant {

AssistantPage::AssistantPage(SetupPage page, Desk& desk) : page_(page), desk_(desk) {
  setObjectName("setupPage" + QString::number(static_cast<int>(page)));
  auto* content = new QWidget;
  rows_ = new QVBoxLayout(content);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins({});
  layout->addWidget(new PageArea(*content), 1);
  fault_ = NewNote({}, 0, "setupFault");
  QFont bold = fault_->font();
  bold.setBold(true);
  fault_->setFont(bold);
  fault_->hide();
  layout->addWidget(fault_);
}

void AssistantPage::initializePage() {
  fault_->hide();
  Show();
  ShowAnswers();
  // The wizard gives the focus away behind this.
  desk_.loop.Post([this] {
    if (QWidget* const first = First(); isVisible() && first != nullptr) first->setFocus(Qt::TabFocusReason);
  });
}

bool AssistantPage::validatePage() {
  if (desk_.trying) return false;
  TakeAll();
  const auto faults = desk_.app.setup().FaultsOf(desk_.plan, page_);
  fault_->setVisible(!faults.empty());
  if (!faults.empty()) {
    ShowFault(faults.front());
    return false;
  }
  CompletePlan(desk_.plan, page_);
  return true;
}

void AssistantPage::TakeAll() {
  const SetupPlan before = desk_.plan;
  Take();
  ForgetOutdated(desk_.tried, before, desk_.plan);
}

void AssistantPage::ShowFault(const SetupFault& fault) {
  fault_->setText(QString::fromStdString(fault.text));
  fault_->show();
  GoTo(fault);
  QAccessibleEvent alert(fault_, QAccessible::Alert);
  QAccessible::updateAccessibility(&alert);
}

void AssistantPage::ShowAnswers() {
  for (const auto& [label, kept] : answers_) {
    const std::optional<SetupAnswer>& answer = desk_.tried.*kept;
    label->setText(answer ? QString::fromStdString(answer->text) : QString());
  }
}

void AssistantPage::AddIntroduction(const QString& text, int text_id) {
  rows_->addWidget(NewNote(text, text_id, ("introduction" + QByteArray::number(text_id)).constData()));
}

void AssistantPage::AddTry(QVBoxLayout& column, QPushButton& button, const char* answer_name,
                           std::optional<SetupAnswer> SetupTried::*kept,
                           std::function<SetupAnswer(const SetupPlan& plan)> attempt) {
  QLabel* const answer = NewNote({}, 0, answer_name);
  answers_.emplace_back(answer, kept);
  auto* row = new QHBoxLayout;
  row->addWidget(&button, 0, Qt::AlignTop);
  row->addWidget(answer, 1);
  column.addLayout(row);
  connect(&button, &QPushButton::clicked, this, [this, answer, kept, attempt = std::move(attempt)] {
    TakeAll();
    const auto keep = [this, kept, attempt, plan = desk_.plan] {
      SetupAnswer found = attempt(plan);
      desk_.tried.*kept = found;
      return found;
    };
    desk_.run_try(keep, [answer](const QString& text) { answer->setText(text); });
  });
}

}  // namespace corvane::window::assistant
