// What of a history file is read for a query.
#pragma once

#include "platform/history_store.h"
#include "sqlite/database.h"

namespace corvane {

/// Reads what `query` asks for into the empty `contents`, all of it as it stands at one moment. Throws `SqliteError`.
void ReadContents(Database& database, const HistoryQuery& query, HistoryContents& contents);

}  // namespace corvane
