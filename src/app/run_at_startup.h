#pragma once

#include <optional>
#include <string_view>

#include "platform/shell.h"
#include "trace/trace.h"
#include "ui/messages.h"

namespace corvane {

/// The registration that starts the program at log-on.
class RunAtStartup {
 public:
  RunAtStartup(Shell& av_Shell, Messages& av_Messages, Trace& av_Trace)
      : shell_(av_Shell), messages_(av_Messages), trace_(av_Trace) {}

  [[nodiscard]] bool IsRunAtStartup() const { return shell_.HasLogOnEntry(); }
  /// `IsRunAtStartup`, kept in mind for `ChangeElsewhere`.
  [[nodiscard]] bool LookAtEntry();
  /// What has become of the entry when someone else changed it since the last look; none when nobody did.
  [[nodiscard]] std::optional<bool> ChangeElsewhere();
  /// Writes the entry with `as_Arguments` behind the program, or removes it. A failure is shown. **Yields** then.
  void SetRunAtStartup(bool ab_Enable, std::string_view as_Arguments);

 private:
  Shell& shell_;
  Messages& messages_;
  Trace& trace_;
  bool seen_ = false;  ///< what the entry was at the last look
};

}  // namespace corvane
