#pragma once

#include <optional>
#include <vector>

namespace corvane {

struct TrendPoint {
  double days = 0;
  double value = 0;
};

/// A line through points that a few wild ones do not move.
struct Trend {
  double slope = 0;  ///< a day
  double at_zero = 0;

  [[nodiscard]] double At(double days) const { return at_zero + slope * days; }
};

/// The line whose slope is the median of the slopes between pairs of points (Theil and Sen), where there are enough of
/// those that are apart by half of the whole time or more: nearer ones tell little but how inexact each is. None below
/// `al_Fewest` points or where all points lie at one time. To be given some dozens of points.
[[nodiscard]] std::optional<Trend> RobustTrend(const std::vector<TrendPoint>& av_Points, std::size_t al_Fewest);

}  // namespace corvane
