#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

#include "platform/event_loop.h"

namespace corvane::test {

/// Virtual time: `Yield` runs what is pending, else jumps to the next timer. A test never sleeps.
///
/// A `Yield` with nothing pending and no timer throws: that wait would hang for ever.
class FakeLoop : public EventLoop {
 public:
  [[nodiscard]] DateTime Now() const override { return start_ + milliseconds_ / 1000; }
  [[nodiscard]] Moment NowUtc() const override {
    return {(Now() - DateTime(ahead_)) - Moment().Local().seconds(), ahead_};
  }
  [[nodiscard]] std::int64_t MonotonicMilliseconds() const override { return milliseconds_; }
  std::unique_ptr<Timer> MakeTimer(std::function<void()> on_tick) override;
  void Post(std::function<void()> task) override { posted_.push_back(std::move(task)); }
  void Yield() override;
  void Poll() override;

  /// Sets the local clock without moving monotonic time.
  void SetNow(DateTime now) { start_ = now - milliseconds_ / 1000; }
  /// Sets how far the local clock is ahead of UTC.
  void SetAhead(std::int32_t seconds) { ahead_ = seconds; }
  /// Handles everything that happens in the next `milliseconds` of virtual time.
  void Advance(std::int64_t milliseconds);
  /// Runs `task` from the loop after `milliseconds`.
  void After(std::int64_t milliseconds, std::function<void()> task);
  /// Forgets what was posted: who would run it is gone.
  void DropPosted() { posted_.clear(); }
  [[nodiscard]] std::int64_t yields() const { return yields_; }
  [[nodiscard]] std::size_t timers() const { return timers_.size(); }

 private:
  class FakeTimer;
  struct Delayed {
    std::int64_t when;
    std::function<void()> task;
  };
  bool RunPosted();
  /// Runs the earliest timer or delayed task due by `limit`; false when there is none.
  bool RunEarliest(std::int64_t limit);

  DateTime start_ = DateTime::FromCivil(2010, 3, 12, 10, 0, 0);
  std::int32_t ahead_ = 0;
  std::int64_t milliseconds_ = 0;
  std::int64_t yields_ = 0;
  std::deque<std::function<void()>> posted_;
  std::vector<FakeTimer*> timers_;
  std::vector<Delayed> delayed_;
};

}  // namespace corvane::test
