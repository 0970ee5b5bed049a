#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "form/form.h"
#include "link/capture.h"
#include "link/exchange.h"
#include "link/port_link.h"
#include "platform/event_loop.h"
#include "state/file_names.h"
#include "state/link_state.h"
#include "state/records.h"
#include "state/run_flags.h"
#include "trace/trace.h"
#include "ui/messages.h"
#include "ui/progress_bar.h"

namespace corvane {

/// One command with one unit.
class UnitSession {
 public:
  /// What a session works with; all must outlive it.
  struct Parts {
    Form& form;
    const Registry& registry;
    LinkState& link;
    DownloadState& download;
    EventLoop& loop;
    PortLink& port;
    Exchange& exchange;
    DownloadCapture& capture;
    const FileNames& names;
    ProgressBars& bars;
    Messages& messages;
    Trace& trace;
  };
  explicit UnitSession(const Parts& av_Parts) : p_(av_Parts) {}

  /// Runs one command with the unit selected in the unit list; the link flags tell how it ended. **Yields.**
  ///
  /// The test command needs no unit. An error on this computer (a folder or file that cannot be used) is reported and
  /// ends the command like an error reply, so that the next round asks the unit again.
  void ProcessUnit(std::int16_t ai_Command);
  /// Readings that the last command has added to the unit's raw file.
  [[nodiscard]] std::int64_t Stored() const { return p_.download.Stored; }
  /// Traces `as_Trace` with the number of the raw file and closes the file, just in case.
  void CloseOutputFile(std::string_view as_Trace);
  /// Ends a run over units: the raw file and the port are closed, nothing is awaited any more.
  void ReleasePort();
  /// The date of the last reading stored in a raw file, none when there is none. **Yields.**
  ///
  /// Cuts a torn tail off first; lines that are no readings are shown together, a date in the future is reported.
  [[nodiscard]] DateTime GetLastDate(const std::string& as_File);

 private:
  [[nodiscard]] std::string Caption(std::int16_t ai_Command) const;
  void Run(std::int16_t ai_Command);
  [[nodiscard]] std::string PrepareDownload();
  [[nodiscard]] std::string Parameters(std::int16_t ai_Command);
  void FailHere(const std::string& as_Error);

  Parts p_;
};

}  // namespace corvane
