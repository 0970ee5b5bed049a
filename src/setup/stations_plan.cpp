#include "setup/stations_plan.h"

#include <algorithm>
#include <limits>
#include <map>
#include <set>
#include <unordered_map>
#include <utility>

#include "base/numbers.h"
#include "base/paths.h"
#include "base/text.h"
#include "setup/field_rules.h"
#include "setup/stations_checks.h"
#include "setup/stations_fields.h"
#include "setup/stations_list.h"
#include "setup/stations_phrases.h"

namespace corvane {
namespace {

std::optional<std::int32_t> NumberIn(const std::optional<std::string>& as_Cell) {
  using Limits = std::numeric_limits<std::int32_t>;
  const auto number = as_Cell ? ParseInteger(*as_Cell, Limits::min(), Limits::max()) : std::nullopt;
  return number ? std::optional(static_cast<std::int32_t>(*number)) : std::nullopt;
}

std::string NameIn(const StationRow& av_Row) {
  return av_Row[StationColumn::Name].value_or("");
}

bool IsEmpty(const std::optional<std::string>& as_Cell) {
  return !as_Cell || as_Cell->empty();
}

template <class Record>
RecordNames NamesOf(RecordNames av_Names, const StationList<Record>& av_List) {
  for (const auto& entry : av_List.entries()) av_Names.Add(entry.record.Name, entry.record.ID);
  return av_Names;
}

/// Works one table out.
class Planner {
 public:
  Planner(const Registry& registry, const StationTable& table, const StationsWish& wish)
      : table_(table),
        wish_(wish),
        relays_(StationKind::Relay, registry.Relays, table, wish.phrases),
        clients_(StationKind::Client, registry.Clients, table, wish.phrases),
        units_(StationKind::Unit, registry.Units, table, wish.phrases) {
    plan_.faults = table.faults;
    for (const StationRow& row : table.rows) {
      if (row.kind == StationKind::Relay) relays_.AddRow(row);
      if (row.kind == StationKind::Client) clients_.AddRow(row);
      if (row.kind == StationKind::Unit) units_.AddRow(row);
    }
    for (const std::string& column : table.unused) {
      plan_.notes.push_back(say_.Text(kStationsSays.unused, {Quote(column)}));
    }
  }

  StationsPlan Plan() {
    TakeClients();
    TakeRelays();
    CheckCarriers({relays_, clients_, units_}, plan_.faults);
    AddNamedClients();
    LetUnitsFollow();
    TakeUnits();
    CheckStations({relays_, clients_, units_}, plan_.faults);
    DropWhatFollows();
    std::ranges::stable_sort(plan_.faults, {}, &StationFault::line);
    TellChanges();
    plan_.units = units_.Take();
    plan_.relays = relays_.Take();
    plan_.clients = clients_.Take();
    return std::move(plan_);
  }

 private:
  template <class Record>
  void MatchByID(StationList<Record>& av_List) {
    std::vector<StationMarks> rows;
    for (const StationRow* row : av_List.rows()) rows.push_back({0, NumberIn((*row)[StationColumn::ID]), NameIn(*row)});
    std::vector<StationMarks> records;
    for (const Record& record : av_List.former()) records.push_back({0, record.ID, TableText(record.Name)});
    av_List.Match(rows, records, Record{});
  }

  template <class Record, class MayGo>
  void DeleteOthers(StationList<Record>& av_List, MayGo av_MayGo) {
    if (!av_List.has_rows()) return;
    if (wish_.deletes) return av_List.DeleteOthers(av_MayGo);
    const auto others = std::ranges::count_if(
        av_List.entries(), [&](const auto& entry) { return entry.line == 0 && av_MayGo(entry.record); });
    if (others == 0) return;
    plan_.notes.push_back(say_.Text(others == 1 ? kStationsSays.stays.one : kStationsSays.stays.many,
                                    {CountText(others, CountOf(av_List.kind()), say_)}));
  }

  void Fault(const StationRow& av_Row, StationColumn ae_Column, std::string as_Text) {
    plan_.faults.push_back({av_Row.line, table_.Heading(ae_Column), std::move(as_Text)});
  }

