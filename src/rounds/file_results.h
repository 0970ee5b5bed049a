#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "form/form.h"
#include "platform/history_records.h"
#include "state/run_flags.h"
#include "trace/trace.h"

namespace corvane {

/// What became of the file of one unit.
struct TransferResult {
  std::int64_t unit = 0;
  Target target = Target::Server;
  std::string local;     ///< the file here
  std::string file;      ///< where it was to go: on the server, here, or in the backup
  std::string problem;   ///< empty when it got there, or when there was nothing to move
  bool nothing = false;  ///< the unit has no file yet
};

/// What became of the files that an operation has sent, fetched or backed up, and the signs in the unit list for it.
class FileResults {
 public:
  /// All must outlive this object.
  FileResults(Form& av_Form, const LinkState& av_Link, RunFlags& av_Flags, Trace& av_Trace)
      : form_(av_Form), link_(av_Link), flags_(av_Flags), trace_(av_Trace) {}

  /// Forgets them: an operation begins.
  void Clear() { results_.clear(); }
  /// Keeps what became of a file; a problem is counted, logged and marked in the unit list.
  void Keep(const TransferResult& av_Result);
  /// The files that the present or last operation has tried, in order.
  [[nodiscard]] const std::vector<TransferResult>& All() const { return results_; }
  /// Writes how many files a run has moved to the log; they begin at `al_First` of the results.
  void LogMoved(std::string_view as_What, std::size_t al_First) const;
  /// Leaves what ended a run in the status line.
  void ShowLastProblem() const;

  /// A result was kept; set by the composition root.
  std::function<void(const TransferResult& av_Result)> on_kept;

 private:
  Form& form_;
  const LinkState& link_;
  RunFlags& flags_;
  Trace& trace_;
  std::vector<TransferResult> results_;
  std::set<std::int64_t> marked_;  ///< units whose sign is that of a failed transfer
};

}  // namespace corvane
