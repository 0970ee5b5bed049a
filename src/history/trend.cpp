#include "history/trend.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace corvane {
namespace {

constexpr std::ptrdiff_t kFewestInHalf = 4;

double Median(std::vector<double>& av_Values) {
  const auto middle = av_Values.begin() + static_cast<std::ptrdiff_t>(av_Values.size() / 2);
  std::nth_element(av_Values.begin(), middle, av_Values.end());
  if (av_Values.size() % 2 == 1) return *middle;
  return (*middle + *std::max_element(av_Values.begin(), middle)) / 2;
}

/// How far two points have to be apart to count: half of the whole time, where enough points lie in either half that
/// none of them decides; else any time.
double LeastApart(const std::vector<TrendPoint>& av_Points, double ad_First, double ad_Last) {
  const double half = (ad_Last - ad_First) / 2;
  const auto early = std::ranges::count_if(av_Points, [&](const TrendPoint& p) { return p.days < ad_First + half; });
  return std::min(early, std::ssize(av_Points) - early) >= kFewestInHalf ? half : 0;
}

}  // namespace

std::optional<Trend> RobustTrend(const std::vector<TrendPoint>& av_Points, std::size_t al_Fewest) {
  if (av_Points.empty() || av_Points.size() < al_Fewest) return std::nullopt;
  const auto [first, last] = std::ranges::minmax(av_Points, {}, &TrendPoint::days);
  if (first.days == last.days) return std::nullopt;
  const double least = LeastApart(av_Points, first.days, last.days);
  std::vector<double> values;
  values.reserve(av_Points.size() * av_Points.size() / (least > 0 ? 4 : 2));
  for (std::size_t i = 0; i < av_Points.size(); ++i) {
    for (std::size_t j = i + 1; j < av_Points.size(); ++j) {
      const double days = av_Points[j].days - av_Points[i].days;
      if (days == 0 || std::abs(days) < least) continue;
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
