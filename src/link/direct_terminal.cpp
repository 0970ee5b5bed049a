#include "link/direct_terminal.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "base/numbers.h"
#include "link/direct_rows.h"

namespace corvane {
namespace {

constexpr double kShortestWait = 1;                    ///< seconds
constexpr double kLongestWait = 600;                   ///< seconds
constexpr std::int64_t kMostMilliseconds = 3'600'000;  ///< a noisy line must not keep the port from the schedule

}  // namespace

DirectTerminal::DirectTerminal(Form& av_Form, LinkState& av_Link, const RunFlags& av_Flags, EventLoop& av_Loop,
                               PortLink& av_Port, Exchange& av_Exchange, CommandStates& av_States, Trace& av_Trace)
    : form_(av_Form),
      link_(av_Link),
      flags_(av_Flags),
      loop_(av_Loop),
      port_(av_Port),
      exchange_(av_Exchange),
      states_(av_States),
      trace_(av_Trace),
      timer_(av_Loop.MakeTimer([this] { silent_ = true; })) {}

bool DirectTerminal::Run() {
  waiting_.clear();
  silent_ = false;
  port_.ClearEverything();
  if (!port_.OpenPort(0)) return false;
  port_.ClearBeforeCommand("Direct terminal");
  link_.DirectListening = true;
  states_.SetListening(true);
  SendNext();
  while (!Ended()) {
    SendWaiting();
    if (!Ended()) loop_.Yield();
  }
  const bool well = !link_.HalvexError;
  Finish();
  return well;
}

void DirectTerminal::SendNext() {
  waiting_.push_back(form_.Txt_Direct.text());
}

void DirectTerminal::SendWaiting() {
  while (!waiting_.empty() && !Ended()) {
    const std::string line = std::move(waiting_.front());
    waiting_.pop_front();
    AddDirectRow(form_, ">" + line);
    trace_.Status("Direct terminal: " + line);
    exchange_.SendLine(line);
    last_sent_ = loop_.MonotonicMilliseconds();
    RestartWait();
  }
}

void DirectTerminal::OnData() {
  const bool in_time = loop_.MonotonicMilliseconds() - last_sent_ < kMostMilliseconds;
  if (link_.DirectListening && in_time) RestartWait();
}

void DirectTerminal::RestartWait() {
  const double seconds = std::clamp(LeadingNumber(form_.Txt_Timeout[1].text()), kShortestWait, kLongestWait);
  silent_ = false;
  timer_->Start(std::llround(seconds * 1000));
}

bool DirectTerminal::Ended() const {
  return silent_ || link_.UserCancel || link_.HalvexError || flags_.closing || !form_.Chk_Direct.ticked();
}

void DirectTerminal::Finish() {
  timer_->Stop();
  if (link_.HalvexError) {
    trace_.Status("Direct terminal: " + link_.ResultTextOf(link_.ResultCode));
  } else {
    trace_.Status("Direct terminal: the port is closed");
  }
  link_.DirectListening = false;
  states_.SetListening(false);
  port_.ClearEverything();
  port_.ClosePort();
}

}  // namespace corvane
