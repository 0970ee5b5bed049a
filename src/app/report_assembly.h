#pragma once

#include "app/platform.h"
#include "app/shared_state.h"
#include "trace/summary.h"
#include "trace/trace.h"
#include "ui/messages.h"
#include "ui/progress_bar.h"

namespace corvane {

/// What tells people: the services of src/trace and src/ui; for the composition root.
struct ReportAssembly {
  ReportAssembly(const Platform& av_Platform, SharedState& av_State)
      : trace(av_State.form, av_State.link, av_Platform.loop, av_Platform.shell),
        messages({av_State.form, av_State.flags, av_Platform.loop, av_Platform.dialogs, trace}),
        summary({av_State.form, av_State.link, av_State.download, av_State.flags, av_Platform.loop, trace}) {}

  ProgressBars bars;
  Trace trace;
  Messages messages;
  DownloadSummary summary;
};

}  // namespace corvane
