#include "history/believed_time.h"

#include <algorithm>
#include <iterator>

namespace corvane {
namespace {

constexpr std::int64_t kMonth = 30 * kSecondsPerDay;
constexpr std::int64_t kAheadADay = 3 * kSecondsPerDay;

}  // namespace

void BelievedTime::TakeRounds(const std::vector<RoundRecord>& av_Rounds) {
  if (!believed_.IsNone() || av_Rounds.empty()) return;
  const auto last = std::min<std::ptrdiff_t>(std::ssize(av_Rounds), kRounds);
  const auto first = std::min_element(av_Rounds.end() - last, av_Rounds.end(),
                                      [](const auto& one, const auto& other) { return one.began < other.began; });
  believed_ = {first->began.utc + kMonth, first->began.ahead};
}

Moment BelievedTime::Today(Moment av_Now, std::vector<DateTime> av_LastReadings) {
  believed_ = believed_.IsNone() ? av_Now : std::min(av_Now, Moment{believed_.utc + kAheadADay, believed_.ahead});
  if (av_LastReadings.empty()) return believed_;
  const auto middle = av_LastReadings.begin() + std::ssize(av_LastReadings) / 2;
  std::nth_element(av_LastReadings.begin(), middle, av_LastReadings.end());
  // In the units' time; some hours do not matter here.
  believed_.utc = std::min(believed_.utc, *middle - Moment{}.Local() + kMonth);
  return believed_;
}

}  // namespace corvane
