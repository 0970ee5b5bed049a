#include "setup/stations_checks.h"

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>

#include "registry/record_editor.h"
#include "setup/field_rules.h"
#include "setup/stations_fields.h"
#include "setup/stations_phrases.h"

namespace corvane {
namespace {

template <class Record>
using Key = std::function<std::string(const Record& record)>;

/// What two records must not have in common.
template <class Record>
struct Single {
  StationColumn column;
  StationColumn with;    ///< what the key comes from besides
  const Phrase& same;    ///< "%1 has the same name"
  Key<Record> key;       ///< empty: is not compared
  Key<Record> key_then;  ///< before the table, for one that was there
};

/// The faults found, and the cells that had one before: what follows from it is not told besides.
class Findings {
 public:
  Findings(const StationTable& table, std::vector<StationFault>& faults) : table_(table), faults_(faults) {
    for (const StationFault& fault : faults) faulty_.emplace(fault.line, fault.column);
  }

  /// False where the line or that cell of it has a fault of its own.
  [[nodiscard]] bool IsSure(std::int64_t line, StationColumn column) const {
    if (column == StationColumn::ID && !table_.has_ids && line != 0) return false;
    return line == 0 || (!faulty_.contains({line, ""}) && !faulty_.contains({line, table_.Heading(column)}));
  }
  void Add(std::int64_t line, StationColumn column, std::string text) {
    faults_.push_back({line, table_.Heading(column), std::move(text)});
  }
  void Add(std::string text) { faults_.push_back({0, "", std::move(text)}); }

