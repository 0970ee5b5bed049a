#pragma once

#include <cstdint>
#include <string>

#include "form/form.h"
#include "link/port_choices.h"
#include "registry/editors.h"
#include "setup/setup_plan.h"
#include "state/app_info.h"
#include "state/records.h"

namespace corvane {

/// Puts a plan into the window's fields and the registry as a hand would.
class SetupWriter {
 public:
  /// What is written; all must outlive this object.
  struct Parts {
    Form& form;
    Registry& registry;
    RegistryEditors& editors;
    PortChoices& ports;
    const AppInfo& app;
  };
  explicit SetupWriter(const Parts& av_Parts) : p_(av_Parts) {}

  /// Enters what differs from what is there; what the plan does not name stays as it is. The plan has no faults and
  /// comes from the present registry; no operation runs. Throws `RunTimeError` where something is refused: the rest is
  /// not entered then. **Yields** where a change handler does.
  void PutIn(const SetupPlan& av_Plan);

 private:
  void PutInStations(const SetupPlan& av_Plan);
  void PutInTables(const SetupPlan& av_Plan);
  void PutInSchedule(const SetupPlan& av_Plan);
  void PutInDelivery(const SetupPlan& av_Plan);

  Parts p_;
};

}  // namespace corvane
