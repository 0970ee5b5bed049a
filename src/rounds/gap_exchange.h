#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "data/gap_splice.h"
#include "form/form.h"
#include "platform/event_loop.h"
#include "platform/history_records.h"
#include "registry/unit_editor.h"
#include "rounds/unit_attempts.h"
#include "rounds/unit_session.h"
#include "state/file_names.h"
#include "state/link_state.h"
#include "state/run_flags.h"
#include "trace/trace.h"

namespace corvane {

/// What became of a gap when its unit was asked for it.
struct GapAnswer {
  GapState state = GapState::Asked;  ///< `Found`: that was no try, it stays as it was
  std::int64_t added = 0;            ///< readings that stand in the raw file now
  std::string result;                ///< in words
  bool heard = false;                ///< the unit has answered
  bool silent = false;               ///< nobody has, the base station neither
  std::int64_t announced = 0;        ///< lines, where they are more than the limit
};

/// Asks a unit once for the readings of one gap and puts what it sends into its raw file.
///
/// It is the ordinary download from the reading before the gap on; the unit is stopped at the first reading behind it.
/// What the unit's last download has told, its tries, its mark and the summary stay as they are.
class GapExchange {
 public:
  /// All must outlive this object.
  struct Parts {
    Form& form;
    LinkState& link;
    DownloadState& download;
    const RunFlags& flags;
    EventLoop& loop;
    const FileNames& names;
    UnitEditor& units;
    UnitSession& session;
    UnitAttempts& attempts;
    Trace& trace;
  };
  explicit GapExchange(const Parts& av_Parts) : p_(av_Parts) {}

  /// The port was opened: what units still send for a former session runs out. **Yields.**
  void Begin() { p_.attempts.AwaitQuiet(); }
  /// Closes the port; nothing is awaited any more.
  void End() { p_.session.ReleasePort(); }
  /// This computer's time, which the units' clocks follow.
  [[nodiscard]] DateTime Now() const { return p_.loop.Now(); }
  /// Asks unit `al_Unit` (from 1) over the open port. A try is only what the unit has answered while nothing
  /// failed on this side. **Yields.**
  [[nodiscard]] GapAnswer Ask(std::int64_t al_Unit, const GapRecord& av_Gap);

 private:
  /// What the unit has sent for a gap.
  struct Gathered {
    std::vector<std::string> readings;  ///< between the neighbours and each later than the one before it
    bool whole = false;                 ///< nothing that came was turned down
  };
  [[nodiscard]] Gathered Gather(const std::string& as_File) const;
  /// Who has answered, and whether that was a try.
  [[nodiscard]] GapAnswer Heard() const;
  [[nodiscard]] GapAnswer Judge(const std::string& as_RawFile, const Gathered& av_Gathered, const GapRecord& av_Gap);
  /// Why nothing that the unit holds is known to be missing for ever.
  [[nodiscard]] std::string WhyNotReached() const;
  /// Lets what the unit still sends run out.
  void EndExchange();

  Parts p_;
};

}  // namespace corvane