  void TakeClients() {
    MatchByID(clients_);
    const auto fields = ClientFields(say_);
    for (std::size_t row = 0; row < clients_.rows().size(); ++row) {
      const StationRow& cells = *clients_.rows()[row];
      auto& entry = clients_.EntryOf(row);
      const bool known = entry.former != 0;
      if (known && !IsEmpty(cells[StationColumn::ID]) && NumberIn(cells[StationColumn::ID]) != entry.record.ID) {
        Fault(cells, StationColumn::ID,
              say_.Text(kStationsSays.client_id_stays,
                        {Quote(TableText(entry.record.Name)), std::to_string(entry.record.ID)}));
      }
      clients_.Apply(row, fields, plan_.faults, known ? StationColumn::ID : StationColumn::Kind);
    }
    NumberNewClients();
    DeleteOthers(clients_, [](const Client&) { return true; });
  }

  /// Clients that come without an ID get the smallest free ones, as the command New gives them.
  void NumberNewClients() {
    std::set<std::int32_t> taken;
    for (const auto& entry : clients_.entries()) taken.insert(entry.record.ID);
    std::int32_t free = 1;
    for (std::size_t row = 0; row < clients_.rows().size(); ++row) {
      Client& client = clients_.EntryOf(row).record;
      if (clients_.EntryOf(row).former != 0) continue;
      while (client.ID == 0 && taken.contains(free)) ++free;
      if (client.ID == 0) taken.insert(client.ID = free);
      if (!(*clients_.rows()[row])[StationColumn::Folder]) client.Folder = "F" + std::to_string(client.ID);
    }
  }

  /// Clients that units name and nobody has entered: they get the first free ID, and a folder that is called as they
  /// are.
  void AddNamedClients() {
    const RecordNames names = ClientNames();
    std::set<std::string> added;
    std::set<std::int32_t> taken;
    std::set<std::string> folders;
    for (const auto& entry : clients_.entries()) {
      taken.insert(entry.record.ID);
      folders.insert(ToLower(TableText(entry.record.Folder)));
    }
    std::int32_t free = 1;
    for (const StationRow* row : units_.rows()) {
      const std::string name = (*row)[StationColumn::Client].value_or("");
      std::string problem;
      const bool is_there = name.empty() || names.Find(name, 0, problem) || RecordNames::IsID(name);
      if (is_there || names.Knows(name) || !added.insert(PlainName(name)).second) continue;
      problem = StationTextProblem(name, say_);
      if (!problem.empty()) Fault(*row, StationColumn::Client, problem);
      while (!taken.insert(free).second) ++free;
      const std::string folder =
          ClientFolderFor(name, [&folders](const std::string& wish) { return folders.contains(ToLower(wish)); });
      folders.insert(ToLower(folder));
      clients_.Append({name, free, folder, "", ""}, row->line);
    }
  }

  template <class Record>
  void AskForIDs(StationList<Record>& av_List, const Phrase& av_Phrase) {
    for (std::size_t row = 0; row < av_List.rows().size(); ++row) {
      const StationRow& cells = *av_List.rows()[row];
      if (av_List.EntryOf(row).former != 0 || !IsEmpty(cells[StationColumn::ID])) continue;
      if (table_.has_ids) Fault(cells, StationColumn::ID, say_.Text(av_Phrase));
      lacks_ids_ = !table_.has_ids;
    }
  }

  void TakeRelays() {
    MatchByID(relays_);
    const auto fields = RelayFields(say_);
    for (std::size_t row = 0; row < relays_.rows().size(); ++row) relays_.Apply(row, fields, plan_.faults);
    AskForIDs(relays_, kStationsSays.relay_needs_id);
    DeleteOthers(relays_, [](const Relay& relay) { return relay.ID != 0; });
  }

  /// Units go with the relay that has got another ID, unless another relay bears the former one now.
  void LetUnitsFollow() {
    std::set<std::int32_t> borne;
    for (const auto& entry : relays_.entries()) borne.insert(entry.record.ID);
    for (const auto& entry : relays_.entries()) {
      if (entry.former == 0) continue;
      const std::int32_t former = relays_.former()[entry.former].ID;
      if (former != entry.record.ID && former != 0 && !borne.contains(former)) followed_[former] = entry.record.ID;
    }
    for (auto& entry : units_.entries()) {
      const auto followed = followed_.find(entry.record.RelayID);
      if (followed != followed_.end()) entry.record.RelayID = followed->second;
    }
  }

