#pragma once

#include <functional>

#include "state/command_states.h"
#include "state/link_state.h"

namespace corvane {

/// The one place where an operation may run: a second is refused while it is held.
class OperationSlot {
 public:
  OperationSlot(LinkState& av_Link, CommandStates& av_States) : link_(av_Link), states_(av_States) {}

  /// True while an operation runs (the busy flag).
  [[nodiscard]] bool Taken() const { return taken_; }
  /// Runs `av_Operation` in the slot; false, without running it, when the slot is taken.
  ///
  /// Taking it clears `UserCancel` and disables the commands; giving it back enables the commands last, whatever the
  /// operation did. **Yields** as the operation does.
  bool Run(const std::function<void()>& av_Operation);

  /// Called after the slot was taken (a new round begins) and just before the commands are enabled again.
  std::function<void()> on_taken;
  std::function<void()> on_given_back;

 private:
  LinkState& link_;
  CommandStates& states_;
  bool taken_ = false;
};

}  // namespace corvane
