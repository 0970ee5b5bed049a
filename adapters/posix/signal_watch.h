#pragma once

#include <functional>
#include <initializer_list>

#include <signal.h>

#include "base/status.h"
#include "posix/descriptor_watcher.h"

namespace corvane {

/// Delivers signals as events of a loop, where a handler may do what an ordinary signal handler must not.
class SignalWatch {
 public:
  /// `watcher` must outlive this object.
  explicit SignalWatch(DescriptorWatcher& watcher) : watcher_(watcher) {}
  /// Ends the watching; the signals act as they did before it.
  ~SignalWatch();
  SignalWatch(const SignalWatch&) = delete;
  SignalWatch& operator=(const SignalWatch&) = delete;

  /// Blocks these signals for the whole process, so that a later `Start` gets them although other threads run already;
  /// to be called before those start. Ignored signals stay as they are.
  static void BlockEarly(std::initializer_list<int> signals);
  /// Calls `handler` with the number of each of these signals from the loop; once, before other threads start
  /// or behind `BlockEarly`.
  ///
  /// A signal that the process was started to ignore (as nohup does) stays ignored. Children inherit the signals
  /// blocked and must clear their mask.
  Status Start(std::initializer_list<int> signals, std::function<void(int)> handler);
  [[nodiscard]] bool Running() const { return descriptor_ >= 0; }

 private:
  /// The signals that are not ignored.
  [[nodiscard]] static sigset_t Handled(std::initializer_list<int> signals);
  void ReadSignals();

  DescriptorWatcher& watcher_;
  int descriptor_ = -1;
  sigset_t earlier_mask_{};
  std::function<void(int)> handler_;
};

}  // namespace corvane
