#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "data/completeness.h"
#include "data/local_files.h"
#include "history/history.h"
#include "platform/event_loop.h"
#include "state/file_names.h"
#include "state/link_state.h"
#include "state/run_flags.h"
#include "trace/trace.h"

namespace corvane {

/// Reads what the units' raw files have grown by, and keeps what they lack in the history.
class FileScans {
 public:
  /// All must outlive this object.
  struct Parts {
    History& history;
    const FileNames& names;
    const LocalFiles& files;
    const LinkState& link;
    const RunFlags& flags;
    EventLoop& loop;
    Trace& trace;
  };
  explicit FileScans(const Parts& av_Parts) : p_(av_Parts) {}

  /// Scans the raw files of all units in the list. **Yields.**
  ///
  /// A file that cannot be read is logged. A cancel that comes meanwhile or the program's end stops it; what is left,
  /// also where the files take longer than half a minute, has its turn behind the next round.
  void Run();
  /// Scans the raw files of those units that have been asked since their last scan, behind a cancel. **Yields.**
  ///
  /// As `Run`, but for half a second at most: the one who cancelled is waiting.
  void RunForAsked();

 private:
  void ScanAll(std::int64_t al_Milliseconds);
  void ScanUnit(std::int64_t al_Position, std::int64_t al_Key);
  [[nodiscard]] RawScan Scan(const std::string& as_File, const ScanRecord& av_Former, const ScanHints& av_Hints);
  [[nodiscard]] ScanHints HintsFor(std::int64_t al_Key) const;
  [[nodiscard]] bool Stopped() const;

  Parts p_;
  std::optional<TableRange> moisture_;
  std::optional<TableRange> salinity_;
  bool was_cancelled_ = false;  ///< before the scans began
  bool asked_only_ = false;
  std::int64_t end_ = 0;   ///< of the run, by the monotonic clock in milliseconds
  std::int64_t next_ = 1;  ///< position where the next run begins
};

}  // namespace corvane
