// The readings of a unit as columns of numbers, for whoever shows them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "base/dates.h"
#include "data/calibration_rules.h"
#include "form/form.h"
#include "lang/phrases.h"
#include "state/file_names.h"
#include "state/records.h"

namespace corvane {

enum class Quantity : std::uint8_t { Moisture, Salinity, Temperature, Battery, Ambient, Item };

/// What one column holds.
struct SeriesChannel {
  Quantity quantity = Quantity::Battery;
  std::int32_t number = 0;  ///< of the sensor from 1, of the raw item behind the date from 1; else without meaning

  bool operator==(const SeriesChannel&) const = default;
};

/// Full names of the three lookup tables.
struct LookupFiles {
  std::string moisture;
  std::string salinity;
  std::string correction;
};

/// Whose readings are wanted, and which of them.
struct SeriesRequest {
  std::string raw_file;         ///< full name
  std::string calibrated_file;  ///< full name; read only where there is no raw file
  std::string date_format;      ///< of the calibrated file
  CalibrationFactors factors;
  LookupFiles tables;
  std::vector<SeriesChannel> channels;
  DateTime from;  ///< none: from the first reading
  DateTime to;    ///< included; none: to the last reading
  /// What stands in the raw file before readings from days before `from` is not looked at, whatever its dates.
  bool newest_only = false;
  Phrases phrases;  ///< that a problem is told in
};

/// What was read.
struct ReadingSeries {
  enum class Source : std::uint8_t { None, Raw, Calibrated };
  Source source = Source::None;
  std::int32_t sensors = 0;                  ///< that the unit has
  std::int32_t items = 0;                    ///< of a reading, behind the date; 0 in calibrated files
  std::vector<std::int64_t> times;           ///< `DateTime::seconds()`, ascending
  std::vector<std::vector<double>> columns;  ///< by channel, as long as `times`; empty where there is no such value
  std::vector<std::size_t> breaks;           ///< ascending positions in `times` that a gap lies before
  std::string problem;                       ///< what is not shown and why, a sentence; empty when all is
  bool no_table = false;                     ///< a lookup table that is needed cannot be used
  bool cancelled = false;
};

/// What is known of the unit at `al_Index` (from 1) and its files; channels and span are still to be set.
[[nodiscard]] SeriesRequest RequestOf(const Form& av_Form, const Registry& av_Registry, const FileNames& av_Names,
                                      std::int32_t al_Index);

/// Reads the series in one pass. Never shows anything; touches nothing but the files, so that any thread may call it.
///
/// Values are what the conversion of each single reading gives, before it is rounded; averages and logging times do not
/// count. Lines that the conversion leaves out are left out. A gap is one by docs/completeness.md, the unit's clock
/// steps not being known. `av_Poll` runs now and then; by returning false it ends the reading.
[[nodiscard]] ReadingSeries ReadSeries(const SeriesRequest& av_Request, const std::function<bool()>& av_Poll = {});

}  // namespace corvane
