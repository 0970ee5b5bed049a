// Where the items of a raw file's lines stand, counted from 0. Source: docs/formats/raw-file.md.
#pragma once

#include <cstddef>

namespace corvane {

/// In a header.
namespace header_item {
inline constexpr std::size_t kVersion = 0;
inline constexpr std::size_t kSiteID = 1;
inline constexpr std::size_t kFixed = 2;    ///< how many items a reading has before those of its sensors
inline constexpr std::size_t kSensors = 3;  ///< how many items the sensors have together
inline constexpr std::size_t kReadings = 4;
inline constexpr std::size_t kDate = 5;  ///< the unit's clock
inline constexpr std::size_t kBattery = 6;
inline constexpr std::size_t kAmbient = 7;
}  // namespace header_item

/// In a reading. Behind the count come extra analogue channels, then the sensors.
namespace reading_item {
inline constexpr std::size_t kDate = 0;
inline constexpr std::size_t kBattery = 1;
inline constexpr std::size_t kAmbient = 2;
inline constexpr std::size_t kCount = 3;
inline constexpr std::size_t kFirstExtra = 4;
inline constexpr std::size_t kFewest = 3;  ///< a line with fewer is no reading
}  // namespace reading_item

inline constexpr std::size_t kItemsPerSensor = 3;  ///< moisture, salinity, temperature

}  // namespace corvane
