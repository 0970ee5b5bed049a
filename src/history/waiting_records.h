#pragma once

#include <cstddef>
#include <cstdint>
#include <map>

#include "platform/history_records.h"

namespace corvane {

/// What waits to be written may grow to so many records; the room of contacts is what the others leave, half at least.
inline constexpr std::size_t kMostWaiting = 10'000;

/// The records of all kinds.
[[nodiscard]] std::size_t CountOf(const HistoryContents& av_Contents);

/// Puts `av_From` behind `av_To`.
void Append(HistoryContents& av_To, const HistoryContents& av_From);

/// Gives contacts, deliveries, gaps and alerts the keys of units that `av_Units` names for theirs, and rounds keys that
/// are greater by `al_Rounds`.
void RenumberRecords(HistoryContents& av_Records, const std::map<std::int64_t, std::int64_t>& av_Units,
                     std::int64_t al_Rounds);

/// Where more than `kMostWaiting` wait, keeps of each key what was said last, and of that the newest. True when
/// something was lost that nothing newer replaces.
[[nodiscard]] bool KeepNewest(HistoryContents& av_Waiting);

}  // namespace corvane
