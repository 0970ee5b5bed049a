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

bool DirectTerminal::Run() {
  waiting_.clear();
  silent_ = false;
  p_.port.ClearEverything();
  if (!p_.port.OpenPort(0)) return false;
  p_.port.ClearBeforeCommand("Direct terminal");
  p_.link.DirectListening = true;
  p_.states.SetListening(true);
  SendNext();
  while (!Ended()) {
    SendWaiting();
    if (!Ended()) p_.loop.Yield();
  }
  const bool well = !p_.link.HalvexError;
  Finish();
  return well;
}

void DirectTerminal::SendNext() {
  waiting_.push_back(p_.form.Txt_Direct.text());
}

void DirectTerminal::SendWaiting() {
  while (!waiting_.empty() && !Ended()) {
    const std::string line = std::move(waiting_.front());
    waiting_.pop_front();
    AddDirectRow(p_.form, ">" + line);
    p_.trace.Status("Direct terminal: " + line);
    p_.exchange.SendLine(line);
    last_sent_ = p_.loop.MonotonicMilliseconds();
    RestartWait();
  }
}

void DirectTerminal::OnData() {
  const bool in_time = p_.loop.MonotonicMilliseconds() - last_sent_ < kMostMilliseconds;
  if (p_.link.DirectListening && in_time) RestartWait();
}

void DirectTerminal::RestartWait() {
  const double seconds = std::clamp(LeadingNumber(p_.form.Txt_Timeout[1].text()), kShortestWait, kLongestWait);
  silent_ = false;
  timer_->Start(std::llround(seconds * 1000));
}

bool DirectTerminal::Ended() const {
  return silent_ || Cancelled(p_.link, p_.flags) || p_.link.HalvexError || !p_.form.Chk_Direct.ticked();
}

void DirectTerminal::Finish() {
  timer_->Stop();
  if (p_.link.HalvexError) {
    p_.trace.Status("Direct terminal: " + p_.link.ResultTextOf(p_.link.ResultCode), StatusKind::Error);
  } else {
    p_.trace.Status("Direct terminal: the port is closed");
  }
  p_.link.DirectListening = false;
  p_.states.SetListening(false);
  p_.port.ClearEverything();
  p_.port.ClosePort();
}

}  // namespace corvane
