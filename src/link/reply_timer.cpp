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

ReplyTimer::ReplyTimer(Form& av_Form, LinkState& av_Link, EventLoop& av_Loop, LinkWriter& av_Writer, Trace& av_Trace)
    : form_(av_Form),
      link_(av_Link),
      loop_(av_Loop),
      writer_(av_Writer),
      trace_(av_Trace),
      timer_(av_Loop.MakeTimer([this] { ReplyTimeoutTick(); })) {}

double ReplyTimer::Seconds() const {
  if (link_.TestingPort) return kTestingSeconds;
  return std::min(LeadingNumber(form_.Txt_Timeout[link_.DataPhase ? 1 : 0].text()), kLongestSeconds);
}

std::string ReplyTimer::UnitText() const {
  const std::int64_t row = form_.Lst_Units.current();
  return row < 0 ? std::string() : form_.Lst_Units.text(row);
}

void ReplyTimer::RestartReplyTimer() {
  timer_->Stop();
  link_.CountDown = Seconds();
  form_.lbl_CountDown.SetText(ShortestText(static_cast<float>(link_.CountDown)));
  timer_->Start(kTickMilliseconds);
}

void ReplyTimer::RestartForEvent() {
  const double since_line = static_cast<double>(loop_.MonotonicMilliseconds() - link_.LastLineTime);
  const bool patient = since_line < kPatience * std::max(Seconds(), 1.0) * kTickMilliseconds;
  if (!link_.Aborted && patient) RestartReplyTimer();
}

void ReplyTimer::ReplyTimeoutTick() {
  const auto left = static_cast<float>(LeadingNumber(form_.lbl_CountDown.text()) - 1);
  form_.lbl_CountDown.SetText(ShortestText(left));
  if (left > 0) {
    if (trace_.TracesDecisions()) trace_.TraceDecision(UnitText() + ": waiting " + ShortestText(left));
    return;
  }
  timer_->Stop();
  link_.Timeout = true;
  trace_.SwitchOnAllTrace("Timeout", 1);
  trace_.Status(UnitText() + ": waited " + ShortestText(static_cast<float>(link_.CountDown)) + " secs");
  writer_.SendEscape();
}

}  // namespace corvane
