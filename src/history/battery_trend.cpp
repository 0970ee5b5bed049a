#include "history/battery_trend.h"

#include <vector>

#include "history/trend.h"

namespace corvane {
namespace {

constexpr std::int64_t kDays = 30;
constexpr std::size_t kFewestDays = 5;
constexpr double kChanged = 1.0;       ///< volts up from one day to the next: a charged battery was put in
constexpr double kFarthestDays = 365;  ///< 30 days tell nothing of what is beyond

std::vector<TrendPoint> PointsSinceChange(std::span<const DayRecord> av_Days, DateTime av_From) {
  std::vector<TrendPoint> points;
  for (const DayRecord& day : av_Days) {
    if (day.day < av_From || !day.battery) continue;
    if (!points.empty() && *day.battery - points.back().value > kChanged) points.clear();
    points.push_back({day.day.days(), *day.battery});
  }
  return points;
}

}  // namespace

BatteryView BatteryOf(std::span<const DayRecord> av_Days, std::optional<double> ad_Newest, double ad_Limit,
                      DateTime av_Now) {
  const std::vector<TrendPoint> points = PointsSinceChange(av_Days, av_Now - kDays * kSecondsPerDay);
  BatteryView view;
  view.volts = ad_Newest;
  if (!view.volts && !points.empty()) view.volts = points.back().value;
  const auto trend = RobustTrend(points, kFewestDays);
  if (!trend) return view;
  view.slope = trend->slope;
  const double above = trend->At(points.back().days) - ad_Limit;
  if (trend->slope >= 0 || above <= 0) return view;
  const double left = above / -trend->slope - (av_Now.days() - points.back().days);
  if (left <= kFarthestDays) view.days_left = left > 0 ? left : 0;
  return view;
}

}  // namespace corvane
