#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "data/completeness.h"
#include "history/history.h"
#include "platform/event_loop.h"
#include "platform/history_records.h"
#include "state/file_names.h"
#include "state/records.h"

namespace corvane {

/// The gaps of the units' raw files that are worth asking for.
///
/// Where a history is kept, its states and tries count; else they are known until the program ends.
class UnitGaps {
 public:
  UnitGaps(const Registry& av_Registry, const FileNames& av_Names, EventLoop& av_Loop, History& av_History)
      : registry_(av_Registry), names_(av_Names), loop_(av_Loop), history_(av_History) {}

  /// Why the gaps of unit `al_Unit` (from 1) cannot be filled; empty when they can.
  [[nodiscard]] std::string WhyNone(std::int64_t al_Unit) const;
  /// The gaps of a unit's raw file that are neither known to be lost nor a matter of its clock, the newest first.
  /// **Yields.**
  ///
  /// Reads what the file has grown by since it was last asked for; `av_Stopped` ends that. Throws `RunTimeError` then,
  /// and when the file cannot be read, or the history, without which a matter of the clock cannot be told from a gap.
  [[nodiscard]] std::vector<GapRecord> Find(std::int64_t al_Unit, const std::function<bool()>& av_Stopped);
  /// The same as the history knows them, without a look at the file; where none is kept, what `Find` finds. **Yields.**
  [[nodiscard]] std::vector<GapRecord> Remembered(std::int64_t al_Unit, const std::function<bool()>& av_Stopped);
  /// Remembers what became of a gap.
  void Note(std::int64_t al_Unit, const GapRecord& av_Gap);

 private:
  /// What is known of one raw file.
  struct Known {
    ScanRecord scan;
    std::vector<GapRecord> gaps;
  };
  [[nodiscard]] Known& Of(std::int64_t al_Unit);
  void Scan(std::int64_t al_Unit, Known& av_Known, const std::function<bool()>& av_Stopped);
  [[nodiscard]] ScanHints HintsFor(std::int64_t al_Unit);
  /// Takes over what the history knows of a gap or of one that it was a part of.
  void TakeState(std::int64_t al_Unit, GapRecord& av_Gap);

  const Registry& registry_;
  const FileNames& names_;
  EventLoop& loop_;
  History& history_;
  std::map<std::string, Known> known_;  ///< by raw file
};

}  // namespace corvane
