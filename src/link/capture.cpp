#include "link/capture.h"

#include "base/file_numbers.h"
#include "base/format.h"
#include "base/numbers.h"
#include "base/text.h"
#include "data/raw_file.h"

namespace corvane {
namespace {

constexpr std::size_t kFewestHeaderItems = 6;
constexpr std::int64_t kShortestRawFile = 20;
constexpr std::int64_t kSyncMilliseconds = 5000;

}  // namespace

DownloadCapture::DownloadCapture(Form& av_Form, LinkState& av_Link, DownloadState& av_Download, EventLoop& av_Loop,
                                 LinkWriter& av_Writer, Exchange& av_Exchange, DownloadSummary& av_Summary,
                                 ProgressBars& av_Bars, Trace& av_Trace)
    : form_(av_Form),
      link_(av_Link),
      download_(av_Download),
      writer_(av_Writer),
      exchange_(av_Exchange),
      summary_(av_Summary),
      bars_(av_Bars),
      trace_(av_Trace),
      sync_timer_(av_Loop.MakeTimer([this] { SyncOutput(); })) {}

void DownloadCapture::SaveToFile() {
  SplitLine(link_.ReplyLine, line_);
  if (link_.LineCount == 1) {
    TakeHeader();
  } else {
    TakeDataLine();
  }
  link_.ReplyLine.clear();
}

void DownloadCapture::TraceItems(std::string_view as_What) {
  if (trace_.TracesDecisions()) trace_.TraceDecision(std::string(as_What) + std::string(line_.items_text));
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
  download_.HeaderLine = line_.items_text;
  form_.Lbl_HeaderLine.SetText(download_.HeaderLine);
  const std::int64_t fixed = LeadingInteger(line_.items[2]);
  const std::int64_t free = LeadingInteger(line_.items[3]);
  link_.LinesExpected = std::int64_t{LeadingInteger(line_.items[4])} + 1;
  trace_.TraceDecision("Header line has " + std::to_string(line_.items.size()) + " items");
  download_.ItemsPerLine = fixed + free;
  trace_.TraceDecision("Version:" + std::string(line_.items[0]) + " SiteID:" + std::string(line_.items[1]) +
                       " Fixed:" + std::to_string(fixed) + " Free:" + std::to_string(free) +
                       " LinesExpected: " + std::to_string(link_.LinesExpected));
  if (link_.LinesExpected < 1) {
    trace_.AErrorReport("Lines expected=0> " + download_.HeaderLine);
  } else {
    bars_.Download.Initialise(link_.LinesExpected);
  }
  if (!OpenOutputFile()) link_.UserCancel = true;
}

void DownloadCapture::TakeDataLine() {
  if (!download_.SavingData) {
    TraceItems("No save:");
  } else if (!download_.Output.IsOpen()) {
    Abort("Linecount=" + std::to_string(link_.LineCount) + " but output file not opened" +
          std::string(line_.items_text));
    link_.UserCancel = true;
  } else if (EqualsNoCase(line_.items_text, "OK")) {
    TakeOk();
  } else if (static_cast<std::int64_t>(line_.items.size()) == download_.ItemsPerLine && line_.checksum_good) {
    TakeReading();
  } else {
    RejectLine();
  }
}

void DownloadCapture::TakeOk() {
  summary_.WriteSummary();
  trace_.TraceDecision("Received OK - close output file");
  CloseOutputFile();
  exchange_.SetStateFinished();
}

void DownloadCapture::TakeReading() {
  const auto when = ParseReadingDate(line_.items[0]);
  if (!when) {
    Abort("No SaveToFile - incorrect date>" + std::string(line_.items_text));
    return;
  }
  const bool traced = trace_.TracesDecisions();
  if (traced) TraceItems("SaveToFile LineCount:" + std::to_string(link_.LineCount) + ">");
  if (*when <= download_.LastDate) {
    if (traced) TraceItems("SaveToFile - skipping because date after: " + GeneralDate(download_.LastDate) + " |");
  } else if (!StoreReading()) {
    return;
  }
  if (form_.Chk_ShowReply.ticked()) ShowProgress(*when);
}

bool DownloadCapture::StoreReading() {
  output_line_ = line_.items_text;
  output_line_ += kLineBreak;
  const Status written = download_.Output.Write(output_line_);
  if (!written.ok()) {
    FailDownload(written.text());
    return false;
  }
  if (!sync_timer_->Running()) sync_timer_->Start(kSyncMilliseconds);
  if (reading_stored) reading_stored();
  return true;
}

void DownloadCapture::ShowProgress(DateTime av_When) {
  bars_.Download.SetValue(link_.LineCount);
  trace_.Status(FormatDate(av_When, form_.Txt_DateFormat.text()));
}

void DownloadCapture::RejectLine() {
  const bool forgiven =
      link_.OverunFlag && LeadingNumber(form_.Txt_MaxOveruns.text()) >= static_cast<double>(link_.OverunCount);
  if (forgiven) {
    link_.OverunFlag = false;
    return;
  }
  Abort("Items on line (" + std::to_string(line_.items.size()) + ") <> expected ItemsPerLine (" +
        std::to_string(download_.ItemsPerLine) + ") >|" + std::string(line_.items_text) +
        " CheckSumError:" + std::string(TrueFalse(!line_.checksum_good)));
}

void DownloadCapture::Abort(const std::string& as_Error) {
  trace_.AErrorReport(as_Error);
  writer_.SendEscape();
  download_.SavingData = false;
}

void DownloadCapture::FailDownload(const std::string& as_Reason) {
  const std::string error = "The raw file " + download_.OutputFileName + " cannot be written (" + as_Reason +
                            "). Make room on its disk or repair the disk; the unit is asked again for what is missing";
  if (link_.HalvexError) {
    trace_.AErrorReport(error);
    return;
  }
  Abort(error);
  link_.HalvexError = true;
  link_.ResultCode = kCommsErrorResult;
  link_.ResultText[kCommsErrorResult] = error;
  trace_.Status(error);
}

bool DownloadCapture::OpenOutputFile() {
  try {
    OpenSteps();
    return true;
  } catch (const RunTimeError& error) {
    download_.Output.Close();
    const std::string report = "The raw file " + download_.OutputFileName + " cannot be opened (" + error.what() +
                               "). Check its folder, its rights and the room on its disk";
    trace_.AErrorReport(report);
    trace_.Status(report);
    return false;
  }
}

void DownloadCapture::OpenSteps() {
  const std::string& name = download_.OutputFileName;
  trace_.TraceDecision("Check file: " + name);
  const std::string torn = RepairTornTail(name);
  if (!torn.empty()) trace_.LogWrite("Torn tail cut off " + name + ": " + torn);
  const auto info = ExamineFile(name);
  const bool exists = info && info->size > kShortestRawFile;
  if (trace_.TracesDecisions()) {
    trace_.TraceDecision("FileExists: " + std::string(TrueFalse(exists)));
    if (exists) trace_.TraceDecision("FileLen: " + std::to_string(info->size));
  }
  trace_.TraceDecision("Opening file - append: " + std::string(TrueFalse(exists)));
  OutputFile& output = download_.Output;
  if (exists) {
    Require(output.OpenForAppending(name));
    return;
  }
  Require(output.Create(name));
  Require(output.Write(link_.ReplyLine + std::string(kLineBreak)));
}

void DownloadCapture::SyncOutput() {
  sync_timer_->Stop();
  if (!download_.Output.IsOpen()) return;
  const Status synced = download_.Output.Sync();
  if (!synced.ok()) FailDownload(synced.text());
}

void DownloadCapture::CloseOutputFile() {
  SyncOutput();
  download_.Output.Close();
}

int DownloadCapture::OutputFileNumber() const {
  return download_.Output.IsOpen() ? kOutputFile : kNoFile;
}

}  // namespace corvane
