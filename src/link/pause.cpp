#include "link/pause.h"

#include "base/numbers.h"

namespace corvane {
namespace {

constexpr std::int64_t kTracedAbove = 100;
constexpr std::int64_t kShownAbove = 1000;

}  // namespace

void Pauser::Pause(std::int64_t al_Milliseconds) {
  if (al_Milliseconds <= 0) return;
  if (al_Milliseconds > kShownAbove) {
    trace_.Status("pause " + ShortestText(static_cast<double>(al_Milliseconds) / 1000) + " secs...",
                  StatusKind::Detail);
  }
  const bool traced = al_Milliseconds > kTracedAbove;
  if (traced) trace_.TraceDecision("PAUSE START: " + std::to_string(al_Milliseconds));
  Wait(al_Milliseconds);
  if (traced) trace_.TraceDecision("PAUSE END");
}

void Pauser::Wait(std::int64_t al_Milliseconds) {
  timer_->Start(al_Milliseconds);
  pausing_ = true;
  while (pausing_ && !Cancelled(link_, flags_)) loop_.Yield();
  PauseTick();
}

void Pauser::PauseTick() {
  pausing_ = false;
  timer_->Stop();
}

}  // namespace corvane
