#pragma once

#include <cstddef>

#include "platform/history_records.h"

namespace corvane {

/// What waits to be written may grow to so many records; the room of contacts is what the others leave, half at least.
inline constexpr std::size_t kMostWaiting = 10'000;

/// The records of all kinds.
[[nodiscard]] std::size_t CountOf(const HistoryContents& av_Contents);

/// Puts `av_From` behind `av_To`.
void Append(HistoryContents& av_To, const HistoryContents& av_From);

/// Where more than `kMostWaiting` wait, keeps of each key what was said last, and of that the newest. True when
/// something was lost that nothing newer replaces.
[[nodiscard]] bool KeepNewest(HistoryContents& av_Waiting);

}  // namespace corvane
