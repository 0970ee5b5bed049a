#include "history/gap_book.h"

#include <algorithm>

#include "state/records.h"

namespace corvane {
namespace {

bool IsOpen(GapState ae_State) {
  return ae_State == GapState::Found || ae_State == GapState::Asked || ae_State == GapState::Lost;
}

bool Holds(const GapRecord& av_Whole, const GapRecord& av_Part) {
  return av_Whole.from <= av_Part.from && av_Part.to <= av_Whole.to;
}

bool IsSame(const GapRecord& av_One, const GapRecord& av_Other) {
  return av_One.from == av_Other.from && av_One.to == av_Other.to;
}

/// Gives a gap that was found what is known of it.
GapRecord WithWhatIsKnown(GapRecord av_Found, const std::vector<GapRecord>& av_Known, Moment av_Now) {
  av_Found.found = av_Now;
  av_Found.changed = av_Now;
  const auto known = std::find_if(av_Known.begin(), av_Known.end(),
                                  [&](const GapRecord& each) { return IsOpen(each.state) && Holds(each, av_Found); });
  if (known == av_Known.end()) return av_Found;
  av_Found.tries = known->tries;
  av_Found.found = known->found;
  if (av_Found.state != GapState::Clock) av_Found.state = known->state;
  const bool unchanged = IsSame(*known, av_Found) && known->state == av_Found.state;
  if (unchanged) av_Found.changed = known->changed;
  return av_Found;
}

}  // namespace

bool IsInReach(const GapRecord& av_Gap, DateTime av_Now, std::int64_t al_Limit) {
  const std::int64_t period = (av_Gap.to - av_Gap.from) / (av_Gap.missing + 1);
  return av_Now - av_Gap.from <= std::max<std::int64_t>(period, 1) * al_Limit;
}

bool IsAskedForByItself(const GapRecord& av_Gap, std::int32_t al_GetFrom, DateTime av_Now, std::int64_t al_Limit) {
  return al_GetFrom == kFromRadio && av_Gap.tries < kMostGapTries && IsInReach(av_Gap, av_Now, al_Limit);
}

std::vector<GapRecord> MergeGaps(const std::vector<GapRecord>& av_Known, const RawScan& av_Scan, Moment av_Now) {
  std::vector<GapRecord> merged;
  for (const GapRecord& found : av_Scan.gaps) merged.push_back(WithWhatIsKnown(found, av_Known, av_Now));
  const std::size_t found = merged.size();
  const auto is_there = [&](const auto& av_Is) {
    return std::any_of(merged.begin(), merged.begin() + static_cast<std::ptrdiff_t>(found), av_Is);
  };
  const auto was_filled = [&](const GapRecord& av_Gap) {
    return std::find(av_Scan.filled.begin(), av_Scan.filled.end(), av_Gap.from) != av_Scan.filled.end();
  };
  for (GapRecord known : av_Known) {
    if (known.to <= av_Scan.changed_from) continue;
    if (is_there([&](const GapRecord& each) { return each.from == known.from; })) continue;
    if (IsOpen(known.state)) {
      const bool split = is_there([&](const GapRecord& each) { return Holds(known, each) || Holds(each, known); });
      known.state = was_filled(known) && !split ? GapState::Filled : GapState::Dropped;
      known.changed = av_Now;
    } else if (known.state == GapState::Clock) {
      known.state = GapState::Dropped;
    }
    merged.push_back(known);
  }
  return merged;
}

}  // namespace corvane
