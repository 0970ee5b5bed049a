#include "link/exchange.h"

#include <array>
#include <cmath>

#include "base/format.h"
#include "base/numbers.h"
#include "base/text.h"

namespace corvane {
namespace {

constexpr std::array<CommandInfo, kLastState + 1> kCommands = {{
    {"", "", 1},
    {"rr", "Download", -1},
    {"WT", "Set date", 1},
    {"rt", "Get date", 1},
    {"WI", "Set log period", 1},
    {"SM", "Set Mode", 1},
    {"SD", "Set Delays", 1},
    {"rm", "Read Memory", 1},
    {"", "Test Base Station", 1},
    {"", "", 1},
    {"", "", 1},
}};
constexpr std::string_view kAllData = "0001010000";
constexpr int kAddressDigits = 5;
constexpr std::int64_t kSlowSendMilliseconds = 10;
constexpr std::string_view kCarriageReturn = "\r";
constexpr int kMostMinutes = 255;  ///< of a log period: two hexadecimal digits

bool IsState(std::int16_t ai_Command) {
  return ai_Command >= kIdle && ai_Command <= kLastState;
}

/// The minutes of a log-period text, 0 for any other.
double MinutesIn(std::string_view as_LogPeriod) {
  if (const auto time = ParseTimeOfDay(as_LogPeriod)) return static_cast<double>(*time) / 60;
  const double minutes = ParseNumber(as_LogPeriod).value_or(0);
  return std::isfinite(minutes) ? minutes : 0;
}

}  // namespace

const CommandInfo& CommandOf(std::int16_t ai_Command) {
  return IsState(ai_Command) ? kCommands[static_cast<std::size_t>(ai_Command)] : kCommands.back();
}

std::int16_t PortIndexForUnit(std::int32_t al_GetFrom) {
  if (al_GetFrom == kFromRadio) return 0;
  return al_GetFrom == kFromHandHeld ? 1 : kNoPort;
}

std::string BuildCommandLine(const Registry& av_Registry, const Unit& av_Unit, std::int16_t ai_Command,
                             std::string_view as_Parameters) {
  if (ai_Command == kTestBaseStation) return {};
  // Intended: the style goes with the unit's own address, whatever relay it is reached through.
  const Relay* relay = av_Registry.FindRelay(av_Unit.ID);
  const int style = relay == nullptr ? 0 : relay->PasswordStyle + 1;
  std::string line = ZeroPadded(av_Unit.RelayID, kAddressDigits) + ":" + ZeroPadded(av_Unit.ID, kAddressDigits) + ":" +
                     HexText(static_cast<std::uint64_t>(style), 2);
  line += CommandOf(ai_Command).code;
  line += ' ';
  line += as_Parameters;
  return line;
}

std::string DownloadParameters(DateTime av_LastDate) {
  return av_LastDate.IsNone() ? std::string(kAllData) : FormatDate(av_LastDate, "yymmddHHNN");
}

std::optional<int> LogPeriodMinutes(std::string_view as_LogPeriod) {
  const double minutes = MinutesIn(as_LogPeriod);
  if (minutes < 1 || minutes > kMostMinutes || minutes != std::round(minutes)) return std::nullopt;
  return static_cast<int>(minutes);
}

std::string LogPeriodParameters(std::string_view as_LogPeriod) {
  const double minutes = MinutesIn(as_LogPeriod);
  // Intended: the unit takes two digits, so 256 minutes and more wrap.
  return HexText(static_cast<std::uint64_t>(std::llround(std::fmod(std::round(minutes), 256))), 2);
}

void Exchange::SendLine(std::string_view as_Line) {
  p_.link.CurrentCommand = as_Line;
  p_.form.Lbl_Send.SetText(as_Line);
  p_.form.Lbl_Send.Repaint();
  p_.link.DataPhase = false;
  p_.link.Aborted = false;
  p_.link.LastLineTime = p_.loop.MonotonicMilliseconds();
  const std::string line = std::string(as_Line) + std::string(kCarriageReturn);
  std::string left = line;
  if (p_.form.Chk_PauseOnSend.ticked()) {
    left = SendSlowly(line);
  } else if (!p_.writer.Write(line)) {
    return;
  }
  if (left.empty()) return;
  if (left == line) left.pop_back();
  p_.trace.TraceSend("S>" + left);
}

void Exchange::SendCommand(std::string_view as_Line) {
  p_.link.SendTime = p_.loop.MonotonicMilliseconds();
  SendLine(as_Line);
  p_.timer.RestartReplyTimer();
}

std::string Exchange::SendSlowly(const std::string& as_Line) {
  std::string left;
  for (const char c : as_Line) {
    if (!p_.writer.Write(std::string_view(&c, 1))) break;
    left += c;
    if (left.size() == as_Line.size()) break;
    p_.pauser.Pause(kSlowSendMilliseconds);
    // The escape of a cancel has gone out already: the rest would reach the unit as a command of its own.
    if (Ended()) break;
  }
  return left;
}

bool Exchange::Ended() const {
  return Cancelled(p_.link, p_.flags) || p_.link.HalvexError || p_.link.Timeout;
}

void Exchange::SetState(std::int16_t ai_Command) {
  if (!IsState(ai_Command)) {
    p_.trace.AErrorReport("SetState: there is no command " + std::to_string(ai_Command));
    return;
  }
  p_.link.State = ai_Command;
  p_.link.Aborted = false;
  p_.link.LineCount = 0;
  p_.link.LinesExpected = CommandOf(ai_Command).lines_expected;
  p_.trace.TraceDecision("SetState");
}

void Exchange::WaitForChangeOfState() {
  const std::int16_t awaited = p_.link.State;
  if (awaited == kIdle) return;
  while (!Ended() && p_.link.State == awaited) p_.loop.Yield();
}

void Exchange::SetStateFinished() {
  p_.timer.Stop();
  p_.link.State = kIdle;
  p_.trace.TraceDecision("SetStateFinished");
}

}  // namespace corvane
