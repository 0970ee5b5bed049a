#include "link/capture.h"

#include <algorithm>
#include <utility>

#include "base/file_numbers.h"
#include "base/format.h"
#include "base/numbers.h"
#include "base/text.h"
#include "data/raw_file.h"
#include "data/raw_items.h"
#include "data/raw_repair.h"

namespace corvane {
namespace {

constexpr std::size_t kFewestHeaderItems = 6;
constexpr std::int64_t kShortestRawFile = 20;
constexpr std::int64_t kSyncMilliseconds = 5000;
constexpr std::string_view kStoredAllTheSame =
    ". Its readings are stored there. If the unit was renumbered or exchanged, enter its new ID or move that file away";
constexpr std::string_view kRefused =
    ". Nothing of it is stored. If the unit was renumbered or exchanged, enter its new ID or move that file away: "
    "until then no download of this unit is stored";

}  // namespace

void DownloadCapture::SaveToFile() {
  SplitLine(p_.link.ReplyLine, line_);
  if (p_.link.LineCount == 1) {
    TakeHeader();
  } else {
    TakeDataLine();
  }
  p_.link.ReplyLine.clear();
}

void DownloadCapture::TraceItems(std::string_view as_What) {
  if (p_.trace.TracesDecisions()) p_.trace.TraceDecision(std::string(as_What) + std::string(line_.items_text));
}

void DownloadCapture::TakeHeader() {
  if (line_.items.size() < kFewestHeaderItems) {
    Abort("Header - wrong number of items>" + std::string(line_.items_text));
  } else if (StartsWithNoCase(line_.items_text, "A")) {
    // Intended: the headers of these units never begin with "A"; the words of the message are the system's own.
    Abort("Header - no 'A' at beginning>" + std::string(line_.items_text));
  } else {
    AcceptHeader();
  }
  TraceItems("Header line> ");
}

void DownloadCapture::AcceptHeader() {
  TraceItems("HEADER> ");
  if (RefuseOtherUnit()) return;
  p_.download.HeaderLine = line_.items_text;
  p_.download.HeaderTime = p_.loop.NowUtc();
  p_.download.FramedHeader = p_.link.ReplyLine;
  p_.form.Lbl_HeaderLine.SetText(p_.download.HeaderLine);
  const std::int64_t fixed = LeadingInteger(line_.items[header_item::kFixed]);
  const std::int64_t free = LeadingInteger(line_.items[header_item::kSensors]);
  p_.download.Tally.announced = LeadingInteger(line_.items[header_item::kReadings]);
  p_.link.LinesExpected = p_.download.Tally.announced + 1;
  p_.trace.TraceDecision("Header line has " + std::to_string(line_.items.size()) + " items");
  p_.download.ItemsPerLine = fixed + free;
  p_.trace.TraceDecision("Version:" + std::string(line_.items[header_item::kVersion]) + " SiteID:" +
                         std::string(line_.items[header_item::kSiteID]) + " Fixed:" + std::to_string(fixed) +
                         " Free:" + std::to_string(free) + " LinesExpected: " + std::to_string(p_.link.LinesExpected));
  if (p_.link.LinesExpected < 1) {
    p_.trace.AErrorReport("Lines expected=0> " + p_.download.HeaderLine);
  } else {
    p_.bars.Download.Initialise(p_.link.LinesExpected);
  }
  auto& gap = p_.download.Gap;
  if (gap && p_.download.Tally.announced > gap->most_lines) {
    gap->too_many = true;
    return EndEarly();
  }
  OpenOutputFile();
}

bool DownloadCapture::RefuseOtherUnit() {
  const std::string& file = p_.download.OutputFileName;
  const auto& own = p_.download.OwnSiteID;
  const std::string other(line_.items[header_item::kSiteID]);
  const std::string asked = std::to_string(p_.download.AskedID);
  const bool is_asked = IsSameSiteID(other, asked);
  // Where no header tells whose file it is, only what the asked unit itself sends may come between its readings.
  if (own ? IsSameSiteID(*own, other) : is_asked || !p_.download.Gap) return false;
  const bool refused = (GoesOn(p_.form, p_.flags) || p_.download.Gap) && !is_asked;
  const std::string report = "The unit answers with SiteID \"" + other + "\", but " +
                             (own ? "line 1 of " + file + " has \"" + *own : "unit \"" + asked) + "\"" +
                             (own ? "" : " was asked") + std::string(refused ? kRefused : kStoredAllTheSame);
  p_.download.Tally.AddProblem("SiteID \"" + other + "\" instead of \"" + own.value_or(asked) +
                               "\": enter the unit's new ID" + (p_.download.Gap ? "" : " or move away " + file));
  if (std::exchange(other_unit_named_[file], p_.download.Round) == p_.download.Round) {
    p_.trace.TraceDecision(report);
  } else {
    p_.trace.AErrorReport(report);
    p_.trace.Status(report, StatusKind::Error);
  }
  if (refused) StopUnit();
  return refused;
}

void DownloadCapture::TakeDataLine() {
  if (!p_.download.SavingData) {
    TraceItems("No save:");
  } else if (!p_.download.Output.IsOpen()) {
    Abort("Linecount=" + std::to_string(p_.link.LineCount) + " but output file not opened" +
          std::string(line_.items_text));
    if (!GoesOn(p_.form, p_.flags)) p_.link.UserCancel = true;
  } else if (EqualsNoCase(line_.items_text, "OK")) {
    TakeOk();
  } else if (static_cast<std::int64_t>(line_.items.size()) == p_.download.ItemsPerLine && line_.checksum_good) {
    TakeReading();
  } else {
    RejectLine();
  }
}

void DownloadCapture::TakeOk() {
  p_.summary.WriteSummary();
  CompareWithHeader();
  p_.bad_lines.EndWell();
  p_.trace.TraceDecision("Received OK - close output file");
  CloseOutputFile();
  p_.exchange.SetStateFinished();
}

void DownloadCapture::CompareWithHeader() {
  DownloadTally& tally = p_.download.Tally;
  const bool announced = tally.announced > 0;
  if (announced ? tally.arrived >= tally.announced : tally.rejected == 0) return;
  const std::string lines = announced
                                ? std::to_string(tally.arrived) + " of " + std::to_string(tally.announced) + " lines"
                                : std::to_string(tally.rejected) + " line(s) lost behind an overrun";
  p_.trace.AErrorReport("Lines are missing in " + p_.download.OutputFileName + ": " + lines);
  tally.AddProblem(lines);
}

void DownloadCapture::TakeReading() {
  const auto when = ParseReadingDate(line_.items[reading_item::kDate]);
  if (!when) {
    if (PassOver("incorrect date")) return;
    Abort("No SaveToFile - incorrect date>" + std::string(line_.items_text));
    return;
  }
  if (p_.download.Gap && *when >= p_.download.Gap->to) return EndBehindGap(*when);
  const bool traced = p_.trace.TracesDecisions();
  if (traced) TraceItems("SaveToFile LineCount:" + std::to_string(p_.link.LineCount) + ">");
  if (*when <= p_.download.LastDate) {
    if (traced) TraceItems("SaveToFile - skipping because date after: " + GeneralDate(p_.download.LastDate) + " |");
  } else if (p_.download.StoredAhead.contains(line_.items_text)) {
    if (traced) TraceItems("SaveToFile - skipping because the file holds it |");
  } else if (!p_.download.Gap && TakeFutureReading(*when)) {
    return;
  } else if (!StoreReading()) {
    return;
  }
  ++p_.download.Tally.arrived;
  if (p_.form.Chk_ShowReply.ticked()) ShowProgress(*when);
}

void DownloadCapture::EndBehindGap(DateTime av_When) {
  TraceItems("Behind the gap: ");
  // A date that cannot be right says nothing about where the unit has got to.
  if (av_When - std::max(p_.loop.Now(), p_.download.Gap->to) > kFarAhead) {
    ++p_.download.Tally.rejected;
    return;
  }
  CloseOutputFile();
  if (p_.link.HalvexError) return;
  p_.download.Gap->reached_the_end = true;
  EndEarly();
}

void DownloadCapture::EndEarly() {
  StopUnit();
  p_.link.HalvexError = true;
  p_.link.ResultCode = kCancelledResult;
}

bool DownloadCapture::StoreReading() {
  output_line_ = line_.items_text;
  output_line_ += kLineBreak;
  const Status written = p_.download.Output.Write(output_line_);
  if (!written.ok()) {
    FailWriting(written.text());
    return false;
  }
  ++p_.download.Tally.stored;
  p_.bad_lines.TakeGood(line_.items_text);
  if (!sync_timer_->Running()) sync_timer_->Start(kSyncMilliseconds);
  return true;
}

void DownloadCapture::ShowProgress(DateTime av_When) {
  p_.bars.Download.SetValue(p_.link.LineCount);
  p_.trace.Status(FormatDate(av_When, p_.form.Txt_DateFormat.text()), StatusKind::Detail);
}

void DownloadCapture::RejectLine() {
  if (GoesOn(p_.form, p_.flags) && p_.bad_lines.Hold(p_.link.ReplyLine) && PassOver("")) return;
  const bool forgiven =
      p_.link.OverunFlag && LeadingNumber(p_.form.Txt_MaxOveruns.text()) >= static_cast<double>(p_.link.OverunCount);
  if (forgiven) {
    p_.link.OverunFlag = false;
    ++p_.download.Tally.rejected;
    return;
  }
  if (PassOver("wrong items or checksum")) return;
  Abort("Items on line (" + std::to_string(line_.items.size()) + ") <> expected ItemsPerLine (" +
        std::to_string(p_.download.ItemsPerLine) + ") >|" + std::string(line_.items_text) +
        " CheckSumError:" + std::string(TrueFalse(!line_.checksum_good)));
}

bool DownloadCapture::PassOver(std::string_view as_Reason) {
  DownloadTally& tally = p_.download.Tally;
  if (!GoesOn(p_.form, p_.flags) || tally.passed_over >= BadLines::kMostInDownload) return false;
  const std::string& line = p_.link.ReplyLine;
  if (!p_.bad_lines.Hold(line) &&
      (!p_.bad_lines.IsTheCause(line, line_.checksum_good) || !KeepBadLine(as_Reason, line))) {
    return false;
  }
  ++tally.passed_over;
  ++tally.arrived;
  TraceItems("Passed over: ");
  return true;
}

bool DownloadCapture::TakeFutureReading(DateTime av_When) {
  if (!GoesOn(p_.form, p_.flags)) return false;
  const bool held = p_.bad_lines.Hold(line_.items_text);
  if (!held && (p_.download.ClockDoubtful || av_When - p_.loop.Now() <= kFarAhead)) return false;
  if (held || KeepBadLine(BadLines::kFutureDate, line_.items_text)) {
    ++p_.download.Tally.arrived;
    ++p_.download.Tally.kept_aside;
  } else {
    Abort("The reading is in the future and cannot be kept aside>" + std::string(line_.items_text));
  }
  return true;
}

bool DownloadCapture::KeepBadLine(std::string_view as_Reason, std::string_view as_Line) {
  try {
    p_.bad_lines.Add(p_.loop.Now(), as_Reason, as_Line);
  } catch (const RunTimeError& error) {
    p_.trace.AErrorReport("A bad line cannot be kept: " + std::string(error.what()));
    return false;
  }
  const std::string report = "Kept in " + p_.bad_lines.file() + " (" + std::string(as_Reason) + ")";
  p_.trace.AErrorReport(report + ": " + std::string(as_Line));
  if (p_.download.Tally.problem.find(report) == std::string::npos) p_.download.Tally.AddProblem(report);
  return true;
}

void DownloadCapture::Abort(const std::string& as_Error) {
  p_.trace.AErrorReport(as_Error);
  StopUnit();
}

void DownloadCapture::StopUnit() {
  p_.writer.SendEscape();
  p_.download.SavingData = false;
}

void DownloadCapture::FailWriting(const std::string& as_Reason) {
  FailDownload("The raw file " + p_.download.OutputFileName + " cannot be written (" + as_Reason +
               "). Make room on its disk or repair the disk; the unit is asked again for what is missing");
}

void DownloadCapture::FailDownload(const std::string& as_Error) {
  if (p_.link.HalvexError) {
    p_.trace.AErrorReport(as_Error);
    return;
  }
  Abort(as_Error);
  p_.link.Fail(as_Error);
  p_.trace.Status(as_Error, StatusKind::Error);
}

void DownloadCapture::OpenOutputFile() {
  try {
    OpenSteps();
  } catch (const RunTimeError& error) {
    p_.download.Output.Close();
    const std::string report = "The raw file " + p_.download.OutputFileName + " cannot be opened (" + error.what() +
                               "). Check its folder, its rights and the room on its disk";
    if (GoesOn(p_.form, p_.flags) || p_.download.Gap) return FailDownload(report);
    p_.trace.AErrorReport(report);
    p_.trace.Status(report, StatusKind::Error);
    p_.link.UserCancel = true;
  }
}

void DownloadCapture::OpenSteps() {
  const std::string& name = p_.download.OutputFileName;
  p_.trace.TraceDecision("Check file: " + name);
  if (const auto torn = RepairTornTail(name)) p_.trace.LogWrite("Torn tail cut off " + name + ": " + *torn);
  const auto info = ExamineFile(name);
  const bool exists = info && info->size > kShortestRawFile;
  if (p_.trace.TracesDecisions()) {
    p_.trace.TraceDecision("FileExists: " + std::string(TrueFalse(exists)));
    if (exists) p_.trace.TraceDecision("FileLen: " + std::to_string(info->size));
  }
  p_.trace.TraceDecision("Opening file - append: " + std::string(TrueFalse(exists)));
  SyncedFile& output = p_.download.Output;
  Require(exists ? output.OpenForAppending(name) : output.Create(name, p_.link.ReplyLine + std::string(kLineBreak)));
}

void DownloadCapture::SyncOutput() {
  sync_timer_->Stop();
  if (!p_.download.Output.IsOpen()) return;
  const std::int64_t taken_back = p_.download.Output.taken_back();
  const Status synced = p_.download.Output.Sync();
  p_.download.Tally.stored -= p_.download.Output.taken_back() - taken_back;
  if (!synced.ok()) FailWriting(synced.text());
}

void DownloadCapture::CloseOutputFile() {
  SyncOutput();
  p_.download.Output.Close();
}

void DownloadCapture::SummariseAtClose() {
  if (!p_.flags.closing || OutputFileNumber() == 0) return;
  p_.link.HalvexError = true;
  p_.link.ResultCode = kCancelledResult;
  p_.summary.WriteSummary();
}

int DownloadCapture::OutputFileNumber() const {
  return p_.download.Output.IsOpen() ? kOutputFile : kNoFile;
}

}  // namespace corvane
