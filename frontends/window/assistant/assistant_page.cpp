#include "window/assistant/assistant_page.h"

#include <utility>

#include <QAccessible>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "window/assistant/page_area.h"
#include "window/assistant/rows_table.h"
#include "window/assistant/texts.h"

namespace corvane::window::assistant {

AssistantPage::AssistantPage(SetupPage page, Desk& desk) : page_(page), desk_(desk) {
  setObjectName("setupPage" + QString::number(static_cast<int>(page)));
  auto* content = new QWidget;
  rows_ = new QVBoxLayout(content);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins({});
  area_ = new PageArea(*content);
  layout->addWidget(area_, 1);
  fault_ = NewNote({}, 0, "setupFault");
  QFont bold = fault_->font();
  bold.setBold(true);
  fault_->setFont(bold);
  const QMargins inside = rows_->contentsMargins();
  fault_->setContentsMargins(inside.left(), 0, inside.right(), 0);
  fault_->hide();
  layout->addWidget(fault_);
}

void AssistantPage::initializePage() {
  fault_->hide();
  Show();
  ShowAnswers();
}

void AssistantPage::FocusFirst() {
  if (QWidget* const first = First(); first != nullptr) first->setFocus(Qt::TabFocusReason);
}

bool AssistantPage::validatePage() {
  if (desk_.trying) return false;
  TakeAll();
  const auto faults = desk_.app.setup().FaultsOf(desk_.plan, page_);
  fault_->setVisible(!faults.empty());
  if (!faults.empty()) {
    // What was tried may have been something else.
    ShowAnswers();
    ShowFault(faults.front());
    return false;
  }
  const SetupPlan entered = desk_.plan;
  CompletePlan(desk_.plan, page_);
  // Who comes back finds it as it was understood.
  if (entered != desk_.plan) Show();
  return true;
}

void AssistantPage::TakeAll() {
  const auto tables = findChildren<QTableWidget*>();
  for (QTableWidget* each : tables) {
    if (auto* const table = dynamic_cast<RowsTable*>(each)) table->TakeOpenCell();
  }
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

void AssistantPage::GoTo(const SetupFault& fault) {
  if (const auto lead = leads_.find(fault.field); lead != leads_.end()) lead->second->setFocus();
}

void AssistantPage::Reveal(QWidget& part) {
  // Behind the layout, which gives it its lines.
  desk_.loop.Post([this, &part] { area_->Reveal(part); });
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

QLineEdit* AssistantPage::AddFolder(const FolderTexts& texts, SetupField field) {
  auto* form = new QFormLayout;
  QLineEdit* const folder = AddFolderField(*form, texts, this, [this] { return Say(kChooseAFolder); });
  rows().addLayout(form);
  LeadTo(field, *folder);
  return folder;
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
    fault_->hide();
    const auto keep = [this, kept, attempt, plan = desk_.plan] {
      SetupAnswer found = attempt(plan);
      desk_.tried.*kept = found;
      return found;
    };
    desk_.run_try(keep, [this, answer](const QString& text) {
      answer->setText(text);
      Reveal(*answer);
    });
  });
}

}  // namespace corvane::window::assistant
