// Reading the history beside whoever writes it.
#pragma once

#include <string>
#include <string_view>

#include "base/status.h"
#include "platform/history_store.h"

namespace corvane {

inline constexpr std::string_view kHistoryFile = "history.db";  ///< in the application folder
/// Where the history of an application folder lies.
[[nodiscard]] std::string HistoryFile(const std::string& as_Folder);
/// A failure of the store in words for the user, one sentence that says what to do; the code stays.
[[nodiscard]] Status HistoryFailure(const Status& av_Failure, const std::string& as_File);
/// Reads what `av_Query` asks for from the history of an application folder; `av_Store` is open afterwards where that
/// went well. A failure is as `HistoryFailure` says it.
Status ReadHistory(HistoryStore& av_Store, const std::string& as_Folder, const HistoryQuery& av_Query,
                   HistoryContents& av_Result);

}  // namespace corvane
