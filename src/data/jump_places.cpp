#include "data/jump_places.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>

namespace corvane {

void JumpPlaces::Take(const Verdict& av_Verdict) {
  const std::int64_t length = av_Verdict.to - av_Verdict.from;
  for (std::size_t i = 0; i < places_.size(); ++i) {
    const ClockStep& step = hints_.steps[i];
    if (!step.seconds || *step.seconds <= 0 || !GapFinder::MayHold(av_Verdict.from, av_Verdict.to, step)) continue;
    Place& place = places_[i];
    ++place.count;
    const std::int64_t left = length - *step.seconds;
    const std::int64_t fit = std::abs(left - av_Verdict.period);
    const bool is_whole = av_Verdict.kind == Verdict::Clock && 2 * left <= 3 * av_Verdict.period;
    if (!is_whole || (place.fit && *place.fit <= fit)) continue;
    place.fit = fit;
    place.middle = av_Verdict.from + length / 2;
  }
}

std::optional<ScanHints> JumpPlaces::Located() const {
  std::optional<ScanHints> located;
  for (std::size_t i = 0; i < places_.size(); ++i) {
    if (places_[i].count < 2 || !places_[i].fit) continue;
    if (!located) located = hints_;
    located->steps[i].from = located->steps[i].to = places_[i].middle;
  }
  return located;
}

bool JumpPlaces::AreOpen(const ScanHints& av_Hints, const std::vector<GapRecord>& av_Gaps, DateTime av_When) {
  return std::any_of(av_Hints.steps.begin(), av_Hints.steps.end(), [&](const ClockStep& step) {
    if (step.seconds.value_or(0) <= 0 || step.to < av_When) return false;
    return std::any_of(av_Gaps.begin(), av_Gaps.end(),
                       [&step](const GapRecord& gap) { return GapFinder::MayHold(gap.from, gap.to, step); });
  });
}

}  // namespace corvane
