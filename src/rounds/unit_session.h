#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "form/form.h"
#include "link/capture.h"
#include "link/exchange.h"
#include "link/port_link.h"
#include "platform/event_loop.h"
#include "rounds/raw_keeper.h"
#include "state/link_state.h"
#include "state/records.h"
#include "trace/trace.h"
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
    RawKeeper& keeper;
    ProgressBars& bars;
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
  /// A run over the marked units begins. **Yields.**
  void BeginRound() { p_.keeper.BeginRound(); }
  /// Traces `as_Trace` with the number of the raw file and closes the file, just in case.
  void CloseOutputFile(std::string_view as_Trace);
  /// Ends a run over units: the raw file and the port are closed, nothing is awaited any more.
  void ReleasePort();

 private:
  [[nodiscard]] std::string Caption(std::int16_t ai_Command) const;
  void Run(std::int16_t ai_Command);
  [[nodiscard]] std::string PrepareDownload();
  [[nodiscard]] std::string Parameters(std::int16_t ai_Command);
  void FailHere(const std::string& as_Error);

  Parts p_;
};

}  // namespace corvane
