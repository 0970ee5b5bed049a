#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "form/form.h"
#include "platform/event_loop.h"
#include "state/app_info.h"
#include "trace/trace.h"

namespace corvane {

/// What the FTP session says: the status line and its two trace files, "ftp.log" and "FileSent.Log".
///
/// A file that cannot be written never stops a transfer; the trace log says so, and later what is
/// missing.
class FtpLog {
 public:
  FtpLog(EventLoop& av_Loop, const AppInfo& av_App, Trace& av_Trace);

  /// Which lines are written: files sent, status and detail lines.
  void SetTraces(bool ab_FilesSent, bool ab_Status, bool ab_Detail);
  /// The label that shows the status; must outlive this object.
  void SetStatusLabel(Label& av_Label) { label_ = &av_Label; }

  /// Shows `as_Text` in the status line at once, and writes it as a status line.
  void ShowStatus(std::string_view as_Text, StatusKind av_Kind = StatusKind::Step);
  /// Writes a line while status lines are switched on.
  void LogStatus(std::string_view as_Text);
  /// Writes a line while detail lines are switched on.
  void LogDetail(std::string_view as_Text);
  /// Writes a line whatever is switched on.
  void Append(std::string_view as_Text);
  /// Notes a file that was sent or received, while that is switched on.
  void LogFileSent(std::string_view as_Source, std::string_view as_Destination);

 private:
  void AppendLine(const std::string& as_Path, const std::string& as_Line);

  EventLoop& loop_;
  const AppInfo& app_;
  Trace& trace_;
  Label* label_ = nullptr;
  bool files_sent_ = false;
  bool status_ = false;
  bool detail_ = false;
  std::int64_t missing_ = 0;  ///< lines that could not be written since the last that could
};

}  // namespace corvane
