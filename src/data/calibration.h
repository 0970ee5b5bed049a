#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/dates.h"
#include "base/format.h"
#include "data/lookup.h"

namespace corvane {

/// What settings and unit record say about a conversion, read once at its start.
struct CalibrationSettings {
  bool Average = false;          ///< average all readings since the last logging time
  bool Kelvin = false;           ///< raw temperatures count from absolute zero
  bool Uncorrected = false;      ///< also write the moisture before its salinity correction
  float MoistureCorrection = 0;  ///< 0 to 50
  float SalinityCorrection = 0;  ///< 0 to 50
  std::string DateFormat;
};

/// The readings of one raw file in engineering units, as lines of its calibrated file.
///
/// Formats: docs/formats/raw-file.md, docs/formats/calibrated-file.md.
class Calibration {
 public:
  /// Every field takes at least a comma of a line, whose length is limited.
  static constexpr std::int64_t kMostFields = 65536;

  Calibration(const CalibrationSettings& av_Settings, Lookups& av_Lookups);

  /// Takes the numbers of fixed and sensor fields from a raw file's header; both are 0 when it does not hold them.
  void TakeHeader(const std::vector<std::string_view>& av_Fields);
  /// Fields that a data line must have.
  [[nodiscard]] std::size_t Expected() const { return expected_; }
  /// Adds a reading to the averages, when those are wanted.
  void AddReading(const std::vector<std::string_view>& av_Fields);
  /// Appends the header line.
  void AppendHeader(std::string& as_Out) const;
  /// Appends the row of a logging time and starts the next averages; `av_Fields` is the reading of that time.
  void AppendRow(std::string& as_Out, DateTime av_When, const std::vector<std::string_view>& av_Fields);

 private:
  void TakeValues(const std::vector<std::string_view>& av_Fields);
  void AppendSensor(std::string& as_Out, std::size_t al_Field);
  [[nodiscard]] double Temperature(double ad_Raw) const;

  CalibrationSettings settings_;
  DatePattern date_pattern_;
  Lookups& lookups_;
  std::size_t fixed_ = 0;
  std::size_t sensors_ = 0;
  std::size_t expected_ = 0;
  std::vector<double> values_;  ///< by field from 0; sums while averaging
  std::int64_t samples_ = 0;    ///< readings in the sums
};

}  // namespace corvane
