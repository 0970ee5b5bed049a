#pragma once

#include <vector>

#include "history/unit_status.h"

namespace corvane {

/// All that is wrong with a unit besides being silent or late, the gravest first. `av_Status` holds what is known of
/// its readings, clock and battery.
[[nodiscard]] std::vector<Trouble> TroublesOf(const UnitHistory& av_History, const StatusRules& av_Rules,
                                              const UnitStatus& av_Status);

/// What their texts are made of.
[[nodiscard]] std::vector<Phrase> TroublePhrases();

}  // namespace corvane
