#include "history/unit_memories.h"

#include <algorithm>
#include <utility>

namespace corvane {

void UnitMemories::Adopt(const HistoryContents& av_Stored, const std::map<std::int64_t, std::int64_t>& av_Units) {
  // The entries stay where they are: somebody may be at work with one.
  auto former = std::exchange(units_, {});
  while (!former.empty()) {
    auto unit = former.extract(former.begin());
    unit.mapped().scan = {};
    unit.mapped().gaps.clear();
    if (const auto found = av_Units.find(unit.key()); found != av_Units.end()) unit.key() = found->second;
    units_.insert(std::move(unit));
  }
  for (const ScanRecord& scan : av_Stored.scans) units_[scan.unit].scan = scan;
  for (const GapRecord& gap : av_Stored.gaps) units_[gap.unit].gaps.push_back(gap);
}

void UnitMemories::Take(const GapRecord& av_Gap) {
  std::vector<GapRecord>& known = units_[av_Gap.unit].gaps;
  const auto same =
      std::find_if(known.begin(), known.end(), [&](const GapRecord& each) { return each.from == av_Gap.from; });
  if (same == known.end()) {
    known.push_back(av_Gap);
  } else {
    *same = av_Gap;
  }
}

void UnitMemories::Take(const ScanRecord& av_Scan, const std::vector<GapRecord>& av_Gaps, DateTime av_From) {
  UnitMemory& unit = units_[av_Scan.unit];
  std::erase_if(unit.gaps, [&](const GapRecord& each) { return each.to > av_From; });
  for (const GapRecord& gap : av_Gaps) {
    if (gap.state != GapState::Dropped) unit.gaps.push_back(gap);
  }
  unit.scan = av_Scan;
}

void UnitMemories::ForgetClocks() {
  for (auto& [key, unit] : units_) unit.clock_read = false;
}

std::vector<DateTime> UnitMemories::LastReadings() const {
  std::vector<DateTime> lasts;
  for (const auto& [key, unit] : units_) {
    if (!unit.scan.last.IsNone()) lasts.push_back(unit.scan.last);
  }
  return lasts;
}

}  // namespace corvane
