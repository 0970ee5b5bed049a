#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "data/bad_lines.h"
#include "data/raw_line.h"
#include "form/form.h"
#include "link/exchange.h"
#include "link/link_writer.h"
#include "platform/event_loop.h"
#include "state/link_state.h"
#include "state/run_flags.h"
#include "trace/summary.h"
#include "trace/trace.h"
#include "ui/progress_bar.h"

namespace corvane {

/// Checks the lines of a download and appends every new reading to the unit's raw file, or to the file that gathers
/// what fills a gap of it.
///
/// A reading that was accepted has reached the kernel before the next line is handled; the file is synced at "OK", at
/// every close and at least every 5 seconds.
class DownloadCapture {
 public:
  /// What the capture works with; all must outlive it.
  struct Parts {
    Form& form;
    LinkState& link;
    DownloadState& download;
    const RunFlags& flags;
    BadLines& bad_lines;
    EventLoop& loop;
    LinkWriter& writer;
    Exchange& exchange;
    DownloadSummary& summary;
    ProgressBars& bars;
    Trace& trace;
  };
  explicit DownloadCapture(const Parts& av_Parts) : p_(av_Parts) {}

  /// Handles `ReplyLine` while a download is awaited.
  void SaveToFile();
  /// Syncs and closes the raw file when it is open; an error is reported.
  void CloseOutputFile();
  /// Writes the summary line of a download that the end of the program cuts short, while its file is still open.
  void SummariseAtClose();
  /// The raw file's number in trace lines, 0 while it is closed.
  [[nodiscard]] int OutputFileNumber() const;

 private:
  void TakeHeader();
  void AcceptHeader();
  /// Reports a header with another SiteID than the raw file's own has; true when the download ends with it.
  [[nodiscard]] bool RefuseOtherUnit();
  void TakeDataLine();
  void TakeOk();
  /// Reports a download that ends with fewer lines than its header announced, or with lost ones.
  void CompareWithHeader();
  void TakeReading();
  /// A reading from behind the gap has come: the download has brought what it was to bring.
  void EndBehindGap(DateTime av_When);
  /// Stops the unit; nothing that it still sends is looked at.
  void EndEarly();
  [[nodiscard]] bool StoreReading();
  void ShowProgress(DateTime av_When);
  void RejectLine();
  /// Passes the present line over when it is known, or turns out now, to stop every download; false: it ends this one.
  [[nodiscard]] bool PassOver(std::string_view as_Reason);
  /// Keeps a reading whose date is too far ahead instead of storing it; false when it is to be stored.
  [[nodiscard]] bool TakeFutureReading(DateTime av_When);
  /// Keeps a line beside the raw file; false when that cannot be done.
  [[nodiscard]] bool KeepBadLine(std::string_view as_Reason, std::string_view as_Line);
  /// Reports the error, stops the unit and saves nothing more of this download.
  void Abort(const std::string& as_Error);
  void StopUnit();
  /// Opens the raw file; where that fails, the session ends, or only this download when the round goes on.
  void OpenOutputFile();
  void OpenSteps();
  void SyncOutput();
  /// The raw file cannot be written: the download counts as failed, so that the readings are asked for again.
  void FailWriting(const std::string& as_Reason);
  void FailDownload(const std::string& as_Error);
  /// A decision trace of `as_What` and the items text, built only when it is wanted.
  void TraceItems(std::string_view as_What);

  Parts p_;
  RawLine line_;
  std::string output_line_;
  std::map<std::string, std::int64_t> other_unit_named_;  ///< in which round, by raw file
  /// runs while readings are written that are not yet on the disk
  std::unique_ptr<Timer> sync_timer_ = p_.loop.MakeTimer([this] { SyncOutput(); });
};

}  // namespace corvane
