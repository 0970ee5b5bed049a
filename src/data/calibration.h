#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/dates.h"
#include "base/format.h"
#include "data/calibration_rules.h"
#include "data/lookup.h"

namespace corvane {

/// What settings and unit record say about a conversion, read once at its start.
struct CalibrationSettings {
  bool Average = false;      ///< average all readings since the last logging time
  bool Uncorrected = false;  ///< also write the moisture before its salinity correction
  CalibrationFactors Factors;
  std::string DateFormat;
};

/// The readings of one raw file in engineering units, as lines of its calibrated file.
///
/// Formats: docs/formats/raw-file.md, docs/formats/calibrated-file.md.
class Calibration {
 public:
  Calibration(const CalibrationSettings& av_Settings, Lookups& av_Lookups);

  /// Takes the numbers of fixed and sensor fields from a raw file's header; both are 0 when it does not hold them.
  void TakeHeader(const std::vector<std::string_view>& av_Fields);
  /// Fields that a data line must have.
  [[nodiscard]] std::size_t Expected() const { return layout_.expected; }
  /// Takes a data line apart and returns the number of its fields; only one that has those expected is a reading.
  [[nodiscard]] std::size_t TakeLine(std::string_view as_Line);
  /// The first field of the line last taken; points into it.
  [[nodiscard]] std::string_view DateText() const { return date_text_; }
  /// Adds the reading last taken to the averages, when those are wanted.
  void AddReading();
  /// Appends the header line.
  void AppendHeader(std::string& as_Out) const;
  /// Appends the row of a logging time, that of the reading last taken, and starts the next averages.
  void AppendRow(std::string& as_Out, DateTime av_When);

 private:
  void Average();
  /// Writes the fields of one sensor; returns their end.
  [[nodiscard]] char* PutSensor(char* as_Out, const double* av_Values);

  CalibrationSettings settings_;
  DateWriter date_writer_;
  Lookups& lookups_;
  ReadingLayout layout_;
  std::string_view date_text_;
  std::vector<double> values_;   ///< of the line last taken, by field from 0
  std::vector<double> sums_;     ///< by field from 0, while averaging
  std::int64_t samples_ = 0;     ///< readings in the sums
  std::unique_ptr<char[]> row_;  ///< room for all numbers of a row, hardly ever used to its end
};

}  // namespace corvane