  void TakeUnits() {
    const RecordNames relays = RelayNames();
    const RecordNames clients = ClientNames();
    std::vector<StationMarks> rows;
    for (const StationRow* row : units_.rows()) {
      std::string problem;
      const auto& client = (*row)[StationColumn::Client];
      const auto owner = IsEmpty(client) ? std::nullopt : clients.Find(*client, 0, problem);
      rows.push_back({owner, NumberIn((*row)[StationColumn::ID]), NameIn(*row)});
    }
    std::vector<StationMarks> records;
    for (const Unit& unit : units_.former()) records.push_back({unit.ClientID, unit.ID, TableText(unit.Name)});
    Unit fresh;
    fresh.Active = 1;
    units_.Match(rows, records, fresh);
    const auto fields = UnitFields(relays, clients, say_);
    for (std::size_t row = 0; row < units_.rows().size(); ++row) units_.Apply(row, fields, plan_.faults);
    AskForIDs(units_, kStationsSays.unit_needs_id);
    if (lacks_ids_) plan_.faults.push_back({table_.heading_line, "", say_.Text(kStationsSays.no_id_column)});
    DeleteOthers(units_, [](const Unit&) { return true; });
  }

  template <class Record>
  RecordNames NamesFor(RecordNames av_Names, const StationList<Record>& av_List) {
    RecordNames names = NamesOf(std::move(av_Names), av_List);
    for (const std::string& name : table_.names_left_out) names.Excuse(name);
    std::set<std::int64_t> faulty;
    for (const StationFault& fault : plan_.faults) faulty.insert(fault.line);
    for (const StationRow* row : av_List.rows()) {
      if (faulty.contains(row->line)) names.Excuse(NameIn(*row));
    }
    return names;
  }
  RecordNames RelayNames() { return NamesFor(NoRelayNames(say_), relays_); }
  RecordNames ClientNames() { return NamesFor(NoClientNames(say_), clients_); }

  /// Of a line that could not be taken apart only that is told.
  void DropWhatFollows() {
    std::set<std::int64_t> broken;
    for (const StationFault& fault : table_.faults) {
      if (fault.column.empty() && fault.line != table_.heading_line) broken.insert(fault.line);
    }
    std::erase_if(plan_.faults, [&broken](const StationFault& fault) {
      return !fault.column.empty() && broken.contains(fault.line);
    });
  }

  void TellChanges() {
    const std::string none;
    for (const auto& entry : relays_.entries()) {
      Tell(relays_, entry, relays_.NameOf(entry), entry.former == 0 ? none : FollowersOf(entry.former));
    }
    for (const auto& entry : clients_.entries()) {
      const std::string folder = Quote(entry.record.Folder);
      Tell(clients_, entry, say_.Text(kStationsSays.with_folder, {clients_.NameOf(entry), folder}), FolderNote(entry));
    }
    const RecordNames relays = NamesOf(NoRelayNames(), relays_);
    const RecordNames clients = NamesOf(NoClientNames(), clients_);
    for (const auto& entry : units_.entries()) {
      std::string unit = units_.NameOf(entry);
      const std::int32_t relay = entry.record.RelayID;
      const std::int32_t client = entry.record.ClientID;
      if (relay != 0) unit = say_.Text(kStationsSays.behind, {unit, Quote(relays.TextFor(relay))});
      if (client != 0) unit = say_.Text(kStationsSays.for_client, {unit, Quote(clients.TextFor(client))});
      Tell(units_, entry, unit, RawFileNote(entry));
    }
    for (const auto& entry : units_.deleted()) {
      const std::string file = RawFileOf(entry.former);
      TellDeleted(units_.NameOf(entry), file.empty() ? none : say_.Text(kStationsSays.raw_file_stays, {file}));
    }
    for (const auto& entry : relays_.deleted()) TellDeleted(relays_.NameOf(entry), none);
    for (const auto& entry : clients_.deleted()) {
      TellDeleted(clients_.NameOf(entry), say_.Text(kStationsSays.folder_stays));
    }
  }

