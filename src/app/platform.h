#pragma once

#include "app/file_commands.h"
#include "base/dates.h"
#include "platform/command_runner.h"
#include "platform/dialogs.h"
#include "platform/event_loop.h"
#include "platform/history_store.h"
#include "platform/internet_client.h"
#include "platform/serial_port.h"
#include "platform/shell.h"
#include "platform/zip_component.h"

namespace corvane {

/// The machine that the application runs on; all must outlive it.
struct Platform {
  EventLoop& loop;
  SerialPort& port;
  Shell& shell;
  Dialogs& dialogs;
  InternetClient& internet;
  ZipComponent& zip;
  HelpFiles help = {};  ///< what the help menu opens
  DateTime built = {};  ///< when the program was built: no clock shows an earlier time; none where that is not known
  HistoryStore* history = nullptr;  ///< none: no history is kept
  CommandRunner* runner = nullptr;  ///< none: no alerts are told
};

}  // namespace corvane
