#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "form/form.h"
#include "link/port_link.h"
#include "platform/event_loop.h"
#include "registry/unit_editor.h"
#include "rounds/file_results.h"
#include "rounds/file_transfer.h"
#include "state/records.h"
#include "state/run_flags.h"
#include "trace/trace.h"
#include "transfer/remote_browser.h"
#include "ui/messages.h"
#include "ui/progress_bar.h"

namespace corvane {

/// Sends the units' data files and fetches those of other sites.
///
/// All operations **yield** and run while the operation slot is held. A file that was not sent or fetched counts as a
/// problem of the operation.
class TransferRound {
 public:
  /// What a run over units works with; all must outlive this object.
  struct Parts {
    Form& form;
    Registry& registry;
    LinkState& link;
    const RunFlags& flags;
    UnitEditor& units;
    PortLink& port;
    RemoteBrowser& browser;
    FileTransfer& transfer;
    FileResults& results;
    EventLoop& loop;
    ProgressBars& bars;
    Trace& trace;
  };
  explicit TransferRound(const Parts& av_Parts) : p_(av_Parts) {}

  /// Sends the files of the active units, or of the selected one, that are sent to `ai_Destination` and come from
  /// `al_GetFrom` (or `kAny`).
  ///
  /// The first failed send sets `UserCancel` and ends the batch, unless rounds go on past failures.
  void ftpAllUnits(bool ab_All, std::int32_t al_GetFrom, std::int16_t ai_Destination);
  /// Fetches the files of the active units, or of the selected one, that come from `al_Source` (3 FTP, 4 web data);
  /// true when one arrived.
  ///
  /// A file that is not there is passed over; a server that cannot be reached ends the fetch, after the tries of a
  /// round that goes on past failures.
  [[nodiscard]] bool FetchAllUnits(bool ab_All, std::int32_t al_Source);

 private:
  /// Marks the units to send; how many there are.
  [[nodiscard]] std::int64_t MarkUnits(UnitSpan av_Units, std::int32_t al_GetFrom, std::int16_t ai_Destination);
  void SendMarked(UnitSpan av_Units, std::int64_t al_Count, std::int16_t ai_Destination);
  /// False when the user ended it.
  bool SendEach(UnitSpan av_Units, std::int16_t ai_Destination);
  /// True when a file arrived.
  [[nodiscard]] bool FetchEach(const std::vector<std::int64_t>& av_Units, std::int32_t al_Source);
  /// Begins a run over `al_Count` units with a text in the status line.
  void BeginRun(std::string_view as_Status, std::int64_t al_Count);
  void EndRun(std::int64_t al_Selected);

  Parts p_;
};

}  // namespace corvane
