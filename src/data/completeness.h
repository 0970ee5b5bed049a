// What a raw file lacks: gaps between readings, and how much of each day is there. The rules: docs/completeness.md.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/dates.h"
#include "platform/history_records.h"

namespace corvane {

/// The unit's clock was set, or was found to have jumped, somewhere between two of its times.
struct ClockStep {
  DateTime from;
  DateTime to;
  std::optional<std::int64_t> seconds;  ///< by so much, forward above zero; none: set by command, by what is not known
};

/// The log period of a unit was set, or may have been by a command without an answer; `at` in the unit's time.
struct PeriodChange {
  DateTime at;
  std::int64_t seconds = 0;
  bool certain = true;
  bool placed = true;  ///< false: the unit's clock was not told before and behind it, and `at` may be far off
};

/// The values of one kind of item that its lookup table covers.
struct TableRange {
  double least = 0;
  double most = 0;
};

/// What is known of a raw file from elsewhere.
struct ScanHints {
  std::vector<ClockStep> steps;
  std::vector<PeriodChange> periods;
  DateTime last_contact;  ///< the unit's time at its last answer: readings are expected until then; none: not known
  std::optional<TableRange> moisture;  ///< of raw items; none: not looked at
  std::optional<TableRange> salinity;
  std::vector<GapRecord> known;  ///< gaps of former scans, to be told whether readings stand there now
};

/// What a scan has found. `unit` of the records is that of the former scan.
struct RawScan {
  ScanRecord scan;
  DateTime changed_from;         ///< days and gaps from then on are all in here, replacing what was known of them
  std::vector<DayRecord> days;   ///< from the midnight of `changed_from` on, days without a reading included
  std::vector<GapRecord> gaps;   ///< `Found` or `Clock`, whose later reading is later than `changed_from`
  std::vector<DateTime> filled;  ///< begins of known gaps between whose ends readings came
  bool whole = false;            ///< the file was read from its begin
  bool missing = false;          ///< there is no such file
  bool cancelled = false;        ///< nothing is found, and `scan` is the former one
  bool has_header = false;
  std::int64_t out_of_order = 0;  ///< readings not later than the one before, in what was read
};

/// Reads what a raw file has grown by since `av_Former`; all of it when the file is not the one that was read then.
///
/// The newest distances wait for two more readings. The hints have to hold what is known since the file's begin.
/// `av_Poll` runs after each block; by returning false it ends the scan. Throws `RunTimeError`
/// when the file cannot be read; a file that is missing gives an empty scan.
[[nodiscard]] RawScan ScanRawFile(const std::string& as_File, const ScanRecord& av_Former, const ScanHints& av_Hints,
                                  const std::function<bool()>& av_Poll = {});

}  // namespace corvane
