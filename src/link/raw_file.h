#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "base/dates.h"

namespace corvane {

/// What was found when the last date of a raw file was read.
struct LastDateResult {
  DateTime last_date;    ///< none when the file holds no reading or is missing
  std::string problems;  ///< "Line: n text" lines that could not be read as readings, empty when none
  std::int64_t line = 0; ///< number of the line that gave the date, 0 when it is not known
};

/// Cuts an unterminated or NUL-filled tail off a raw file, so that the file ends with a whole line.
///
/// Returns the bytes cut off, empty when the file is whole or missing. Throws `RunTimeError` when the file cannot be
/// read or cut.
std::string RepairTornTail(const std::string& as_File);

/// Finds the date of the last reading stored in a raw file, from its end. Throws `RunTimeError` on a read error.
///
/// A file below 1024 bytes is read from its start; `av_Poll` runs after each line (it may yield) and stops the reading
/// by returning false.
[[nodiscard]] LastDateResult ReadLastDate(const std::string& as_File, const std::function<bool()>& av_Poll);

}  // namespace corvane
