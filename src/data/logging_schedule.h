#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "base/dates.h"

namespace corvane {

/// Which readings stand at a logging time: a start time of day plus whole intervals. Whole seconds, no drift.
class LoggingSchedule {
 public:
  /// The interval of a text in seconds: hours:minutes, or a number of hours. None when it is not above zero or no
  /// interval.
  [[nodiscard]] static std::optional<std::int64_t> Interval(std::string_view as_Text);

  /// `al_StartAt` seconds after midnight, `al_Interval` seconds above zero.
  LoggingSchedule(std::int64_t al_StartAt, std::int64_t al_Interval) : start_at_(al_StartAt), interval_(al_Interval) {}
  /// Sets the first logging time at or after `av_First`.
  void SetUp(DateTime av_First);
  /// True when a reading of `av_When` is at or after the next logging time, which then moves one interval on.
  // Intended: after a gap each following reading counts until the schedule has caught up with the readings.
  [[nodiscard]] bool IsLoggingTime(DateTime av_When);

 private:
  std::int64_t start_at_;
  std::int64_t interval_;
  DateTime next_;
};

}  // namespace corvane
