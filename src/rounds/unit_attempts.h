#pragma once

#include <cstdint>

#include "data/local_files.h"
#include "form/form.h"
#include "link/link_writer.h"
#include "link/pause.h"
#include "registry/unit_editor.h"
#include "rounds/unit_session.h"
#include "state/link_state.h"
#include "state/records.h"
#include "trace/trace.h"
#include "ui/progress_bar.h"

namespace corvane {

/// What the attempts of a run over units have come to.
struct AttemptCounts {
  std::int64_t failed = 0;  ///< attempts that ended with cancel, time-out or an error reply
  std::int64_t well = 0;    ///< units whose last attempt ended without an error
};

/// One command with one unit, tried again until it goes well, with the waits between.
class UnitAttempts {
 public:
  /// What the attempts work with; all must outlive this object.
  struct Parts {
    Form& form;
    Registry& registry;
    LinkState& link;
    UnitEditor& units;
    UnitSession& session;
    LinkWriter& writer;
    Pauser& pauser;
    LocalFiles& files;
    ProgressBars& bars;
    Trace& trace;
  };
  explicit UnitAttempts(const Parts& av_Parts) : p_(av_Parts) {}

  /// Runs the command with unit `al_Index` (from 1) as often as `Txt_MaxRetries` allows; false when the whole session
  /// has to end. **Yields.**
  [[nodiscard]] bool RunUnit(AttemptCounts& av_Counts, std::int64_t al_Index, std::int16_t ai_Command);
  /// Traces that the last unit has used up its tries, where it has.
  void TraceTries();

 private:
  [[nodiscard]] bool Attempt(AttemptCounts& av_Counts, std::int64_t al_Index, std::int16_t ai_Command);
  void ShowHowItEnded(std::int64_t al_Index, bool ab_Failed);
  [[nodiscard]] bool EndsSession(AttemptCounts& av_Counts);

  Parts p_;
};

}  // namespace corvane
