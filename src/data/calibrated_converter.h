#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "data/calibration.h"
#include "data/logging_schedule.h"
#include "data/lookup.h"
#include "form/form.h"
#include "platform/event_loop.h"
#include "state/link_state.h"
#include "state/records.h"
#include "state/run_flags.h"
#include "trace/trace.h"
#include "ui/messages.h"
#include "ui/progress_bar.h"

namespace corvane {

/// Turns a unit's raw file into its calibrated file. Formats: docs/formats/raw-file.md,
/// docs/formats/calibrated-file.md.
class CalibratedConverter {
 public:
  /// What a conversion works with; all must outlive it.
  struct Parts {
    Form& form;
    RunFlags& flags;
    const DownloadState& download;
    const Registry& registry;
    Lookups& lookups;
    EventLoop& loop;
    ProgressBars& bars;
    Messages& messages;
    Trace& trace;
  };
  explicit CalibratedConverter(const Parts& av_Parts) : p_(av_Parts) {}

  /// Converts `as_RawFile` (a full name) with the correction factors of the unit selected in the unit list.
  ///
  /// True when it ran to the end, also when the raw file is missing (which is shown). Counts bad lines and data lines
  /// in the run flags. The calibrated file is replaced when whole; after a close or an error the old one stays.
  /// Memory does not grow with the file. **Yields** about every 20 ms.
  // Intended: only the program's end breaks a file off; a cancel is for the caller, who stops after the current file.
  bool ConvertToCalibrated(const std::string& as_RawFile);
  /// Readings in the raw file of the last call, its whole lines behind the header; none when it made no calibrated
  /// file.
  [[nodiscard]] std::optional<std::int64_t> Readings() const { return readings_; }

 private:
  struct Run;
  [[nodiscard]] bool ConvertFile(const std::string& as_RawFile, std::int64_t al_RawSize);
  [[nodiscard]] CalibrationSettings ReadSettings() const;
  /// None when every reading is wanted.
  [[nodiscard]] std::optional<LoggingSchedule> ReadSchedule() const;
  void TakeLine(Run& av_Run, std::string_view as_Line);
  void TakeHeader(Run& av_Run, std::string_view as_Line);
  void TakeReading(Run& av_Run, std::string_view as_Line);
  void TraceFinish(bool ab_Opened);

  Parts p_;
  std::optional<std::int64_t> readings_;
};

}  // namespace corvane
