#include "history/trend.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace corvane {
namespace {

double Median(std::vector<double>& av_Values) {
  const auto middle = av_Values.begin() + static_cast<std::ptrdiff_t>(av_Values.size() / 2);
  std::nth_element(av_Values.begin(), middle, av_Values.end());
  if (av_Values.size() % 2 == 1) return *middle;
  return (*middle + *std::max_element(av_Values.begin(), middle)) / 2;
}

}  // namespace

std::optional<Trend> RobustTrend(const std::vector<TrendPoint>& av_Points, std::size_t al_Fewest) {
  if (av_Points.empty() || av_Points.size() < al_Fewest) return std::nullopt;
  const auto [first, last] = std::ranges::minmax(av_Points, {}, &TrendPoint::days);
  if (first.days == last.days) return std::nullopt;
  std::vector<double> values;
  values.reserve(av_Points.size() * av_Points.size() / 4);
  for (std::size_t i = 0; i < av_Points.size(); ++i) {
    for (std::size_t j = i + 1; j < av_Points.size(); ++j) {
      const double days = av_Points[j].days - av_Points[i].days;
      if (2 * std::abs(days) < last.days - first.days) continue;
      values.push_back((av_Points[j].value - av_Points[i].value) / days);
    }
  }
  Trend trend;
  trend.slope = Median(values);
  values.clear();
  for (const TrendPoint& point : av_Points) values.push_back(point.value - trend.slope * point.days);
  trend.at_zero = Median(values);
  return trend;
}

}  // namespace corvane
