#include "trace/summary.h"

#include "base/format.h"
#include "base/outside_text.h"
#include "base/text.h"

namespace corvane {
namespace {

constexpr std::string_view kColumns =
    "Mode, Tries, PC.Date, Command, Version, SiteID, NumFixed, NumFree, Lines, HV.Date, Battery, Ambient, FS, "
    "LineCount, Ok/Error";
constexpr std::size_t kHeaderColumns = 9;  // Version to FS
constexpr std::int64_t kShortestFile = 10;

}  // namespace

void DownloadSummary::WriteSummary() {
  if (p_.download.HeaderLine.empty() || p_.download.Gap) return;
  p_.trace.GoOver(path_);
  const auto existing = ExamineFile(path_);
  const bool append = existing && existing->size > kShortestFile;
  OutputFile file;
  Status status = append ? file.OpenForAppending(path_) : file.Create(path_);
  std::string text;
  if (!append) text = std::string(kColumns) + std::string(kLineBreak);
  text += Values() + std::string(kLineBreak);
  if (status.ok()) status = file.Write(text);
  if (!status.ok()) p_.trace.AErrorReport("Summary not written: " + status.text());
}

std::string DownloadSummary::Values() const {
  std::string line = p_.flags.automatic_run ? "Auto" : "Manual";
  line += ", " + SpreadsheetField(p_.form.Lbl_Try.text() + "/" + p_.form.Txt_MaxRetries.text());
  line += ", " + GeneralDate(p_.loop.Now());
  line += ", " + SpreadsheetField(Visible(p_.link.CurrentCommand));
  const auto items = Split(p_.download.HeaderLine, ',');
  for (std::size_t item = 0; item < kHeaderColumns; ++item) {
    line += ", ";
    if (item < items.size()) line += SpreadsheetField(items[item]);
  }
  line += ", " + std::to_string(p_.link.LineCount);
  line += ", " + (p_.link.HalvexError ? p_.link.ResultTextOf(p_.link.ResultCode) : std::string("Ok"));
  return line;
}

}  // namespace corvane
