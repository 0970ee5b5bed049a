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

void ReplyHandler::HandleReply() {
  p_.link.LastLineTime = p_.loop.MonotonicMilliseconds();
  std::string direct;
  if (p_.form.Chk_Direct.ticked()) direct = p_.link.ReplyLine;
  if (!p_.link.HalvexError && !p_.link.DirectListening) TakeLine();
  if (p_.form.Chk_Direct.ticked()) AddDirectRow(p_.form, std::move(direct));
  p_.link.ReplyLine.clear();
}

void ReplyHandler::TakeLine() {
  if (p_.link.ReplyLine == p_.link.CurrentCommand) {
    if (p_.trace.TracesDecisions()) p_.trace.TraceDecision("EAT command echo: " + p_.link.ReplyLine);
  } else if (StartsWithNoCase(p_.link.ReplyLine, kError)) {
    TakeErrorReply();
  } else {
    TakeReply();
  }
}

void ReplyHandler::TakeReply() {
  p_.link.DataPhase = true;
  ++p_.link.LineCount;
  if (p_.link.State == kDownload) {
    p_.capture.SaveToFile();
  } else if (p_.link.State >= kSetDate && p_.link.State <= kTestBaseStation) {
    TakeAnswer();
  } else {
    p_.trace.AErrorReport("ExtraReply:" + p_.link.ReplyLine);
  }
}

void ReplyHandler::TakeAnswer() {
  if (!p_.link.ReplyLine.empty()) {
    p_.form.Lbl_HeaderLine.SetText(p_.link.ReplyLine);
    p_.trace.Status(p_.link.ReplyLine);
  }
  if (p_.link.LineCount != p_.link.LinesExpected) return;
  p_.trace.TraceDecision(p_.link.CurrentCommand + " LineCount = LinesExpected - finish ok");
  p_.exchange.SetStateFinished();
}

void ReplyHandler::TakeErrorReply() {
  p_.link.ResultCode = ErrorNumber(p_.link.ReplyLine);
  p_.link.HalvexError = true;
  p_.trace.Status(p_.link.ResultTextOf(p_.link.ResultCode), StatusKind::Error);
  if (p_.link.State == kDownload) p_.summary.WriteSummary();
  p_.trace.SwitchOnAllTrace("HalvexError: " + p_.link.ReplyLine, 1);
  p_.trace.TraceDecision("HV Error received:" + p_.link.ReplyLine);
}

}  // namespace corvane
