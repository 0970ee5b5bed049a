#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "form/form.h"
#include "link/port_link.h"
#include "link/schedule.h"
#include "registry/unit_editor.h"
#include "rounds/command_questions.h"
#include "rounds/unit_attempts.h"
#include "rounds/unit_session.h"
#include "state/records.h"
#include "state/run_flags.h"
#include "trace/trace.h"
#include "ui/progress_bar.h"

namespace corvane {

/// One command with every marked unit in turn, and what they come to.
class Sessions {
 public:
  /// What a run over units works with; all must outlive it.
  struct Parts {
    Form& form;
    Registry& registry;
    const LinkState& link;
    RunFlags& flags;
    UnitEditor& units;
    PortLink& port;
    Schedule& schedule;
    CommandQuestions& questions;
    UnitSession& session;
    UnitAttempts& attempts;
    ProgressBars& bars;
    Trace& trace;
  };
  explicit Sessions(const Parts& av_Parts) : p_(av_Parts) {}

  /// Runs `ai_Command` with the active units of a connection type: all of them, or only the selected one. **Yields.**
  ///
  /// True when no unit needed more than one try, or when none ended with cancel, time-out or an error.
  bool ProcessAllUnits(bool ab_All, std::int32_t al_ConnectionType, std::int16_t ai_Command);
  /// The same with those of these units (positions from 1). Serves no schedule: the last download stays what it was.
  bool ProcessUnits(const std::vector<std::int64_t>& av_Units, std::int32_t al_ConnectionType, std::int16_t ai_Command);

  /// The units that are to be asked are marked, and no more of them will be asked; set by the composition root.
  std::function<void(UnitSpan av_Units, std::int16_t ai_Command)> on_marked;
  std::function<void()> on_asked;

 private:
  /// What one run counts.
  struct Run {
    UnitSpan units;
    std::optional<std::set<std::int64_t>> chosen;  ///< only these of them, where that is wanted
    std::string what;                              ///< which these are, for the questions
    std::string name;                              ///< of the one unit, where it is only one
    std::int64_t marked = 0;
    std::int64_t done = 0;  ///< marked units that were finished
    AttemptCounts attempts;
  };
  bool Process(Run& av_Run, std::int32_t al_ConnectionType, std::int16_t ai_Command);
  void MarkUnits(Run& av_Run, std::int32_t al_ConnectionType);
  /// Opens the port and runs the command with the marked units.
  void RunOverPort(Run& av_Run, std::int32_t al_ConnectionType, std::int16_t ai_Command);
  /// False when the session has to end.
  [[nodiscard]] bool RunMarkedUnits(Run& av_Run, std::int16_t ai_Command);
  /// Asks the units that were passed over once more.
  void AskSilentUnitsAgain(Run& av_Run, std::int16_t ai_Command);
  [[nodiscard]] std::int64_t UnitsWithProblems(const Run& av_Run) const;
  [[nodiscard]] bool Summarise(const Run& av_Run, std::int16_t ai_Command, std::string& as_Result);

  Parts p_;
};

}  // namespace corvane
