// The one thread's event loop: clock, timers and the single way to wait.
//
// Everything runs on the thread that created the loop. Timer, device and posted events are delivered only inside
// `Yield` and `Poll`. A timer goes on ticking while its own handler waits.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "base/dates.h"

namespace corvane {

/// A periodic timer; stops when destroyed. Not thread-safe; its handler may start, stop or restart it.
class Timer {
 public:
  virtual ~Timer() = default;
  Timer() = default;
  Timer(const Timer&) = delete;
  Timer& operator=(const Timer&) = delete;

  /// Starts or restarts ticking every `milliseconds` (at least 1), the first tick one interval from now.
  virtual void Start(std::int64_t milliseconds) = 0;
  /// Stops ticking; a tick that was due is dropped.
  virtual void Stop() = 0;
  [[nodiscard]] virtual bool Running() const = 0;
  /// The interval of the last `Start` in milliseconds, 0 before it.
  [[nodiscard]] virtual std::int64_t Interval() const = 0;
};

class EventLoop {
 public:
  virtual ~EventLoop() = default;
  EventLoop() = default;
  EventLoop(const EventLoop&) = delete;
  EventLoop& operator=(const EventLoop&) = delete;

  /// The computer's local date and time, in whole seconds.
  [[nodiscard]] virtual DateTime Now() const = 0;
  /// The same in UTC, with how far the local time is ahead of it.
  [[nodiscard]] virtual Moment NowUtc() const = 0;
  /// Milliseconds of a clock that no one sets; for waits and durations.
  [[nodiscard]] virtual std::int64_t MonotonicMilliseconds() const = 0;

  /// A stopped timer that calls `on_tick`; must not outlive the loop.
  [[nodiscard]] virtual std::unique_ptr<Timer> MakeTimer(std::function<void()> on_tick) = 0;
  /// Runs `task` once from a later `Yield` or `Poll`.
  virtual void Post(std::function<void()> task) = 0;

  /// Blocks until at least one event or timer was handled. **Yields.**
  virtual void Yield() = 0;
  /// Handles what is pending and never blocks. **Yields.**
  virtual void Poll() = 0;

  /// Runs `work`, which may block for long on a disk, on a thread of its own and returns when it is done. **Yields.**
  ///
  /// `work` may touch nothing that the loop's handlers touch; what it throws is thrown from here. `on_turn` is called
  /// in the loop's thread every few milliseconds while the work goes on.
  virtual void Aside(const std::function<void()>& work, const std::function<void()>& on_turn = {});
};

}  // namespace corvane
