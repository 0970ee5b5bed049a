// Raw items as values in engineering units. The rules: docs/formats/calibrated-file.md.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/numbers.h"
#include "data/raw_items.h"

namespace corvane {

/// What settings and unit record say about the values of a unit.
struct CalibrationFactors {
  bool kelvin = false;  ///< raw temperatures count from absolute zero
  float moisture = 0;   ///< 0 to 50
  float salinity = 0;   ///< 0 to 50

  /// A factor as it is used: one that is not within 0 to 50 counts as 0.
  [[nodiscard]] static float Held(float ad_Factor) {
    constexpr float kLargest = 50;
    return ad_Factor >= 0 && ad_Factor <= kLargest ? ad_Factor : 0;
  }
};

/// How many items the readings of a raw file have, by its first line.
struct ReadingLayout {
  /// Every field takes at least a comma of a line, whose length is limited.
  static constexpr std::int64_t kMostFields = 65536;

  std::size_t fixed = 0;  ///< items before those of the sensors
  std::size_t sensors = 0;
  std::size_t expected = 0;  ///< items of a reading, the date included; 0 when the line does not say so

  [[nodiscard]] static ReadingLayout FromHeader(const std::vector<std::string_view>& av_Fields) {
    const auto number = [&av_Fields](std::size_t field) {
      return field < av_Fields.size() ? std::int64_t{LeadingInteger(av_Fields[field])} : 0;
    };
    const std::int64_t fixed_items = number(header_item::kFixed);
    const std::int64_t sensor_items = number(header_item::kSensors);
    ReadingLayout layout;
    if (fixed_items < 0 || sensor_items < 0 || fixed_items + sensor_items > kMostFields) return layout;
    layout.fixed = static_cast<std::size_t>(fixed_items);
    layout.expected = static_cast<std::size_t>(fixed_items + sensor_items);
    layout.sensors = (layout.expected - layout.fixed) / kItemsPerSensor;
    return layout;
  }
  /// The first item of a sensor, counted from 1.
  [[nodiscard]] std::size_t ItemOf(std::size_t al_Sensor) const { return fixed + kItemsPerSensor * (al_Sensor - 1); }
};

/// The values of one sensor.
struct SensorValues {
  double uncorrected = 0;  ///< moisture before its salinity correction
  double moisture = 0;
  double salinity = 0;
  double temperature = 0;
};

/// Millivolts as volts.
[[nodiscard]] constexpr double VoltsOf(double ad_Millivolts) {
  return ad_Millivolts / 1000;
}

/// Hundredths of a degree as degrees.
[[nodiscard]] constexpr double TemperatureOf(double ad_Raw, bool ab_Kelvin) {
  // Intended: 273 and not 273.15, and 20 without Kelvin; so the units report their temperatures.
  return ad_Raw / 100 - (ab_Kelvin ? 273 : 20);
}

/// The values of the three items of a sensor. `Tables` has `Moisture`, `Salinity` and `Correction` with `Lookup`.
template <class Tables>
[[nodiscard]] SensorValues ValuesOfSensor(const double* av_Items, const CalibrationFactors& av_Factors,
                                          Tables& av_Tables) {
  constexpr double kReference = 29300;  // 20 degrees in hundredths of a kelvin
  const double from_reference = av_Items[2] - kReference;
  SensorValues values;
  values.uncorrected = av_Tables.Moisture.Lookup(av_Items[0] - av_Factors.moisture * from_reference / 100);
  values.salinity = av_Tables.Salinity.Lookup(av_Items[1] - av_Factors.salinity * from_reference / 100);
  values.moisture = values.uncorrected + av_Tables.Correction.Lookup(values.salinity);
  values.temperature = TemperatureOf(av_Items[2], av_Factors.kelvin);
  return values;
}

}  // namespace corvane
