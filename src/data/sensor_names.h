#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "lang/phrases.h"

namespace corvane {

/// A depth in centimetres; none when the text is none from 0 to 10000.
[[nodiscard]] std::optional<double> DepthOf(std::string_view as_Text);
/// "sensor 2, 20 cm", by the depths of a unit ("10;20;40"); "sensor 2" where they do not say.
[[nodiscard]] std::string SensorName(std::string_view as_Depths, std::int32_t al_Sensor,
                                     const Phrases& av_Phrases = {});

}  // namespace corvane
