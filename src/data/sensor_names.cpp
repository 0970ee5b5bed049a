#include "data/sensor_names.h"

#include <vector>

#include "base/numbers.h"
#include "base/text.h"
#include "data/series_phrases.h"

namespace corvane {

std::optional<double> DepthOf(std::string_view as_Text) {
  constexpr double kDeepest = 10000;
  const std::optional<double> depth = ParseNumber(as_Text);
  return depth && *depth >= 0 && *depth <= kDeepest ? depth : std::nullopt;
}

std::string SensorName(std::string_view as_Depths, std::int32_t al_Sensor, const Phrases& av_Phrases) {
  const std::string number = std::to_string(al_Sensor);
  const std::vector<std::string_view> depths = Split(as_Depths, ';');
  const bool listed = al_Sensor >= 1 && static_cast<std::size_t>(al_Sensor) <= depths.size();
  const auto depth = listed ? DepthOf(depths[static_cast<std::size_t>(al_Sensor) - 1]) : std::nullopt;
  return depth ? av_Phrases.Text(kSeriesSays.sensor_at, {number, ShortestText(*depth)})
               : av_Phrases.Text(kSeriesSays.sensor, {number});
}

}  // namespace corvane
