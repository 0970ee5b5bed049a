#include "trace/summary.h"

#include "base/format.h"
#include "base/text.h"

namespace corvane {
namespace {

constexpr std::string_view kColumns =
    "Mode, Tries, PC.Date, Command, Version, SiteID, NumFixed, NumFree, Lines, HV.Date, Battery, Ambient, FS, "
    "LineCount, Ok/Error";
constexpr std::size_t kHeaderColumns = 9;  // Version to FS
constexpr std::int64_t kShortestFile = 10;

}  // namespace

DownloadSummary::DownloadSummary(Form& av_Form, const LinkState& av_Link, const DownloadState& av_Download,
                                 const RunFlags& av_Flags, EventLoop& av_Loop, Trace& av_Trace)
    : form_(av_Form), link_(av_Link), download_(av_Download), flags_(av_Flags), loop_(av_Loop), trace_(av_Trace) {}

void DownloadSummary::WriteSummary() {
  if (download_.HeaderLine.empty()) return;
  const auto existing = ExamineFile(path_);
  const bool append = existing && existing->size > kShortestFile;
  OutputFile file;
  Status status = append ? file.OpenForAppending(path_) : file.Create(path_);
  std::string text;
  if (!append) text = std::string(kColumns) + std::string(kLineBreak);
  text += Values() + std::string(kLineBreak);
  if (status.ok()) status = file.Write(text);
  if (!status.ok()) trace_.AErrorReport("Summary not written: " + status.text());
}

std::string DownloadSummary::Values() const {
  std::string line = flags_.automatic_run ? "Auto" : "Manual";
  line += ", " + form_.Lbl_Try.text() + "/" + form_.Txt_MaxRetries.text();
  line += ", " + GeneralDate(loop_.Now());
  line += ", " + Visible(link_.CurrentCommand);
  const auto items = Split(download_.HeaderLine, ',');
  for (std::size_t item = 0; item < kHeaderColumns; ++item) {
    line += ", ";
    if (item < items.size()) line += items[item];
  }
  line += ", " + std::to_string(link_.LineCount);
  line += ", " + (link_.HalvexError ? link_.ResultTextOf(link_.ResultCode) : std::string("Ok"));
  return line;
}

}  // namespace corvane
