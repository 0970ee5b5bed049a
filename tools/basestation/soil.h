#pragma once

#include <cstdint>
#include <string>

#include "calendar.h"

namespace corvane::basestation {

/// What one unit measures: raw values that drift slowly, each computed from the seed, the unit and the reading's
/// number alone, so that a memory of any size needs no storage and a restart gives the same readings.
class Soil {
 public:
  Soil(std::uint64_t seed, int unit_id, int sensors);

  /// Appends the items of one reading, joined by ",": date, battery (mV), ambient (1/100 K), count, then per sensor
  /// moisture, salinity (0 to 4095) and temperature (1/100 K).
  void AppendReading(std::string& out, std::int64_t number, Seconds date) const;

  [[nodiscard]] int sensors() const { return sensors_; }
  /// Battery voltage in mV at a reading.
  [[nodiscard]] std::int64_t Battery(std::int64_t number) const;
  /// Ambient temperature in hundredths of a kelvin at a reading.
  [[nodiscard]] std::int64_t Ambient(std::int64_t number, Seconds date) const;

 private:
  std::int64_t Drift(int channel, std::int64_t number, std::int64_t low, std::int64_t high) const;

  std::uint64_t seed_;
  int sensors_;
};

}  // namespace corvane::basestation
