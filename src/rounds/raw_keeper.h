#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "data/ahead_readings.h"
#include "data/bad_lines.h"
#include "data/raw_file.h"
#include "data/raw_repair.h"
#include "form/form.h"
#include "platform/event_loop.h"
#include "state/file_names.h"
#include "state/link_state.h"
#include "state/records.h"
#include "state/run_flags.h"
#include "trace/trace.h"
#include "ui/messages.h"

namespace corvane {

/// A unit's raw file before and after its download: named, mended, its last reading found, its first line checked.
class RawKeeper {
 public:
  /// Behind the name of a raw file: what was sent to fill a gap of it, until it stands there.
  static constexpr std::string_view kRepairFile = ".repair";

  /// All must outlive this object.
  struct Parts {
    Form& form;
    const Registry& registry;
    const LinkState& link;
    DownloadState& download;
    const RunFlags& flags;
    BadLines& bad_lines;
    EventLoop& loop;
    const FileNames& names;
    Messages& messages;
    Trace& trace;
  };
  explicit RawKeeper(const Parts& av_Parts) : p_(av_Parts) {}

  /// A run over the marked units begins: decides whether this computer's clock can be trusted. **Yields.**
  void BeginRound();
  /// Names the raw file of unit `al_Unit` (from 1), makes its folder, mends it and finds its last reading. **Yields.**
  ///
  /// Throws `RunTimeError` when the file or its folder cannot be used, `NoRawFile` when it is none of ours.
  void Prepare(std::int32_t al_Unit);
  /// Names the file that gathers what a unit still has of a gap in its raw file.
  void PrepareGap(std::int32_t al_Unit);
  /// Behind a download that went well: replaces or reports a first line that is no header, where the unit has sent a
  /// right one. **Yields.**
  void CheckFirstLine();

 private:
  [[nodiscard]] bool ClockMayBeWrong();
  /// The last reading stored in a raw file.
  ///
  /// Cuts what a power cut has left off first; lines that are no readings are shown together, a date more than a day
  /// ahead is a problem of the unit.
  [[nodiscard]] LastDateResult GetLastDate(const std::string& as_File);
  /// Cuts off or reports what a power cut has left in the raw file.
  void RepairFile(const std::string& as_File);
  /// More than a day ahead of this computer.
  [[nodiscard]] bool IsFarAhead(const LastDateResult& av_Found) const;
  /// Moves the last line to the lines that are kept aside; false when another stands at the file's end.
  [[nodiscard]] bool MoveLastLine(const std::string& as_File, const LastDateResult& av_Found);
  void ReportFutureDate(const LastDateResult& av_Found, const std::string& as_File);
  [[nodiscard]] bool ReplaceHeader(const std::string& as_Stored);
  /// Lets the event loop run; false when the user cancelled or the program closes.
  [[nodiscard]] bool Poll();

  /// Tells the capture whose raw file it is and what its first line says.
  void NameUnit(std::int32_t al_Unit, const std::string& as_RawFile, std::string_view as_LastGood);

  Parts p_;
  RawHoles holes_;
  AheadReadings ahead_;
};

}  // namespace corvane
