#pragma once

#include "app/recovery_copy.h"
#include "app/settings.h"
#include "link/capture.h"
#include "link/link_writer.h"
#include "link/port_link.h"
#include "link/schedule.h"
#include "registry/editors.h"
#include "rounds/network_watch.h"
#include "state/run_flags.h"
#include "trace/summary.h"
#include "trace/trace.h"

namespace corvane {

/// The close of the main window: what it leaves saved, told and released.
class WindowRelease {
 public:
  /// What the steps work with; all must outlive this object.
  struct Parts {
    LinkState& link;
    RunFlags& flags;
    RegistryEditors& editors;
    Settings& settings;
    RecoveryCopy& recovery;
    PortLink& port;
    LinkWriter& writer;
    DownloadCapture& capture;
    Schedule& schedule;
    NetworkWatch& watch;
    DownloadSummary& summary;
    Trace& trace;
  };
  explicit WindowRelease(const Parts& av_Parts) : p_(av_Parts) {}

  /// Runs the steps. Called once, when nothing waits any more; false when the settings could not be saved. **Yields**
  /// for messages.
  bool Run();

 private:
  Parts p_;
};

}  // namespace corvane
