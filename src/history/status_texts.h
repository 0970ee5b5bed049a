// Words for what a history holds, the same in every view.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/dates.h"
#include "platform/history_records.h"

namespace corvane {

/// "1 reading", "12 readings".
[[nodiscard]] std::string CountText(std::int64_t al_Count, std::string_view as_One, std::string_view as_Many);
/// A duration in one or two words: "40 seconds", "25 minutes", "5 hours", "12 days"; the sign is left out.
[[nodiscard]] std::string SpanText(std::int64_t al_Seconds);
/// The same for a narrow column: "5 s", "40 min", "30 h", "12 d".
[[nodiscard]] std::string BriefSpanText(std::int64_t al_Seconds);
/// "12 Mar 2010 14:05".
[[nodiscard]] std::string WhenText(DateTime av_When);
/// The same of a moment, as the local clock showed it then.
[[nodiscard]] std::string WhenText(Moment av_When);
/// How one round went, in one sentence without a full stop.
[[nodiscard]] std::string RoundText(const RoundRecord& av_Round);

}  // namespace corvane
