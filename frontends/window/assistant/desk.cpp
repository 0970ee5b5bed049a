#include "window/assistant/desk.h"

#include <algorithm>
#include <tuple>

namespace corvane::window::assistant {
namespace {

auto PortOf(const SetupPlan& plan) {
  return std::tie(plan.port, plan.device);
}

/// What decides how units are reached.
bool AreReachedAlike(const SetupPlan& one, const SetupPlan& other) {
  return one.relays == other.relays &&
         std::equal(one.units.begin(), one.units.end(), other.units.begin(), other.units.end(),
                    [](const SetupUnit& a, const SetupUnit& b) { return a.id == b.id && a.relay == b.relay; });
}

auto ServerOf(const SetupPlan& plan) {
  return std::tie(plan.server, plan.server_folder, plan.user, plan.password, plan.anonymous, plan.encrypted,
                  plan.certificate);
}

}  // namespace

void ForgetOutdated(SetupTried& tried, const SetupPlan& before, const SetupPlan& now) {
  const bool other_port = PortOf(before) != PortOf(now);
  if (other_port) tried.port.reset();
  if (other_port || !AreReachedAlike(before, now)) tried.clock.reset();
  if (ServerOf(before) != ServerOf(now)) tried.server.reset();
  if (before.backup_folder != now.backup_folder) tried.backup.reset();
}

}  // namespace corvane::window::assistant
