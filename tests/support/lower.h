#pragma once

#include <string>

#include "form/form.h"
#include "state/link_state.h"
#include "state/run_flags.h"
#include "support/fake_loop.h"
#include "support/recorders.h"
#include "support/temp_folder.h"
#include "trace/trace.h"
#include "ui/messages.h"

namespace corvane::test {

/// Trace and messages over fakes, without the rest of the application.
struct Lower {
  TempFolder home;
  FakeLoop loop;
  FakeShell shell;
  RecordingDialogs dialogs;
  Form form;
  LinkState link;
  RunFlags flags;
  Trace trace{form, link, loop, shell};
  Messages messages{{form, flags, loop, dialogs, trace}};

  Lower() { trace.SetLogFile(home.Name("corvane.log")); }
  [[nodiscard]] std::string Log() const { return home.Read("corvane.log"); }
};

}  // namespace corvane::test
