#pragma once

#include <string>
#include <string_view>

#include "form/form.h"
#include "platform/event_loop.h"
#include "state/link_state.h"
#include "state/run_flags.h"
#include "trace/trace.h"

namespace corvane {

/// The summary file: one comma-separated line per download. Format: docs/formats/summary-file.md.
class DownloadSummary {
 public:
  /// What a line of the summary is made of; all must outlive it.
  struct Parts {
    Form& form;
    const LinkState& link;
    const DownloadState& download;
    const RunFlags& flags;
    EventLoop& loop;
    Trace& trace;
  };
  explicit DownloadSummary(const Parts& av_Parts) : p_(av_Parts) {}

  /// Sets the file's full path.
  void SetFile(std::string_view as_Path) { path_ = as_Path; }
  /// Appends the line of the current download; does nothing before a header line has been received
  /// nor for one that fills a gap.
  void WriteSummary();

 private:
  [[nodiscard]] std::string Values() const;

  Parts p_;
  std::string path_;
};

}  // namespace corvane
