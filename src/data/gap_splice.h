// Readings put between two others of a raw file. Format: docs/formats/raw-file.md.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/dates.h"
#include "base/status.h"

namespace corvane {

/// Two readings of a raw file, one behind the other, with others missing between them.
struct ReadingPair {
  DateTime from;
  DateTime to;
};

enum class SpliceOutcome : std::uint8_t {
  Done,
  NothingNew,   ///< the file holds all of the readings, or none were given
  NotTogether,  ///< the pair does not stand in the file, one behind the other
  NotBetween,   ///< a reading is not dated between the pair and later than the one before it
  Changed,      ///< the file was changed while it was read
  Stopped       ///< the caller wanted no more of it
};

struct SpliceResult {
  SpliceOutcome outcome = SpliceOutcome::NothingNew;
  std::int64_t added = 0;        ///< readings
  Status synced = Status::Ok();  ///< behind `Done`: a failure when a power cut may bring the former file back
};

/// The former raw file while the new one takes its place: this behind its name. Another name than those that fetched
/// files are kept under.
inline constexpr std::string_view kFormerRawFile = ".unrepaired";

/// The date of a line of a raw file that has the shape of a reading; none for any other line.
[[nodiscard]] std::optional<DateTime> DateOfReading(std::string_view as_Line);

/// Puts readings between a pair of them; every line that is there keeps its bytes and its place.
///
/// A reading that the file holds to the letter is left out. The whole file is written anew, brought to the disk and
/// renamed; the former one keeps a second name until then. Whatever ends the program meanwhile leaves the former file
/// or the new one, whole, and with any outcome but `Done` the file is as it was. The file must be closed. `av_Poll`
/// runs after each block; it may yield and by returning false ends it. Throws `RunTimeError` when a file cannot be read
/// or written.
[[nodiscard]] SpliceResult SpliceReadings(const std::string& as_File, const ReadingPair& av_Pair,
                                          const std::vector<std::string>& as_Readings,
                                          const std::function<bool()>& av_Poll);

}  // namespace corvane
