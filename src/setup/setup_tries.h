#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "base/dates.h"
#include "form/form.h"
#include "link/port_link.h"
#include "platform/event_loop.h"
#include "registry/editors.h"
#include "rounds/port_finder.h"
#include "rounds/unit_session.h"
#include "setup/setup_plan.h"
#include "state/link_state.h"
#include "state/port_devices.h"
#include "state/records.h"
#include "transfer/my_ftp.h"
#include "transfer/remote_browser.h"

namespace corvane {

/// What a unit's clock shows.
struct SetupClock : SetupAnswer {
  std::int64_t seconds_off = 0;  ///< ahead of this computer's; meaningless where the unit has told no time
  bool is_off = false;           ///< by more than a minute: it should be set
};

/// Tries what a plan names, before it is put in.
///
/// Each try enters what it needs, and what was there before stands there again when it ends. All run while the
/// operation slot is held and **yield**; a cancel ends them.
class SetupTries {
 public:
  /// What the tries work with; all must outlive this object.
  struct Parts {
    Form& form;
    Registry& registry;
    RegistryEditors& editors;
    PortDevices& devices;
    const SerialPort& machine;
    LinkState& link;
    PortLink& port;
    PortFinder& finder;
    UnitSession& session;
    RemoteBrowser& browser;
    MyFTP& ftp;
    EventLoop& loop;
  };
  explicit SetupTries(const Parts& av_Parts) : p_(av_Parts) {}

  /// Whether a base station answers on the plan's port, and what it says.
  [[nodiscard]] SetupAnswer TryPort(const SetupPlan& av_Plan);
  /// Asks the unit of a row (from 1) for its clock.
  [[nodiscard]] SetupClock AskClock(const SetupPlan& av_Plan, std::size_t al_Row);
  /// Sets the unit's clock to this computer's and asks for it again. The front end has asked the person.
  [[nodiscard]] SetupClock SetClock(const SetupPlan& av_Plan, std::size_t al_Row);
  /// Whether the server lets us in and lists the folder.
  [[nodiscard]] SetupAnswer TryServer(const SetupPlan& av_Plan);

 private:
  Parts p_;
};

/// Whether a file can be written into the backup folder; it is taken away again. Yields nothing.
[[nodiscard]] SetupAnswer TryBackup(const SetupPlan& av_Plan, const AppInfo& av_App);

}  // namespace corvane
