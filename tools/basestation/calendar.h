#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace corvane::basestation {

/// Seconds since 1970-01-01 00:00 on a unit's own clock; units know no time zones.
using Seconds = std::int64_t;

inline constexpr Seconds kMinute = 60;

/// The time of a calendar date, nothing when there is no such date or time of day.
[[nodiscard]] std::optional<Seconds> TimeOf(int year, int month, int day, int hour, int minute, int second);

/// The time of "yymmddHHNN" or "yymmddHHNNSS" (years 2000 to 2099), nothing when the text is neither.
[[nodiscard]] std::optional<Seconds> ParseTimeDigits(std::string_view digits);

/// The time of "YYYY/MM/DD HH:MM" (fields of any width), nothing when the text is none.
[[nodiscard]] std::optional<Seconds> ParseTime(std::string_view text);

/// Appends the time as a unit writes it: 2010/3/12 14:05.
void AppendTime(std::string& out, Seconds time);

/// Appends the time with seconds: 2010/3/12 14:05:09.
void AppendTimeWithSeconds(std::string& out, Seconds time);

}  // namespace corvane::basestation
