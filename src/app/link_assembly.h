#pragma once

#include "app/platform.h"
#include "app/report_assembly.h"
#include "app/shared_state.h"
#include "link/capture.h"
#include "link/direct_terminal.h"
#include "link/exchange.h"
#include "link/link_writer.h"
#include "link/pause.h"
#include "link/port_choices.h"
#include "link/port_link.h"
#include "link/reply_handler.h"
#include "link/reply_timer.h"
#include "link/schedule.h"

namespace corvane {

/// The services of src/link; for the composition root.
struct LinkAssembly {
  /// Takes over the port's event handler.
  LinkAssembly(const Platform& av_Platform, SharedState& av_State, ReportAssembly& av_Report);
  LinkAssembly(const LinkAssembly&) = delete;
  LinkAssembly& operator=(const LinkAssembly&) = delete;

  LinkWriter writer;
  ReplyTimer timer;
  Pauser pauser;
  Exchange exchange;
  BadLines bad_lines;
  DownloadCapture capture;
  ReplyHandler replies;
  PortLink port;
  PortChoices ports;
  DirectTerminal terminal;
  Schedule schedule;
};

}  // namespace corvane
