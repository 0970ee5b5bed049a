#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "data/local_files.h"
#include "form/form.h"
#include "link/link_writer.h"
#include "link/pause.h"
#include "link/schedule.h"
#include "registry/unit_editor.h"
#include "rounds/unit_session.h"
#include "state/run_flags.h"

namespace corvane {

/// One command with every marked unit in turn, with tries, waits and a closing summary.
class Sessions {
 public:
  /// What a run over units works with; all must outlive it.
  struct Parts {
    Form& form;
    Registry& registry;
    LinkState& link;
    RunFlags& flags;
    EventLoop& loop;
    PortLink& port;
    LinkWriter& writer;
    Exchange& exchange;
    DownloadCapture& capture;
    Pauser& pauser;
    Schedule& schedule;
    UnitSession& session;
    UnitEditor& units;
    LocalFiles& files;
    ProgressBars& bars;
    Messages& messages;
    Trace& trace;
  };
  explicit Sessions(const Parts& av_Parts) : p_(av_Parts) {}

  /// Runs `ai_Command` with the active units of a connection type: all of them, or only the selected one. **Yields.**
  ///
  /// True when no unit needed more than one try, or when none ended with cancel, time-out or an error.
  bool ProcessAllUnits(bool ab_All, std::int32_t al_ConnectionType, std::int16_t ai_Command);
  /// Asks twice before a command that changes units; true at once for any other. **Yields.**
  [[nodiscard]] bool ConfirmCommand(std::int16_t ai_Command, const std::string& as_What);
  /// Selects unit `al_Index` (from 1) and shows it in the editor.
  void ReselectUnit(std::int64_t al_Index) { p_.units.Select(al_Index); }
  /// First and last unit: all, or the selected one twice.
  [[nodiscard]] std::pair<std::int64_t, std::int64_t> UnitRange(bool ab_All) const;

 private:
  /// What one run counts.
  struct Run {
    std::int64_t first = 0;
    std::int64_t last = 0;
    std::int64_t marked = 0;
    std::int64_t done = 0;    ///< marked units that were finished
    std::int64_t failed = 0;  ///< attempts that ended with cancel, time-out or an error reply
    std::int64_t well = 0;    ///< units whose last attempt ended without an error
  };
  void MarkUnits(Run& av_Run, std::int32_t al_ConnectionType);
  void RunMarkedUnits(Run& av_Run, std::int16_t ai_Command);
  /// False when the whole session has to end.
  [[nodiscard]] bool RunOneUnit(Run& av_Run, std::int64_t al_Index, std::int16_t ai_Command);
  void ShowHowItEnded(std::int64_t al_Index, bool ab_Failed);
  [[nodiscard]] bool Attempt(Run& av_Run, std::int64_t al_Index, std::int16_t ai_Command);
  [[nodiscard]] bool EndsSession(Run& av_Run);
  void FinishRun();
  [[nodiscard]] bool Summarise(const Run& av_Run, std::int16_t ai_Command, std::string& as_Result);
  void RecordDownloadTime();

  Parts p_;
};

}  // namespace corvane
