#pragma once

#include <cstdint>

#include "platform/event_loop.h"

namespace corvane {

/// Lets a long loop over lines handle events about every 20 ms.
class PollPace {
 public:
  explicit PollPace(EventLoop& av_Loop) : loop_(av_Loop) {}

  /// Another line was handled: handles what is pending when it is time, and never blocks.
  ///
  /// True once in a while: time to look whether to go on.
  [[nodiscard]] bool Step() {
    // The clock costs more than a line.
    if (++lines_ % kLinesBetweenClockReadings != 0) return false;
    if (loop_.MonotonicMilliseconds() >= next_poll_) {
      loop_.Poll();
      next_poll_ = loop_.MonotonicMilliseconds() + kMillisecondsBetweenPolls;
    }
    return true;
  }

 private:
  static constexpr std::int64_t kMillisecondsBetweenPolls = 20;
  static constexpr std::int64_t kLinesBetweenClockReadings = 64;

  EventLoop& loop_;
  std::int64_t lines_ = 0;
  std::int64_t next_poll_ = 0;
};

}  // namespace corvane
