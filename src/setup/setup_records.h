#pragma once

#include <vector>

#include "registry/record_editor.h"
#include "setup/setup_plan.h"
#include "state/records.h"

namespace corvane {

/// The lists that a plan comes to.
struct SetupRecords {
  std::vector<Placed<Unit>> units;
  std::vector<Placed<Relay>> relays;
  std::vector<Placed<Client>> clients;
};

/// The rows of a plan without faults as records; what rows do not name is as in the registry, or as for a new record.
[[nodiscard]] SetupRecords RecordsOf(const SetupPlan& av_Plan, const Registry& av_Registry);
/// The lists as they are.
[[nodiscard]] SetupRecords RecordsIn(const Registry& av_Registry);
/// The rows of stations for what such lists hold, in place of the plan's.
void TakeRecords(SetupPlan& av_Plan, const SetupRecords& av_Records);

}  // namespace corvane
