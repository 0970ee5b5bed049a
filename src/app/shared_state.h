#pragma once

#include <string>
#include <utility>

#include "form/form.h"
#include "state/app_info.h"
#include "state/command_states.h"
#include "state/file_names.h"
#include "state/link_state.h"
#include "state/operation_slot.h"
#include "state/port_devices.h"
#include "state/records.h"
#include "state/run_flags.h"

namespace corvane {

/// The Form and the plain state that all services share; for the composition root.
struct SharedState {
  explicit SharedState(std::string as_Folder) : app(std::move(as_Folder)) {}

  Form form;
  LinkState link;
  DownloadState download;
  Registry registry;
  RunFlags flags;
  AppInfo app;
  PortDevices devices;
  CommandStates states{form};
  OperationSlot slot{link, states};
  FileNames names{form, registry, app};
};

}  // namespace corvane
