#include "window/plot/plot_line.h"

#include <algorithm>
#include <utility>

namespace corvane::window {
namespace {

constexpr std::size_t kFanOut = 16;

}  // namespace

PlotLine::PlotLine(std::shared_ptr<const ReadingSeries> series, std::size_t column, QString name, int axis)
    : series_(std::move(series)), column_(column), name_(std::move(name)), axis_(axis) {
  std::vector<Extremes> level(size() / kFanOut);
  for (std::size_t block = 0; block < level.size(); ++block) {
    for (std::size_t i = 0; i < kFanOut; ++i) level[block].Take(ValueAt(block * kFanOut + i));
  }
  while (!level.empty()) {
    std::vector<Extremes> above(level.size() / kFanOut);
    for (std::size_t block = 0; block < above.size(); ++block) {
      for (std::size_t i = 0; i < kFanOut; ++i) above[block].Take(level[block * kFanOut + i]);
    }
    levels_.push_back(std::move(level));
    level = std::move(above);
  }
}

std::size_t PlotLine::FirstFrom(double time) const {
  const auto& times = series_->times;
  const auto at = std::lower_bound(times.begin(), times.end(), time,
                                   [](std::int64_t each, double wanted) { return static_cast<double>(each) < wanted; });
  return static_cast<std::size_t>(at - times.begin());
}

std::size_t PlotLine::Nearest(double time) const {
  const std::size_t behind = std::min(FirstFrom(time), size() - 1);
  if (behind == 0) return 0;
  const bool before = time - static_cast<double>(TimeAt(behind - 1)) < static_cast<double>(TimeAt(behind)) - time;
  return before ? behind - 1 : behind;
}

bool PlotLine::Covers(double time) const {
  const std::size_t behind = FirstFrom(time);
  if (behind == size()) return false;
  return static_cast<double>(TimeAt(behind)) == time || (behind > 0 && !BrokenBetween(behind - 1, behind));
}

Extremes PlotLine::Between(std::size_t first, std::size_t end) const {
  Extremes found;
  for (; first < end && first % kFanOut != 0; ++first) found.Take(ValueAt(first));
  for (; first < end && end % kFanOut != 0; --end) found.Take(ValueAt(end - 1));
  for (const std::vector<Extremes>& level : levels_) {
    first /= kFanOut;
    end /= kFanOut;
    const bool is_last = &level == &levels_.back();
    for (; first < end && (is_last || first % kFanOut != 0); ++first) found.Take(level[first]);
    for (; first < end && end % kFanOut != 0; --end) found.Take(level[end - 1]);
    if (first >= end) break;
  }
  return found;
}

bool PlotLine::BrokenBetween(std::size_t before, std::size_t behind) const {
  const auto at = std::upper_bound(series_->breaks.begin(), series_->breaks.end(), before);
  return at != series_->breaks.end() && *at <= behind;
}

TimeSpan PlotContents::Whole() const {
  TimeSpan whole;
  bool first = true;
  for (const PlotLine& line : lines) {
    if (line.size() == 0) continue;
    const auto from = static_cast<double>(line.TimeAt(0));
    const auto to = static_cast<double>(line.TimeAt(line.size() - 1));
    whole = first ? TimeSpan{from, to} : TimeSpan{std::min(whole.from, from), std::max(whole.to, to)};
    first = false;
  }
  return whole;
}

}  // namespace corvane::window
