#pragma once

#include <cstdint>
#include <ctime>
#include <optional>

#include "base/dates.h"

namespace corvane {

/// The machine's clocks, as every event loop shows them.
class LocalClock {
 public:
  /// The computer's local date and time, in whole seconds; follows a change of the time zone.
  [[nodiscard]] DateTime Now() const;
  /// The same in UTC, with how far the local time is ahead of it.
  [[nodiscard]] Moment NowUtc() const;
  /// Milliseconds of a clock that no one sets.
  [[nodiscard]] static std::int64_t MonotonicMilliseconds();

 private:
  mutable std::optional<std::time_t> cached_second_;
  mutable DateTime cached_now_;
};

}  // namespace corvane
