#include "app/registry_commands.h"

#include "rounds/client_folders.h"

namespace corvane {

void RegistryCommands::SetActive(const std::vector<std::int64_t>& av_Units, bool ab_Active) {
  p_.operations.RunCommand("Units", [&] {
    if (p_.slot.Taken()) return;
    for (const std::int64_t unit : av_Units) p_.editors.units.SetActive(unit, ab_Active);
    p_.history.FollowUnits();
  });
}

void RegistryCommands::RunOnUnits(std::int16_t ai_Command) {
  p_.operations.RunCommand("Units", [&] { p_.editors.units.RunCommand(ai_Command); });
}

void RegistryCommands::RunOnRelays(std::int16_t ai_Command) {
  p_.operations.RunCommand("Relays", [&] { p_.editors.relays.RunCommand(ai_Command); });
}

void RegistryCommands::RunOnClients(std::int16_t ai_Command) {
  p_.operations.RunCommand("Clients", [&] { p_.editors.clients.RunCommand(ai_Command); });
}

void RegistryCommands::CreateFolders() {
  p_.operations.RunCommand("Clients", [&] { CreateLocalFolders(p_.registry, p_.names, p_.messages); });
}

}  // namespace corvane
