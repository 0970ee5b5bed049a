#pragma once

#include <vector>

#include "data/completeness.h"
#include "platform/history_records.h"

namespace corvane {

/// What becomes of the gaps that are known of a unit behind a scan of its raw file.
///
/// A gap that is found again keeps its state, its tries and when it was found; the parts of one that was filled in part
/// keep them too. One that is gone is `Filled` where the file was read from its begin; where it has only grown it was
/// none and is `Dropped`. Gaps from before `av_Scan.changed_from` are left as they are.
[[nodiscard]] std::vector<GapRecord> MergeGaps(const std::vector<GapRecord>& av_Known, const RawScan& av_Scan,
                                               Moment av_Now);

}  // namespace corvane
