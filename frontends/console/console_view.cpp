#include "console_view.h"

#include "base/numbers.h"
#include "trace/trace.h"

namespace corvane::console {
namespace {

constexpr std::int64_t kProgressInterval = 100;  ///< milliseconds

}  // namespace

void ConsoleView::ControlChanged(const Control& control, Aspect aspect, std::size_t row) {
  if (&control == &form_.Lbl_Status && aspect == Aspect::Value) OnStatus();
  if (&control == &form_.Lst_Debug && aspect == Aspect::Rows && verbose_) OnTrace(row);
  if (&control == &form_.Bar_Download || &control == &form_.Bar_Unit) ShowProgress();
  if (&control == &form_.Lbl_NextDownload && shows_next_download_) {
    output_.Line("Next download: " + form_.Lbl_NextDownload.text());
  }
  if (on_change) on_change(control);
}

void ConsoleView::OnStatus() {
  const Label& status = form_.Lbl_Status;
  if (status.text().empty()) return;
  if (status.status_kind() == StatusKind::Detail || (hides_steps && !verbose_)) {
    ShowProgress();
  } else if (status.status_kind() == StatusKind::Error && output_.quiet()) {
    output_.Error(status.text());
  } else {
    output_.Line(status.text());
  }
}

void ConsoleView::OnTrace(std::size_t first_row) {
  for (auto row = static_cast<std::int64_t>(first_row); row < form_.Lst_Debug.count(); ++row) {
    if (form_.Lst_Debug.number(row) != kStatusRow) output_.Line("  " + form_.Lst_Debug.text(row));
  }
}

void ConsoleView::ShowProgress() {
  if (!output_.shows_progress()) return;
  const std::int64_t now = loop_.MonotonicMilliseconds();
  if (now - last_progress_ < kProgressInterval) return;
  last_progress_ = now;
  const ProgressBar& bar = form_.Bar_Download.value() > 0 ? form_.Bar_Download : form_.Bar_Unit;
  std::string text = FixedText(bar.maximum() > 0 ? 100 * bar.value() / bar.maximum() : 0, 0) + "%  ";
  const std::int64_t unit = form_.Lst_Units.current();
  if (unit >= 0) text += form_.Lst_Units.text(unit) + "  ";
  output_.Progress(text + form_.Lbl_Status.text());
}

}  // namespace corvane::console
