// The event loop of programs without a toolkit: poll(2) and the monotonic clock.
//
// It never wakes up by itself: while nothing is due it sleeps in the kernel.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <initializer_list>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include <poll.h>

#include "base/status.h"
#include "platform/event_loop.h"
#include "posix/descriptor_watcher.h"
#include "posix/local_clock.h"
#include "posix/signal_watch.h"

namespace corvane {

class PosixLoop : public EventLoop, public DescriptorWatcher {
 public:
  PosixLoop() = default;

  [[nodiscard]] DateTime Now() const override;
  [[nodiscard]] Moment NowUtc() const override;
  [[nodiscard]] std::int64_t MonotonicMilliseconds() const override;
  /// A timer on the monotonic clock. After a long block one tick is delivered, then the grid goes on.
  [[nodiscard]] std::unique_ptr<Timer> MakeTimer(std::function<void()> on_tick) override;
  void Post(std::function<void()> task) override;
  /// Blocks until at least one event or timer was handled. **Yields.**
  ///
  /// Returns after at most a second while nothing but signals is watched and nothing posted or ticking, so that no wait
  /// can hang for ever.
  void Yield() override;
  void Poll() override;

  void WatchRead(int descriptor, std::function<void()> handler) override;
  void WatchWrite(int descriptor, std::function<void()> handler) override;
  void Unwatch(int descriptor) override;

  /// Delivers these signals to `handler` as events of this loop; see `SignalWatch::Start`.
  Status WatchSignals(std::initializer_list<int> signals, std::function<void(int)> handler);

 private:
  class PeriodicTimer;
  using Handler = std::shared_ptr<const std::function<void()>>;
  struct Watch {
    std::uint64_t id = 0;  ///< tells a descriptor number from its reuse
    Handler on_readable;
    Handler on_writable;
  };

  void SetHandler(int descriptor, Handler Watch::*direction, std::function<void()> handler);
  [[nodiscard]] PeriodicTimer* NextTimer() const;
  [[nodiscard]] bool NothingCanCome() const;
  [[nodiscard]] std::int64_t NanosecondsToWait() const;
  bool RunPass(std::int64_t wait_nanoseconds);
  bool HandleDescriptors(std::int64_t wait_nanoseconds);
  bool HandleReady(const pollfd& ready, std::uint64_t id);
  bool RunDueTimers();
  bool RunPosted();

  std::map<int, Watch> watches_;
  std::uint64_t last_watch_id_ = 0;
  std::uint64_t polls_ = 0;
  std::vector<PeriodicTimer*> running_timers_;
  std::deque<std::function<void()>> posted_;
  LocalClock clock_;
  SignalWatch signals_{*this};  // last: it leaves the watches above
};

}  // namespace corvane
