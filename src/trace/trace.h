#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "base/files.h"
#include "form/form.h"
#include "platform/event_loop.h"
#include "platform/shell.h"
#include "state/link_state.h"

namespace corvane {

/// Indexes of the trace boxes; a box's caption names what its index switches.
enum TraceCategory : int { kTraceStatus = 0, kTraceSend = 1, kTraceReceive = 2, kTraceDecision = 3, kTraceDetail = 4 };

/// The number of a row of the on-screen trace whose text the status line shows too; other rows have 0.
inline constexpr std::int64_t kStatusRow = 1;

/// The status line, the trace log and the on-screen trace.
///
/// Every part of the system reports through it. A log that cannot be written is reported in the status line and never
/// stops the work; it is tried again once a second, and then says how many lines are missing.
class Trace {
 public:
  Trace(Form& av_Form, const LinkState& av_Link, EventLoop& av_Loop, Shell& av_Shell);

  /// Sets the log file's full path; used at the first line written.
  void SetLogFile(std::string_view as_Path);
  /// Shows `as_Text` in the status line at once and logs it; front ends choose by its kind what they make of it.
  void Status(std::string_view as_Text, StatusKind av_Kind = StatusKind::Step);
  /// Reports a run-time error of the operation `as_Where`: log line, beep and message box.
  void ErrorReport(std::string_view as_Where, std::string_view as_Description);
  /// Writes an error line with the state dump, whatever categories are ticked, and switches further categories on.
  void AErrorReport(std::string_view as_Text);
  /// The link flags as text.
  [[nodiscard]] std::string StateDump() const;
  void TraceSend(std::string_view as_Text);
  void TraceReceive(std::string_view as_Line);
  void TraceReceiveDetail(std::string_view as_Text);
  void TraceDecision(std::string_view as_Text);
  /// True when decisions are traced; for callers whose text is costly to build.
  [[nodiscard]] bool TracesDecisions() const { return form_.Chk_Trace[kTraceDecision].ticked(); }
  /// Writes one line to the log file and, where switched on, to the on-screen list.
  void LogWrite(std::string_view as_Text);
  /// Ticks trace boxes as the automatic-trace boxes allow; `ai_Kind` above 0 includes the send box's own switch.
  void SwitchOnAllTrace(std::string_view as_Reason, std::int16_t ai_Kind);
  /// Closes the log; the next line opens it anew, as the first of a run.
  void CloseLog();
  /// Lets a log go over to ".1" when it has the size of the setting `LogSize`; true when its next line begins it anew.
  bool GoOver(const std::string& as_Path) const;
  /// The log file's number in trace lines, 0 while it is closed.
  [[nodiscard]] int LogFileNumber() const;

  /// Shows an error message to the user; set by the composition root.
  std::function<void(const std::string& text)> show_message;

 private:
  void LogLine(std::string_view as_Text, std::int64_t al_RowNumber);
  void ShowOnScreen(std::string_view as_Text, std::int64_t al_RowNumber);
  bool OpenLog();
  /// What stands in front of the first line: the version once a run, what is missing after a failure.
  bool WriteFirstLines();
  bool AppendLogLine(std::string_view as_Text);
  void GiveUpLog(const corvane::Status& av_Failure);

  Form& form_;
  const LinkState& link_;
  EventLoop& loop_;
  Shell& shell_;
  std::string log_path_;
  OutputFile log_;
  bool version_written_ = false;
  std::int64_t missing_ = 0;  ///< lines that could not be written since the last that could
  std::string failure_;
  std::int64_t next_try_ = 0;  ///< monotonic milliseconds
  DateTime stamp_time_;
  std::string stamp_;
  std::string line_;
};

}  // namespace corvane
