#include "app/registry_commands.h"

#include <utility>

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

StationsQuestion RegistryCommands::AskStations() {
  p_.operations.TakeRelayIDs();
  StationsQuestion question{p_.registry, {}};
  for (std::int32_t unit = 1; unit <= p_.registry.Units.count(); ++unit) {
    question.raw_files.push_back(p_.names.DataFileName(unit, false));
  }
  return question;
}

bool RegistryCommands::PutInStations(const StationsQuestion& av_Question, StationsPlan av_Answer) {
  bool done = false;
  p_.operations.RunCommand("Stations", [&] {
    if (p_.slot.Taken() || !av_Answer.faults.empty() || !av_Question.StillHolds(p_.registry)) return;
    done = corvane::PutInStations(std::move(av_Answer), p_.registry, p_.editors);
    p_.history.FollowUnits();
  });
  return done;
}

}  // namespace corvane
