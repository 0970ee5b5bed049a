#pragma once

#include <cstdint>
#include <vector>

#include "data/completeness.h"
#include "platform/history_records.h"

namespace corvane {

/// By itself a gap is asked for so often.
inline constexpr std::int64_t kMostGapTries = 3;

/// Whether what a unit has logged since the gap's begin is no more than so many lines, which a repair takes at most.
[[nodiscard]] bool IsInReach(const GapRecord& av_Gap, DateTime av_Now, std::int64_t al_Limit);
/// Whether a gap that is open is still asked for without a person's word, where the setting wants it.
[[nodiscard]] bool IsAskedForByItself(const GapRecord& av_Gap, std::int32_t al_GetFrom, DateTime av_Now,
                                      std::int64_t al_Limit);

/// What becomes of the gaps that are known of a unit behind a scan of its raw file.
///
/// A gap that is found again keeps its state, its tries and when it was found; the parts of one that was filled in part
/// keep them too. One that is gone is `Filled` where readings stand in it now; else it was none, or the file is
/// another one, and it is `Dropped`. Gaps from before `av_Scan.changed_from` are left as they are.
[[nodiscard]] std::vector<GapRecord> MergeGaps(const std::vector<GapRecord>& av_Known, const RawScan& av_Scan,
                                               Moment av_Now);

}  // namespace corvane
