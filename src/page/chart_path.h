#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "base/dates.h"

namespace corvane {

/// What a small chart shows: values in the order of time.
struct ChartData {
  std::span<const std::int64_t> times;  ///< `DateTime::seconds()`, ascending
  std::span<const double> values;       ///< as many
  std::span<const std::size_t> breaks;  ///< ascending places that a gap lies before
  DateTime from;
  DateTime to;
  double least_range = 0;  ///< from the lowest to the highest value of the scale at least: noise is to look like noise
};

/// A line in a field of `kChartWidth` by `kChartHeight`, in the language of SVG paths.
struct ChartPath {
  std::string path;  ///< empty: there is nothing to show
  double least = 0;  ///< of the values shown
  double most = 0;
};

inline constexpr std::int64_t kChartWidth = 300;
inline constexpr std::int64_t kChartHeight = 40;

/// Draws the extremes of each sixtieth of the span, so that nothing that stands out is left out. Values that are no
/// numbers are left out.
[[nodiscard]] ChartPath DrawChart(const ChartData& av_Data);

}  // namespace corvane
