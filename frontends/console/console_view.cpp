#include "console_view.h"

#include <algorithm>
#include <array>

#include "base/numbers.h"

namespace corvane::console {
namespace {

constexpr std::int64_t kProgressInterval = 100;  ///< milliseconds

/// Status lines about steps that say nothing afterwards.
constexpr std::array<std::string_view, 2> kDetails = {"Get date in: ", "pause "};

/// How the line about the bytes of a transfer ends.
constexpr std::string_view kRate = " bytes/sec]";

/// `text` with each run of digits as "0" and each run of letters as "a": dates of one pattern have one shape.
std::string Shape(std::string_view text) {
  std::string shape;
  for (const char character : text) {
    char kind = character;
    if (character >= '0' && character <= '9') kind = '0';
    if ((character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z')) kind = 'a';
    const bool repeated = !shape.empty() && shape.back() == kind && (kind == '0' || kind == 'a');
    if (!repeated) shape += kind;
  }
  return shape;
}

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
  const std::string& text = form_.Lbl_Status.text();
  if (text.empty()) return;
  if (IsDetail(text)) {
    ShowProgress();
  } else if (output_.quiet() && IsError(text)) {
    output_.Error(text);
  } else {
    output_.Line(text);
  }
}

bool ConsoleView::IsError(std::string_view text) const {
  return link_.HalvexError || link_.Timeout || text.starts_with(kPortDidNotOpen);
}

void ConsoleView::OnTrace(std::size_t first_row) {
  for (auto row = static_cast<std::int64_t>(first_row); row < form_.Lst_Debug.count(); ++row) {
    const std::string& text = form_.Lst_Debug.text(row);
    if (!text.starts_with("Status: ")) output_.Line("  " + text);
  }
}

bool ConsoleView::IsDetail(std::string_view text) const {
  const auto begins = [text](std::string_view start) { return text.starts_with(start); };
  return std::any_of(kDetails.begin(), kDetails.end(), begins) || text.ends_with(kRate) || IsReadingDate(text);
}

bool ConsoleView::IsReadingDate(std::string_view text) const {
  return link_.State == kDownload && Shape(text) == Shape(form_.Lbl_DateExample.text());
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
