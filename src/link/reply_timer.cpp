#include "link/reply_timer.h"

#include <algorithm>

#include "base/numbers.h"

namespace corvane {
namespace {

constexpr double kTestingSeconds = 2;
constexpr double kLongestSeconds = static_cast<double>(kSecondsPerDay);
constexpr double kPatience = 10;  ///< time-outs without a complete line before noise stops counting
constexpr std::int64_t kTickMilliseconds = 1000;

}  // namespace

double ReplyTimer::Seconds() const {
  if (p_.link.TestingPort) return kTestingSeconds;
  return std::min(LeadingNumber(p_.form.Txt_Timeout[p_.link.DataPhase ? 1 : 0].text()), kLongestSeconds);
}

std::string ReplyTimer::UnitText() const {
  if (!p_.link.Asked.empty()) return p_.link.Asked;
  const std::int64_t row = p_.form.Lst_Units.current();
  return row < 0 ? std::string() : p_.form.Lst_Units.text(row);
}

void ReplyTimer::RestartReplyTimer() {
  timer_->Stop();
  p_.link.CountDown = Seconds();
  p_.form.lbl_CountDown.SetText(ShortestText(static_cast<float>(p_.link.CountDown)));
  timer_->Start(kTickMilliseconds);
}

void ReplyTimer::RestartForEvent() {
  const double since_line = static_cast<double>(p_.loop.MonotonicMilliseconds() - p_.link.LastLineTime);
  const bool patient = since_line < kPatience * std::max(Seconds(), 1.0) * kTickMilliseconds;
  if (!p_.link.Aborted && patient) RestartReplyTimer();
}

void ReplyTimer::ReplyTimeoutTick() {
  const auto left = static_cast<float>(LeadingNumber(p_.form.lbl_CountDown.text()) - 1);
  p_.form.lbl_CountDown.SetText(ShortestText(left));
  if (left > 0) {
    if (p_.trace.TracesDecisions()) p_.trace.TraceDecision(UnitText() + ": waiting " + ShortestText(left));
    return;
  }
  timer_->Stop();
  p_.link.AbortTimedOut = p_.link.Aborted;
  p_.link.Timeout = true;
  p_.trace.SwitchOnAllTrace("Timeout", 1);
  p_.trace.Status(UnitText() + ": waited " + ShortestText(static_cast<float>(p_.link.CountDown)) + " secs",
                  StatusKind::Error);
  p_.writer.SendEscape();
}

}  // namespace corvane