 private:
  const StationTable& table_;
  std::vector<StationFault>& faults_;
  std::set<std::pair<std::int64_t, std::string>> faulty_;
};

template <class Record>
void CheckSingle(const StationList<Record>& av_List, const Single<Record>& av_Single, Findings& av_Found) {
  using Entry = typename StationList<Record>::Entry;
  const auto then = [&](const Entry& entry) {
    return entry.former == 0 ? std::string() : av_Single.key_then(av_List.former()[entry.former]);
  };
  std::unordered_map<std::string, const Entry*> first;
  for (const Entry& entry : av_List.entries()) {
    if (!av_Found.IsSure(entry.line, av_Single.column) || !av_Found.IsSure(entry.line, av_Single.with)) continue;
    const std::string key = av_Single.key(entry.record);
    const auto [found, is_first] = first.emplace(key, &entry);
    if (is_first) continue;
    const Entry& other = *found->second;
    if (!then(entry).empty() && then(entry) == then(other)) continue;
    // The fault is told of the row that can be mended: the later one that has one.
    const bool here = entry.line >= other.line;
    av_Found.Add(here ? entry.line : other.line, av_Single.column,
                 av_List.say().Text(av_Single.same, {av_List.Who(here ? other : entry)}));
  }
}

std::string IDText(std::int32_t al_ID) {
  return std::to_string(al_ID);
}

template <class Record>
void CheckNamesAndIDs(const StationList<Record>& av_List, Findings& av_Found) {
  const Key<Record> name = [](const Record& record) { return PlainName(TableText(record.Name)); };
  const Key<Record> id = [](const Record& record) { return IDText(record.ID); };
  constexpr StationColumn kName = StationColumn::Name;
  constexpr StationColumn kID = StationColumn::ID;
  CheckSingle<Record>(av_List, {kName, kName, kStationsSays.same_name, name, name}, av_Found);
  CheckSingle<Record>(av_List, {kID, kID, kStationsSays.same_id, id, id}, av_Found);
}

/// The folder of each client by its ID.
using Folders = std::map<std::int32_t, std::string>;

Key<Unit> KeyOfRawFile(const Folders& av_Folders) {
  return [&av_Folders](const Unit& unit) {
    const auto folder = unit.ClientID == 0 ? av_Folders.end() : av_Folders.find(unit.ClientID);
    return RawFileKey(folder == av_Folders.end() ? "" : folder->second, IDText(unit.ID));
  };
}

void CheckUnits(const StationLists& av_Lists, Findings& av_Found) {
  const Key<Unit> name = [](const Unit& unit) {
    return IDText(unit.ClientID) + "\n" + PlainName(TableText(unit.Name));
  };
  CheckSingle<Unit>(av_Lists.units,
                    {StationColumn::Name, StationColumn::Client, kStationsSays.same_client_name, name, name}, av_Found);
  Folders now;
  Folders then;
  for (const auto& entry : av_Lists.clients.entries()) now.emplace(entry.record.ID, entry.record.Folder);
  for (const Client& client : av_Lists.clients.former()) then.emplace(client.ID, client.Folder);
  CheckSingle<Unit>(
      av_Lists.units,
      {StationColumn::ID, StationColumn::Client, kStationsSays.same_file, KeyOfRawFile(now), KeyOfRawFile(then)},
      av_Found);
}

/// Names that stand for no relay and no client.
template <class Record>
void CheckReserved(const StationList<Record>& av_List, const RecordNames& av_Names, const Phrase& av_Phrase,
                   Findings& av_Found) {
  for (const auto& entry : av_List.entries()) {
    const bool is_none = av_Names.IsNone(TableText(entry.record.Name));
    const bool touched = entry.former == 0 || !entry.changes.empty();
    const bool sure =
        av_Found.IsSure(entry.line, StationColumn::Name) && av_Found.IsSure(entry.line, StationColumn::ID);
    if (!touched || !sure || is_none == (entry.record.ID == 0)) continue;
    av_Found.Add(entry.line, is_none ? StationColumn::Name : StationColumn::ID, av_List.say().Text(av_Phrase));
  }
}

/// Says which records would be missed by units that refer to them.
template <class Record>
void CheckMissed(const StationList<Record>& av_List, const StationList<Unit>& av_Units, std::int32_t Unit::*av_Member,
                 Findings& av_Found) {
  std::set<std::int32_t> there;
  for (const auto& entry : av_List.entries()) there.insert(entry.record.ID);
  std::map<std::int32_t, std::size_t> users;
  for (const auto& entry : av_Units.entries()) ++users[entry.record.*av_Member];
  for (const auto& entry : av_List.deleted()) {
    const std::int32_t id = entry.record.ID;
    if (id == 0 || there.contains(id) || !users.contains(id)) continue;
    av_Found.Add(av_List.say().Text(kStationsSays.missed, {av_List.NameOf(entry), std::to_string(users[id])}));
    users.erase(id);
  }
}

template <class Record>
void CheckCount(const StationList<Record>& av_List, Findings& av_Found) {
  const auto count = static_cast<std::int64_t>(av_List.entries().size());
  const auto before = static_cast<std::int64_t>(av_List.former().count());
  if (count <= RecordEditor::kMostRecords || count <= before) return;
  av_Found.Add(av_List.say().Text(kStationsSays.too_many, {CountText(count, CountOf(av_List.kind()), av_List.say()),
                                                           std::to_string(RecordEditor::kMostRecords)}));
}

}  // namespace

void CheckCarriers(const StationLists& av_Lists, std::vector<StationFault>& av_Faults) {
  Findings found(av_Lists.units.table(), av_Faults);
  CheckNamesAndIDs(av_Lists.relays, found);
  CheckNamesAndIDs(av_Lists.clients, found);
  CheckReserved(av_Lists.relays, NoRelayNames(), kStationsSays.only_direct, found);
  CheckReserved(av_Lists.clients, NoClientNames(), kStationsSays.only_none, found);
}

void CheckStations(const StationLists& av_Lists, std::vector<StationFault>& av_Faults) {
  Findings found(av_Lists.units.table(), av_Faults);
  CheckUnits(av_Lists, found);
  CheckMissed(av_Lists.relays, av_Lists.units, &Unit::RelayID, found);
  CheckMissed(av_Lists.clients, av_Lists.units, &Unit::ClientID, found);
  CheckCount(av_Lists.relays, found);
  CheckCount(av_Lists.clients, found);
  CheckCount(av_Lists.units, found);
}

}  // namespace corvane
