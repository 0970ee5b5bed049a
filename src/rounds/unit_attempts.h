#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "data/local_files.h"
#include "form/form.h"
#include "link/link_writer.h"
#include "link/pause.h"
#include "link/port_link.h"
#include "registry/unit_editor.h"
#include "rounds/unit_session.h"
#include "state/link_state.h"
#include "state/records.h"
#include "state/run_flags.h"
#include "trace/trace.h"
#include "ui/progress_bar.h"

namespace corvane {

/// What the attempts of a run over units have come to.
struct AttemptCounts {
  std::int64_t failed = 0;           ///< attempts that ended with cancel, time-out or an error reply
  std::int64_t well = 0;             ///< units whose last attempt ended without an error
  std::vector<std::int64_t> silent;  ///< units (from 1) that were passed over because no answer came in time
  std::int64_t silent_in_a_row = 0;  ///< units since the last answer
};

/// How one try with a unit ended; a cancel, and a time-out that ends the session, count as `Well`.
enum class TryEnd : std::uint8_t { Well, Failed, Silent };

/// One command with one unit, tried again until it goes well, with the waits between.
class UnitAttempts {
 public:
  /// What the attempts work with; all must outlive this object.
  struct Parts {
    Form& form;
    Registry& registry;
    LinkState& link;
    RunFlags& flags;
    UnitEditor& units;
    PortLink& port;
    UnitSession& session;
    LinkWriter& writer;
    Pauser& pauser;
    LocalFiles& files;
    ProgressBars& bars;
    Trace& trace;
  };
  explicit UnitAttempts(const Parts& av_Parts) : p_(av_Parts) {}

  /// Runs the command with unit `al_Index` (from 1) as often as `Txt_MaxRetries` allows, once when `ab_Once`; false
  /// when the whole session has to end. **Yields.**
  ///
  /// A port whose device has gone is opened again first, for up to 10 s. A unit that stays silent ends the session,
  /// unless the round goes on past what fails: then it ends when the base station is silent too.
  [[nodiscard]] bool RunUnit(AttemptCounts& av_Counts, std::int64_t al_Index, std::int16_t ai_Command,
                             bool ab_Once = false);
  /// Lets what a unit still sends for a former session run out, so that no answer begins with it. **Yields.**
  void AwaitQuiet();
  /// Tells the unit to stop, and waits as long as the settings say. **Yields.**
  void LetUnitRest();
  /// Traces that the last unit has used up its tries, where it has.
  void TraceTries();

  /// A unit has its turn, a try with it has ended, and the last one of its turn; set by the composition root.
  std::function<void(std::int64_t al_Index)> on_turn;
  std::function<void(std::int64_t al_Index, TryEnd ae_End)> on_try;
  std::function<void(std::int64_t al_Index)> on_turn_over;

 private:
  [[nodiscard]] bool TryUnit(AttemptCounts& av_Counts, std::int64_t al_Index, std::int16_t ai_Command, bool ab_Once);
  [[nodiscard]] TryEnd Attempt(AttemptCounts& av_Counts, std::int64_t al_Index, std::int16_t ai_Command);
  [[nodiscard]] TryEnd PassOver(AttemptCounts& av_Counts, std::int64_t al_Index);
  [[nodiscard]] TryEnd TakeError(AttemptCounts& av_Counts, std::int64_t al_Index);
  void TakeBrokenOffReply();
  /// True when the port is open or could be opened again.
  [[nodiscard]] bool PortIsThere(AttemptCounts& av_Counts);
  /// After three silent units in a row: whether the base station itself still answers.
  [[nodiscard]] bool BaseStationIsThere(AttemptCounts& av_Counts, std::int64_t al_Index);
  [[nodiscard]] bool ProbeBaseStation();
  [[nodiscard]] std::int64_t UnitWait() const;
  /// Takes over what the last try has brought.
  void KeepTally(DownloadTally& av_Brought) const;
  void ShowHowItEnded(std::int64_t al_Index, bool ab_Failed);
  [[nodiscard]] bool EndsSession(AttemptCounts& av_Counts);

  Parts p_;
};

}  // namespace corvane
