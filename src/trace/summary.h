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
  DownloadSummary(Form& av_Form, const LinkState& av_Link, const DownloadState& av_Download, const RunFlags& av_Flags,
                  EventLoop& av_Loop, Trace& av_Trace);

  /// Sets the file's full path.
  void SetFile(std::string_view as_Path) { path_ = as_Path; }
  /// Appends the line of the current download; does nothing before a header line has been received.
  void WriteSummary();

 private:
  [[nodiscard]] std::string Values() const;

  Form& form_;
  const LinkState& link_;
  const DownloadState& download_;
  const RunFlags& flags_;
  EventLoop& loop_;
  Trace& trace_;
  std::string path_;
};

}  // namespace corvane
