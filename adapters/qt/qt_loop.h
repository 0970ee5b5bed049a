// The event loop of programs with a window: Qt's, behind the interface that the core waits with.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>

#include <QObject>
#include <QTimer>

#include "platform/event_loop.h"
#include "posix/descriptor_watcher.h"
#include "posix/local_clock.h"

class QSocketNotifier;

namespace corvane {

/// Needs a QCoreApplication that outlives it, in whose thread everything runs.
///
/// Events also arrive while `QCoreApplication::exec` runs, outside any `Yield`.
class QtLoop : public EventLoop, public DescriptorWatcher {
 public:
  QtLoop();
  ~QtLoop() override;

  [[nodiscard]] DateTime Now() const override;
  [[nodiscard]] Moment NowUtc() const override;
  [[nodiscard]] std::int64_t MonotonicMilliseconds() const override;
  /// After a long block one tick is delivered.
  [[nodiscard]] std::unique_ptr<Timer> MakeTimer(std::function<void()> on_tick) override;
  void Post(std::function<void()> task) override;
  /// Blocks until at least one event was handled, at most a tenth of a second. **Yields.**
  void Yield() override;
  void Poll() override;

  void WatchRead(int descriptor, std::function<void()> handler) override;
  void WatchWrite(int descriptor, std::function<void()> handler) override;
  void Unwatch(int descriptor) override;

 private:
  class PeriodicTimer;
  /// One direction of one descriptor. Kept when it is no longer watched: descriptor numbers come again.
  struct Watch {
    std::unique_ptr<QSocketNotifier> notifier;
    std::shared_ptr<const std::function<void()>> handler;
  };

  void SetHandler(std::map<int, Watch>& watches, int descriptor, int type, std::function<void()> handler);

  LocalClock clock_;
  QObject receiver_;  ///< what posted tasks are sent to; dropped with it
  QTimer wake_up_;
  int depth_ = 0;  ///< nested `Yield` calls
  std::map<int, Watch> readers_;
  std::map<int, Watch> writers_;
};

}  // namespace corvane
