#pragma once

#include <cstdint>
#include <functional>

#include "data/raw_conversion.h"
#include "form/form.h"
#include "link/port_link.h"
#include "registry/unit_editor.h"
#include "state/file_names.h"
#include "state/run_flags.h"
#include "trace/trace.h"
#include "ui/messages.h"
#include "ui/progress_bar.h"

namespace corvane {

/// Converts the raw files of units. All **yield** and run while the operation slot is held.
class BatchConversion {
 public:
  /// What a run over units works with; all must outlive this object.
  struct Parts {
    Form& form;
    const LinkState& link;
    const RunFlags& flags;
    const Registry& registry;
    const FileNames& names;
    UnitEditor& units;
    RawConversion& conversion;
    PortLink& port;
    EventLoop& loop;
    ProgressBars& bars;
    Messages& messages;
    Trace& trace;
  };
  explicit BatchConversion(const Parts& av_Parts) : p_(av_Parts) {}

  /// Converts the raw files of all active units, or of the selected unit whether active or not; of a connection type
  /// (or `kAny`) and of a client (or `kAny`).
  void ConvertAllUnits(bool ab_All, std::int32_t al_GetFrom, std::int32_t al_Client);
  /// Sets both counters to zero: a command begins in which something may be converted.
  void ResetCounters() { p_.conversion.ResetCounters(); }

 private:
  /// Converts the files of the `al_Count` units that are in the run, then selects `al_Selected` again.
  void ConvertUnits(const std::function<bool(std::int64_t)>& av_InRun, std::int64_t al_Count, std::int64_t al_Selected);

  Parts p_;
};

}  // namespace corvane
