#include "link/reply_handler.h"

#include <algorithm>
#include <limits>

#include "base/numbers.h"
#include "base/text.h"
#include "link/direct_rows.h"

namespace corvane {
namespace {

constexpr std::string_view kError = "ERROR";
constexpr std::size_t kShortestNumberedError = 7;
constexpr std::int16_t kErrorWithoutNumber = 6;

/// The number in an error reply, held within the range of result codes.
std::int16_t ErrorNumber(std::string_view as_Line) {
  if (as_Line.size() < kShortestNumberedError) return kErrorWithoutNumber;
  using Limits = std::numeric_limits<std::int16_t>;
  const std::int32_t number = LeadingInteger(as_Line.substr(kError.size()));
  return static_cast<std::int16_t>(std::clamp<std::int32_t>(number, Limits::min(), Limits::max()));
}

}  // namespace

ReplyHandler::ReplyHandler(Form& av_Form, LinkState& av_Link, EventLoop& av_Loop, Exchange& av_Exchange,
                           DownloadCapture& av_Capture, DownloadSummary& av_Summary, Trace& av_Trace)
    : form_(av_Form),
      link_(av_Link),
      loop_(av_Loop),
      exchange_(av_Exchange),
      capture_(av_Capture),
      summary_(av_Summary),
      trace_(av_Trace) {}

void ReplyHandler::HandleReply() {
  link_.LastLineTime = loop_.MonotonicMilliseconds();
  std::string direct;
  if (form_.Chk_Direct.ticked()) direct = link_.ReplyLine;
  if (!link_.HalvexError && !link_.DirectListening) TakeLine();
  if (form_.Chk_Direct.ticked()) AddDirectRow(form_, std::move(direct));
  link_.ReplyLine.clear();
}

void ReplyHandler::TakeLine() {
  if (link_.ReplyLine == link_.CurrentCommand) {
    if (trace_.TracesDecisions()) trace_.TraceDecision("EAT command echo: " + link_.ReplyLine);
  } else if (StartsWithNoCase(link_.ReplyLine, kError)) {
    TakeErrorReply();
  } else {
    TakeReply();
  }
}

void ReplyHandler::TakeReply() {
  link_.DataPhase = true;
  ++link_.LineCount;
  if (link_.State == kDownload) {
    capture_.SaveToFile();
  } else if (link_.State >= kSetDate && link_.State <= kTestBaseStation) {
    TakeAnswer();
  } else {
    trace_.AErrorReport("ExtraReply:" + link_.ReplyLine);
  }
}

void ReplyHandler::TakeAnswer() {
  if (!link_.ReplyLine.empty()) {
    form_.Lbl_HeaderLine.SetText(link_.ReplyLine);
    trace_.Status(link_.ReplyLine);
  }
  if (link_.LineCount != link_.LinesExpected) return;
  trace_.TraceDecision(link_.CurrentCommand + " LineCount = LinesExpected - finish ok");
  exchange_.SetStateFinished();
}

void ReplyHandler::TakeErrorReply() {
  link_.ResultCode = ErrorNumber(link_.ReplyLine);
  link_.HalvexError = true;
  trace_.Status(link_.ResultTextOf(link_.ResultCode));
  if (link_.State == kDownload) summary_.WriteSummary();
  trace_.SwitchOnAllTrace("HalvexError: " + link_.ReplyLine, 1);
  trace_.TraceDecision("HV Error received:" + link_.ReplyLine);
}

}  // namespace corvane
