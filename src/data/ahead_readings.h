#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>

#include "base/dates.h"

namespace corvane {

/// Readings of raw files that are dated later than the last one of their file.
///
/// They are there when a unit's clock was set back. The unit is asked for what is later than the last reading, so it
/// sends them again each time.
class AheadReadings {
 public:
  /// The lines of a raw file that are dated later than `av_Last`, its last reading; none in nearly every file.
  ///
  /// Reads what the file has grown by since it was last asked about, the whole file when there is such a line.
  /// `av_Poll` runs after each block; it may yield and ends the search by returning false. Throws `RunTimeError` on a
  /// read error.
  [[nodiscard]] std::set<std::string, std::less<>> Find(const std::string& as_File, DateTime av_Last,
                                                        const std::function<bool()>& av_Poll);

 private:
  /// What is known of the beginning of a file.
  struct Known {
    std::int64_t bytes = 0;  ///< whole lines
    DateTime latest;
  };
  std::map<std::string, Known> known_;
};

}  // namespace corvane
