#include "data/logging_schedule.h"

#include <cmath>

#include "base/format.h"
#include "base/numbers.h"
#include "base/text.h"

namespace corvane {
namespace {

constexpr double kLongestInterval = 1e6;  // hours

std::optional<std::int64_t> SecondsOfHours(std::string_view as_Text) {
  const std::optional<double> hours = ParseNumber(as_Text);
  if (!hours || !(*hours > 0) || *hours > kLongestInterval) return std::nullopt;
  return std::llround(*hours * 3600);
}

}  // namespace

std::optional<std::int64_t> LoggingSchedule::Interval(std::string_view as_Text) {
  const bool has_colon = as_Text.find(':') != std::string_view::npos;
  const std::optional<std::int64_t> seconds = has_colon ? ParseTimeOfDay(Trim(as_Text)) : SecondsOfHours(as_Text);
  return seconds && *seconds > 0 ? seconds : std::nullopt;
}

void LoggingSchedule::SetUp(DateTime av_First) {
  const DateTime start = av_First.Midnight() + start_at_;
  const std::int64_t past_grid = (((av_First - start) % interval_) + interval_) % interval_;
  next_ = past_grid == 0 ? av_First : av_First + (interval_ - past_grid);
}

bool LoggingSchedule::IsLoggingTime(DateTime av_When) {
  if (av_When < next_) return false;
  next_ = next_ + interval_;
  return true;
}

}  // namespace corvane
