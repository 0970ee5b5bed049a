#pragma once

#include <string>
#include <vector>

#include "base/status.h"
#include "history/network_status.h"
#include "platform/history_store.h"

namespace corvane::console {

/// The history of an application folder, as a command reads it beside whoever writes it. Changes nothing.
class HistoryReading {
 public:
  /// `folder` is the application folder.
  explicit HistoryReading(std::string folder);

  /// Reads what the status needs; the text of a failure is one sentence that says what to do.
  Status ReadForStatus();
  /// Reads all that there is of one unit; behind `ReadForStatus`.
  Status ReadUnit(std::int64_t key, HistoryContents& contents);

  [[nodiscard]] Moment now() const { return now_; }
  [[nodiscard]] const HistoryContents& contents() const { return contents_; }
  /// How the network stands; with `names` only these units are looked at. Throws `UsageError` for names that nobody
  /// bears.
  [[nodiscard]] NetworkStatus StatusOf(const std::vector<std::string>& names) const;
  /// The unit of a name or ID. Throws `UsageError`.
  [[nodiscard]] const UnitRecord& FindUnit(const std::string& name) const;

  /// Reads what `query` asks for.
  Status Read(const HistoryQuery& query, HistoryContents& contents) const;

 private:
  std::string folder_;
  Moment now_;
  HistoryContents contents_;
};

}  // namespace corvane::console
