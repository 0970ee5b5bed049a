#include "setup/stations_question.h"

#include <algorithm>
#include <cstddef>
#include <tuple>
#include <utility>

#include "base/files.h"

namespace corvane {
namespace {

// What is saved of a record.
auto Saved(const Unit& av_Unit) {
  return std::tie(av_Unit.Name, av_Unit.ID, av_Unit.Active, av_Unit.RelayID, av_Unit.ftpFile, av_Unit.ClientID,
                  av_Unit.GetFrom, av_Unit.MoistureCorrection, av_Unit.SalinityCorrection, av_Unit.Depths);
}
auto Saved(const Relay& av_Relay) {
  return std::tie(av_Relay.Name, av_Relay.ID, av_Relay.PasswordStyle);
}
auto Saved(const Client& av_Client) {
  return std::tie(av_Client.Name, av_Client.ID, av_Client.Folder, av_Client.Password, av_Client.UserID);
}

template <class Record>
bool AreSame(const RecordArray<Record>& av_One, const RecordArray<Record>& av_Other) {
  return std::equal(av_One.begin(), av_One.end(), av_Other.begin(), av_Other.end(),
                    [](const Record& one, const Record& other) { return Saved(one) == Saved(other); });
}

/// Lets a unit that was there keep what sessions know of it.
void KeepSessions(std::vector<Placed<Unit>>& av_Units, const Registry& av_Registry) {
  for (Placed<Unit>& placed : av_Units) {
    if (placed.former == 0) continue;
    Unit unit = av_Registry.Units[placed.former];
    unit.Name = std::move(placed.record.Name);
    unit.ID = placed.record.ID;
    unit.Active = placed.record.Active;
    unit.RelayID = placed.record.RelayID;
    unit.ftpFile = placed.record.ftpFile;
    unit.ClientID = placed.record.ClientID;
    unit.GetFrom = placed.record.GetFrom;
    unit.MoistureCorrection = placed.record.MoistureCorrection;
    unit.SalinityCorrection = placed.record.SalinityCorrection;
    unit.Depths = std::move(placed.record.Depths);
    placed.record = std::move(unit);
  }
}

}  // namespace

StationsPlan StationsQuestion::Answer(const StationTable& av_Table, bool ab_Deletes) const {
  const auto raw_file = [this](std::int64_t position) {
    const std::string& file = raw_files[static_cast<std::size_t>(position - 1)];
    return ExamineFile(file) ? file : std::string();
  };
  return PlanStations(registry, av_Table, {ab_Deletes, raw_file, phrases});
}

bool StationsQuestion::StillHolds(const Registry& av_Registry) const {
  return AreSame(registry.Units, av_Registry.Units) && AreSame(registry.Relays, av_Registry.Relays) &&
         AreSame(registry.Clients, av_Registry.Clients);
}

bool PutInStations(StationsPlan av_Plan, const Registry& av_Registry, RegistryEditors& av_Editors) {
  KeepSessions(av_Plan.units, av_Registry);
  // What a unit's selectors offer comes before the units. Nothing yields until all three are whole.
  const bool done = av_Editors.relays.TakeAll(std::move(av_Plan.relays)) &&
                    av_Editors.clients.TakeAll(std::move(av_Plan.clients)) &&
                    av_Editors.units.TakeAll(std::move(av_Plan.units));
  if (done && av_Editors.units.selection_changed) av_Editors.units.selection_changed();
  return done;
}

}  // namespace corvane
