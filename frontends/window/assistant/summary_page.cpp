#include <QCheckBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QVBoxLayout>

#include "window/assistant/pages.h"
#include "window/assistant/texts.h"
#include "window/assistant/widgets.h"

namespace corvane::window::assistant {
namespace {

constexpr int kShownLines = 8;

}  // namespace

SummaryPage::SummaryPage(Desk& desk) : AssistantPage(SetupPage::Summary, desk) {
  AddIntroduction("This is put in and saved when you press Finish. Nothing was changed until now.", kSummaryIntro);
  summary_ = new QPlainTextEdit;
  summary_->setObjectName("setupSummary");
  summary_->setReadOnly(true);
  summary_->setTabChangesFocus(true);
  summary_->setMinimumHeight(kShownLines * summary_->fontMetrics().lineSpacing());
  rows().addWidget(summary_, 1);
  not_done_ = NewNote({}, 0, "setupNotDone");
  rows().addWidget(not_done_);
  collect_ = NewTick("&Collect now", kCollect, "setupCollect");
  collect_->setChecked(true);
  rows().addWidget(collect_);
}

bool SummaryPage::Collects() const {
  return collect_->isEnabled() && collect_->isChecked();
}

void SummaryPage::ShowNotPutIn(int text_id) {
  ShowFault({SetupPage::Summary, SetupField::Page, 0, Say(text_id).toStdString()});
}

void SummaryPage::Show() {
  QStringList lines;
  for (const auto& [what, value] : SummaryOf(desk().plan, desk().app.setup().phrases())) {
    lines << QString::fromStdString(what + ": " + value);
  }
  summary_->setPlainText(lines.join('\n'));
  QStringList open = {Say(kNotDone)};
  for (const std::string& sentence : NotDone(desk().plan, desk().tried, desk().app.setup().phrases())) {
    open << QString::fromUtf8("\u2022 ") + QString::fromStdString(sentence);
  }
  not_done_->setText(open.size() > 1 ? open.join('\n') : Say(kAllDone));
  collect_->setEnabled(!desk().plan.units.empty());
}

}  // namespace corvane::window::assistant
