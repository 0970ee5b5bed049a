#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "base/dates.h"

namespace corvane {

/// Seconds that a reading may be ahead of this computer: a clock that is wrong by less puts itself right.
inline constexpr std::int64_t kFarAhead = kSecondsPerDay;

/// What was found when the last date of a raw file was read.
struct LastDateResult {
  DateTime last_date;     ///< none when the file holds no reading or is missing
  std::string problems;   ///< "Line: n text" lines that could not be read as readings, empty when none
  std::string line_text;  ///< the line that gave the date
};

/// Finds the date of the last reading stored in a raw file, from its end. Throws `RunTimeError` on a read error.
///
/// A file below 1024 bytes is read from its start. `av_Poll` runs after each line, in a larger file after each block;
/// it may yield and stops the reading by returning false. An unterminated last line and lines with NUL are no readings.
[[nodiscard]] LastDateResult ReadLastDate(const std::string& as_File, const std::function<bool()>& av_Poll);

}  // namespace corvane
