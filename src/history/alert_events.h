// What is told of alerts, in words; for the book of alerts.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "history/alert_book.h"
#include "history/network_status.h"
#include "platform/history_records.h"

namespace corvane {

/// A cause is over behind so many rounds that have shown it to be.
inline constexpr std::int64_t kGoodRounds = 2;

/// The sentences of a unit's troubles that are told as `as_Cause`.
[[nodiscard]] std::string TroublesOf(const UnitStatus& av_Unit, std::string_view as_Cause);
/// Relays are told apart by number; names may be the same.
[[nodiscard]] std::string RelayText(const UnitStatus& av_Unit);
[[nodiscard]] bool IsWatched(const UnitStatus& av_Unit);
/// Readings that are missing, and that the unit will be asked for by itself.
[[nodiscard]] std::int64_t ToBeAskedFor(const UnitStatus& av_Unit);

/// What there is to tell of the records that stand; `av_Wrong` are those whose causes are so now.
[[nodiscard]] std::vector<AlertEvent> EventsToTell(const std::vector<AlertRecord>& av_Standing,
                                                   const std::set<AlertKey>& av_Wrong, const AlertView& av_View);

}  // namespace corvane
