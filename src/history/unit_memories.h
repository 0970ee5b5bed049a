#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "data/completeness.h"
#include "history/clock_book.h"
#include "platform/history_records.h"

namespace corvane {

/// What is kept in memory of a unit's history.
struct UnitMemory {
  ScanRecord scan;
  /// Those that are neither filled nor a matter of the clock, and those settled since the start.
  std::vector<GapRecord> gaps;
  ClockBook clock;
  bool contacted = false;   ///< the unit has answered, or brought readings, since its raw file was scanned
  bool clock_read = false;  ///< the contacts of former times are in the clock book
};

/// The memories of all units, by the keys of the history.
class UnitMemories {
 public:
  /// That of a unit; a new one where there is none. Stays where it is for good.
  [[nodiscard]] UnitMemory& Of(std::int64_t al_Key) { return units_[al_Key]; }

  /// Takes scans and gaps as the file has them, instead of those known here. `av_Units`: keys that the file has
  /// changed, former and new.
  void Adopt(const HistoryContents& av_Stored, const std::map<std::int64_t, std::int64_t>& av_Units);
  /// Takes a gap, or what has become of one that is known.
  void Take(const GapRecord& av_Gap);
  /// Takes what a scan has found: gaps instead of those that reach behind `av_From`.
  void Take(const ScanRecord& av_Scan, const std::vector<GapRecord>& av_Gaps, DateTime av_From);
  /// Contacts are to be read anew into the clock books: what is known of this computer's clock has changed.
  void ForgetClocks();
  /// The last readings of the raw files, as far as there are any.
  [[nodiscard]] std::vector<DateTime> LastReadings() const;

 private:
  std::map<std::int64_t, UnitMemory> units_;
};

}  // namespace corvane
