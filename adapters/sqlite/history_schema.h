// What the file of the history looks like inside, version by version. Format: docs/formats/history.md.
#pragma once

#include <cstdint>

#include "sqlite/database.h"

namespace corvane {

/// "Crvn": tells a history from the files of other programs.
inline constexpr std::int64_t kHistoryApplicationId = 0x4372766E;
/// The version that this program writes.
inline constexpr std::int64_t kHistoryVersion = 3;

/// What a file is.
enum class HistoryFile { Empty, Older, Present, Newer, OfAnotherProgram };
[[nodiscard]] HistoryFile RecogniseHistory(Database& database);

/// Makes the tables, or brings those of an older version up to this one; all of it or nothing.
void BringUpToDate(Database& database);
/// Throws when tables or columns of this version are not there.
void CheckTables(Database& database);

}  // namespace corvane
