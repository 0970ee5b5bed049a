#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "data/bad_lines.h"
#include "data/raw_file.h"
#include "data/raw_repair.h"
#include "form/form.h"
#include "link/capture.h"
#include "link/exchange.h"
#include "link/port_link.h"
#include "platform/event_loop.h"
#include "state/file_names.h"
#include "state/link_state.h"
#include "state/records.h"
#include "state/run_flags.h"
#include "trace/summary.h"
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
    const RunFlags& flags;
    BadLines& bad_lines;
    EventLoop& loop;
    PortLink& port;
    Exchange& exchange;
    DownloadCapture& capture;
    const FileNames& names;
    ProgressBars& bars;
    Messages& messages;
    DownloadSummary& summary;
    Trace& trace;
  };
  explicit UnitSession(const Parts& av_Parts) : p_(av_Parts) {}

  /// Runs one command with the unit selected in the unit list; the link flags tell how it ended. **Yields.**
  ///
  /// The test command needs no unit. An error on this computer (a folder or file that cannot be used) is reported and
  /// ends the command like an error reply, so that the next round asks the unit again.
  void ProcessUnit(std::int16_t ai_Command);
  /// What the last command has brought.
  [[nodiscard]] const DownloadTally& Tally() const { return p_.download.Tally; }
  /// A run over the marked units begins: decides whether this computer's clock can be trusted. **Yields.**
  void BeginRound();
  /// Traces `as_Trace` with the number of the raw file and closes the file, just in case.
  void CloseOutputFile(std::string_view as_Trace);
  /// Ends a run over units: the raw file and the port are closed, nothing is awaited any more.
  void ReleasePort();
  /// The last reading stored in a raw file. **Yields.**
  ///
  /// Cuts what a power cut has left off first; lines that are no readings are shown together, a date more than a day
  /// ahead is a problem of the unit.
  [[nodiscard]] LastDateResult GetLastDate(const std::string& as_File);

 private:
  [[nodiscard]] std::string Caption(std::int16_t ai_Command) const;
  void Run(std::int16_t ai_Command);
  [[nodiscard]] std::string PrepareDownload();
  [[nodiscard]] std::string Parameters(std::int16_t ai_Command);
  /// The summary line of a download that the end of the program cuts short, while its file is still open.
  void SummariseAtClose();
  void FailHere(const std::string& as_Error);
  /// Cuts off or reports what a power cut has left in the raw file.
  void RepairFile(const std::string& as_File);
  /// More than a day ahead of this computer.
  [[nodiscard]] bool IsFarAhead(const LastDateResult& av_Found) const;
  /// Moves the last line to the lines that are kept aside; false when another stands at the file's end.
  [[nodiscard]] bool MoveLastLine(const std::string& as_File, const LastDateResult& av_Found);
  [[nodiscard]] bool ClockMayBeWrong();
  void ReportFutureDate(const LastDateResult& av_Found, const std::string& as_File);
  /// Replaces or reports a first line that is no header, once the unit has sent a right one.
  void CheckFirstLine();
  [[nodiscard]] bool ReplaceHeader(const std::string& as_Stored);
  /// Lets the event loop run; false when the user cancelled or the program closes.
  [[nodiscard]] bool Poll();

  Parts p_;
  RawHoles holes_;
};

}  // namespace corvane