  void AddChange(const std::string& as_Change, const std::string& as_Note) {
    plan_.changes.push_back(as_Note.empty() ? as_Change : as_Change + "; " + as_Note);
  }
  void TellDeleted(const std::string& as_What, const std::string& as_Note) {
    AddChange(say_.Text(kStationsSays.deletes, {as_What}), as_Note);
  }

  template <class Record>
  void Tell(const StationList<Record>& av_List, const typename StationList<Record>::Entry& av_Entry,
            const std::string& as_New, const std::string& as_Note) {
    if (av_Entry.former == 0) return AddChange(say_.Text(kStationsSays.adds, {as_New}), "");
    if (av_Entry.changes.empty()) return;
    std::string changes;
    for (const std::string& change : av_Entry.changes) changes += (changes.empty() ? "" : ", ") + change;
    AddChange(say_.Text(kStationsSays.changes, {av_List.NameOf(av_Entry), changes}), as_Note);
  }

  [[nodiscard]] std::string FollowersOf(std::int64_t al_Relay) const {
    const std::int32_t id = relays_.former()[al_Relay].ID;
    if (!followed_.contains(id)) return {};
    const auto count = std::ranges::count_if(units_.entries(), [&](const auto& entry) {
      return entry.former != 0 && units_.former()[entry.former].RelayID == id &&
             entry.record.RelayID == followed_.at(id);
    });
    if (count == 0) return {};
    return say_.Text(count == 1 ? kStationsSays.follow.one : kStationsSays.follow.many,
                     {CountText(count, kCommonPhrases.units, say_)});
  }

  [[nodiscard]] std::string RawFileOf(std::int64_t al_Position) const {
    return wish_.raw_file ? wish_.raw_file(al_Position) : std::string();
  }

  [[nodiscard]] std::string FolderNote(const StationList<Client>::Entry& av_Entry) const {
    if (av_Entry.former == 0 || clients_.former()[av_Entry.former].Folder == av_Entry.record.Folder) return {};
    return say_.Text(kStationsSays.files_stay);
  }

  [[nodiscard]] std::string RawFileNote(const StationList<Unit>::Entry& av_Entry) const {
    if (av_Entry.former == 0) return {};
    const Unit& before = units_.former()[av_Entry.former];
    if (before.ID == av_Entry.record.ID && before.ClientID == av_Entry.record.ClientID) return {};
    const std::string file = RawFileOf(av_Entry.former);
    return file.empty() ? "" : say_.Text(kStationsSays.raw_file_not_moved, {file});
  }

  const StationTable& table_;
  const StationsWish& wish_;
  const Phrases& say_ = wish_.phrases;
  bool lacks_ids_ = false;  ///< of new records, for want of the column
  StationList<Relay> relays_;
  StationList<Client> clients_;
  StationList<Unit> units_;
  std::map<std::int32_t, std::int32_t> followed_;  ///< former IDs of relays, and what they are now
  StationsPlan plan_;
};

template <class Record>
void AddRows(StationTable& av_Table, StationKind ae_Kind, const RecordArray<Record>& av_Records,
             const std::vector<StationField<Record>>& av_Fields) {
  for (const Record& record : av_Records) {
    StationRow row;
    row.kind = ae_Kind;
    const std::string_view word = WordOf(ae_Kind);
    row[StationColumn::Kind] = ToUpper(word.substr(0, 1)) + std::string(word.substr(1));
    for (const StationField<Record>& field : av_Fields) row[field.column] = field.text(record);
    av_Table.rows.push_back(std::move(row));
  }
}

}  // namespace

StationTable TableOf(const Registry& av_Registry) {
  StationTable table;
  const RecordNames relays = NamesOf(av_Registry.Relays);
  const RecordNames clients = NamesOf(av_Registry.Clients);
  AddRows(table, StationKind::Relay, av_Registry.Relays, RelayFields());
  AddRows(table, StationKind::Client, av_Registry.Clients, ClientFields());
  AddRows(table, StationKind::Unit, av_Registry.Units, UnitFields(relays, clients));
  return table;
}

StationsPlan PlanStations(const Registry& av_Registry, const StationTable& av_Table, const StationsWish& av_Wish) {
  return Planner(av_Registry, av_Table, av_Wish).Plan();
}

}  // namespace corvane
