#include "state/operation_slot.h"

namespace corvane {

bool OperationSlot::Run(const std::function<void()>& av_Operation) {
  if (taken_) return false;
  taken_ = true;
  struct GiveBack {
    OperationSlot& slot;
    ~GiveBack() {
      slot.taken_ = false;
      if (slot.on_given_back) slot.on_given_back();
      slot.states_.SetIdle(true);
      slot.states_.UpdateCommandStates();
    }
  } give_back{*this};
  link_.UserCancel = false;
  link_.PortFailed = false;
  states_.SetIdle(false);
  states_.UpdateCommandStates();
  if (on_taken) on_taken();
  av_Operation();
  return true;
}

}  // namespace corvane
