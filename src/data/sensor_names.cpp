#include "data/sensor_names.h"

#include <vector>

#include "base/numbers.h"
#include "base/text.h"

namespace corvane {

std::optional<double> DepthOf(std::string_view as_Text) {
  constexpr double kDeepest = 10000;
  const std::optional<double> depth = ParseNumber(as_Text);
  return depth && *depth >= 0 && *depth <= kDeepest ? depth : std::nullopt;
}

std::string SensorName(std::string_view as_Depths, std::int32_t al_Sensor) {
  std::string name = "sensor " + std::to_string(al_Sensor);
  const std::vector<std::string_view> depths = Split(as_Depths, ';');
  if (al_Sensor < 1 || static_cast<std::size_t>(al_Sensor) > depths.size()) return name;
  const std::optional<double> depth = DepthOf(depths[static_cast<std::size_t>(al_Sensor) - 1]);
  if (depth) name += ", " + ShortestText(*depth) + " cm";
  return name;
}

}  // namespace corvane
