#include "setup/stations_checks.h"

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <unordered_map>

#include "base/paths.h"
#include "registry/record_editor.h"
#include "setup/stations_fields.h"

namespace corvane {
namespace {

template <class Record>
using Key = std::function<std::string(const Record& record)>;

/// What two records must not have in common.
template <class Record>
struct Single {
  StationColumn column;
  std::string same;      ///< "has the same name"
  Key<Record> key;       ///< empty: is not compared
  Key<Record> key_then;  ///< before the table, for one that was there
};

/// The faults found, and the lines that had one before: what follows from it is not told besides.
struct Findings {
  std::vector<StationFault>& faults;
  std::set<std::int64_t> faulty;
};

template <class Record>
void CheckSingle(const StationList<Record>& av_List, const Single<Record>& av_Single, Findings& av_Found) {
  using Entry = typename StationList<Record>::Entry;
  const auto then = [&](const Entry& entry) {
    return entry.former == 0 ? std::string() : av_Single.key_then(av_List.former()[entry.former]);
  };
  std::unordered_map<std::string, const Entry*> first;
  for (const Entry& entry : av_List.entries()) {
    if (entry.line != 0 && av_Found.faulty.contains(entry.line)) continue;
    const std::string key = av_Single.key(entry.record);
    const auto [found, is_first] = first.emplace(key, &entry);
    if (is_first) continue;
    const Entry& other = *found->second;
    if (!then(entry).empty() && then(entry) == then(other)) continue;
    // The fault is told of the row that can be mended: the later one that has one.
    const bool here = entry.line >= other.line;
    av_Found.faults.push_back({here ? entry.line : other.line, std::string(HeadingOf(av_Single.column)),
                               av_List.Who(here ? other : entry) + " " + av_Single.same});
  }
}

std::string IDText(std::int32_t al_ID) {
  return std::to_string(al_ID);
}

template <class Record>
void CheckNamesAndIDs(const StationList<Record>& av_List, Findings& av_Found) {
  const Key<Record> name = [](const Record& record) { return PlainName(TableText(record.Name)); };
  const Key<Record> id = [](const Record& record) { return IDText(record.ID); };
  CheckSingle<Record>(av_List, {StationColumn::Name, "has the same name", name, name}, av_Found);
  CheckSingle<Record>(av_List, {StationColumn::ID, "has the same ID", id, id}, av_Found);
}

/// The folder of each client by its ID.
using Folders = std::map<std::int32_t, std::string>;

Key<Unit> RawFileKey(const Folders& av_Folders) {
  return [&av_Folders](const Unit& unit) {
    const auto folder = unit.ClientID == 0 ? av_Folders.end() : av_Folders.find(unit.ClientID);
    const std::string name = folder == av_Folders.end() ? std::string() : folder->second;
    return AddBackslash(WithSlashes(name)) + "\n" + IDText(unit.ID);
  };
}

void CheckUnits(const StationLists& av_Lists, Findings& av_Found) {
  const Key<Unit> name = [](const Unit& unit) {
    return IDText(unit.ClientID) + "\n" + PlainName(TableText(unit.Name));
  };
  CheckSingle<Unit>(av_Lists.units, {StationColumn::Name, "of the same client has the same name", name, name},
                    av_Found);
  Folders now;
  Folders then;
  for (const auto& entry : av_Lists.clients.entries()) now.emplace(entry.record.ID, entry.record.Folder);
  for (const Client& client : av_Lists.clients.former()) then.emplace(client.ID, client.Folder);
  CheckSingle<Unit>(av_Lists.units,
                    {StationColumn::ID, "has the same ID and folder: both would share one raw file", RawFileKey(now),
                     RawFileKey(then)},
                    av_Found);
}

/// Names that stand for no relay and no client.
template <class Record>
void CheckReserved(const StationList<Record>& av_List, const RecordNames& av_Names, const std::string& as_Text,
                   std::vector<StationFault>& av_Faults) {
  for (const auto& entry : av_List.entries()) {
    const bool is_none = av_Names.IsNone(TableText(entry.record.Name));
    const bool touched = entry.former == 0 || !entry.changes.empty();
    if (!touched || is_none == (entry.record.ID == 0)) continue;
    av_Faults.push_back(
        {entry.line, std::string(HeadingOf(is_none ? StationColumn::Name : StationColumn::ID)), as_Text});
  }
}

/// Says which records would be missed by units that refer to them.
template <class Record>
void CheckMissed(const StationList<Record>& av_List, const StationList<Unit>& av_Units, std::int32_t Unit::*av_Member,
                 std::vector<StationFault>& av_Faults) {
  std::set<std::int32_t> there;
  for (const auto& entry : av_List.entries()) there.insert(entry.record.ID);
  std::map<std::int32_t, std::size_t> users;
  for (const auto& entry : av_Units.entries()) ++users[entry.record.*av_Member];
  for (const auto& entry : av_List.deleted()) {
    const std::int32_t id = entry.record.ID;
    if (id == 0 || there.contains(id) || !users.contains(id)) continue;
    av_Faults.push_back({0, "",
                         "the " + av_List.NameOf(entry) + " has no row and would be deleted, but units refer to it (" +
                             std::to_string(users[id]) + "); give it a row, or them another one"});
    users.erase(id);
  }
}

template <class Record>
void CheckCount(const StationList<Record>& av_List, std::vector<StationFault>& av_Faults) {
  const auto count = static_cast<std::int64_t>(av_List.entries().size());
  const auto before = static_cast<std::int64_t>(av_List.former().count());
  if (count <= RecordEditor::kMostRecords || count <= before) return;
  av_Faults.push_back({0, "",
                       "there would be " + std::to_string(count) + " " + std::string(WordOf(av_List.kind())) +
                           "s; a list holds at most " + std::to_string(RecordEditor::kMostRecords)});
}

}  // namespace

void CheckStations(const StationLists& av_Lists, std::vector<StationFault>& av_Faults) {
  Findings found{av_Faults, {}};
  for (const StationFault& fault : av_Faults) found.faulty.insert(fault.line);
  CheckNamesAndIDs(av_Lists.relays, found);
  CheckNamesAndIDs(av_Lists.clients, found);
  CheckUnits(av_Lists, found);
  CheckReserved(av_Lists.relays, NoRelayNames(), "Direct, and it alone, is the relay with the ID 0", av_Faults);
  CheckReserved(av_Lists.clients, NoClientNames(), "None stands for no client; give this one another name and ID",
                av_Faults);
  CheckMissed(av_Lists.relays, av_Lists.units, &Unit::RelayID, av_Faults);
  CheckMissed(av_Lists.clients, av_Lists.units, &Unit::ClientID, av_Faults);
  CheckCount(av_Lists.relays, av_Faults);
  CheckCount(av_Lists.clients, av_Faults);
  CheckCount(av_Lists.units, av_Faults);
}

}  // namespace corvane
