// Lines of a download and of a raw file. Format: docs/formats/wire-lines.md, docs/formats/raw-file.md.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/dates.h"

namespace corvane {

/// A reply line taken apart; the views point into the line.
struct RawLine {
  std::string_view items_text;          ///< between "$" and "*", or the whole line when it is not framed
  std::vector<std::string_view> items;  ///< split at ",", empty ones included
  bool checksum_good = false;
};

/// Splits `as_Line` into `av_Result`, whose memory is reused.
///
/// A line that holds a control character never has a good checksum: it is not what the unit sent.
void SplitLine(std::string_view as_Line, RawLine& av_Result);
/// The exclusive-or of all character codes as two upper-case hexadecimal digits (as in NMEA 0183 sentences).
[[nodiscard]] std::string LineChecksum(std::string_view as_Text);
/// The date of a reading, "year/month/day hour:minute" with fields of any width; none when it is not valid.
///
/// Year 2001 to 9999, month 1 to 12, day 1 to 31 (a day beyond its month's end counts on), hour 0 to 23, minute 0
/// to 59.
[[nodiscard]] std::optional<DateTime> ParseReadingDate(std::string_view as_Text);

}  // namespace corvane
