#include "setup/setup_records.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "base/numbers.h"
#include "base/text.h"
#include "setup/field_rules.h"

namespace corvane {
namespace {

template <class Record>
Placed<Record> Former(const RecordArray<Record>& av_Records, std::int32_t al_Place) {
  Placed<Record> placed;
  if (!av_Records.Has(al_Place)) return placed;
  placed.record = av_Records[al_Place];
  placed.former = al_Place;
  return placed;
}

template <class Record>
std::vector<Placed<Record>> All(const RecordArray<Record>& av_Records) {
  std::vector<Placed<Record>> all;
  for (std::int32_t place = 1; place <= av_Records.count(); ++place) all.push_back(Former(av_Records, place));
  return all;
}

/// The ID of the record with that name; none when there is none.
template <class Record>
std::optional<std::int32_t> IDOf(const std::vector<Placed<Record>>& av_Records, std::string_view as_Name) {
  for (const Placed<Record>& placed : av_Records) {
    if (EqualsNoCase(placed.record.Name, as_Name)) return placed.record.ID;
  }
  return std::nullopt;
}

template <class Record>
std::string NameOf(const std::vector<Placed<Record>>& av_Records, std::int32_t al_ID) {
  for (const Placed<Record>& placed : av_Records) {
    if (al_ID != 0 && placed.record.ID == al_ID) return placed.record.Name;
  }
  return {};
}

/// Whether a client is only there because the settings file holds one at least: as it was written first, alone, and of
/// no unit. A person who never entered one is not asked for it.
bool StandsInForNone(const Client& av_Client, const SetupRecords& av_Records) {
  return av_Records.clients.size() == 1 && av_Client.Name == "Client 1" && av_Client.Folder == "F1" &&
         std::none_of(av_Records.units.begin(), av_Records.units.end(),
                      [&av_Client](const Placed<Unit>& unit) { return unit.record.ClientID == av_Client.ID; });
}

void AddRelays(const SetupPlan& av_Plan, const Registry& av_Registry, SetupRecords& av_Records) {
  Placed<Relay> direct = Former(av_Registry.Relays, 1);
  if (direct.former == 0) direct.record.Name = "Direct";
  av_Records.relays.push_back(std::move(direct));
  for (const SetupRelay& row : av_Plan.relays) {
    Placed<Relay> relay = Former(av_Registry.Relays, row.place);
    relay.record.Name = Trim(row.name);
    relay.record.ID = LeadingInteger(Trim(row.id));
    av_Records.relays.push_back(std::move(relay));
  }
}

void AddClients(const SetupPlan& av_Plan, const Registry& av_Registry, SetupRecords& av_Records) {
  std::set<std::int32_t> taken;
  for (const SetupClient& row : av_Plan.clients) {
    if (av_Registry.Clients.Has(row.place)) taken.insert(av_Registry.Clients[row.place].ID);
  }
  std::int32_t free = 1;
  for (const SetupClient& row : av_Plan.clients) {
    Placed<Client> client = Former(av_Registry.Clients, row.place);
    client.record.Name = Trim(row.name);
    client.record.Folder = Trim(row.folder);
    if (client.former == 0) {
      while (!taken.insert(free).second) ++free;
      client.record.ID = free;
    }
    av_Records.clients.push_back(std::move(client));
  }
  // The settings file holds one client at least, so the first stays where nobody names any.
  if (av_Records.clients.empty() && av_Registry.Clients.count() > 0) {
    av_Records.clients.push_back(Former(av_Registry.Clients, 1));
  }
}

void AddUnits(const SetupPlan& av_Plan, const Registry& av_Registry, SetupRecords& av_Records) {
  for (const SetupUnit& row : av_Plan.units) {
    Placed<Unit> unit = Former(av_Registry.Units, row.place);
    Unit& record = unit.record;
    record.Name = Trim(row.name);
    record.ID = LeadingInteger(Trim(row.id));
    record.Depths = PlainDepths(Trim(row.depths));
    record.Active = row.active ? 1 : 0;
    record.ftpFile = row.sent ? 1 : 0;
    record.GetFrom = row.get_from;
    const std::optional<std::int32_t> relay =
        IDOf(av_Records.relays, RelayMeant(av_Plan, row.relay).value_or(row.relay));
    // An ID that no relay or client bears, which a row cannot name, stays.
    if (relay || av_Registry.FindRelay(record.RelayID) != nullptr) record.RelayID = relay.value_or(0);
    const std::optional<std::int32_t> client = IDOf(av_Records.clients, Trim(row.client));
    if (client || av_Registry.FindClient(record.ClientID) != nullptr) record.ClientID = client.value_or(0);
    av_Records.units.push_back(std::move(unit));
  }
}

}  // namespace

SetupRecords RecordsOf(const SetupPlan& av_Plan, const Registry& av_Registry) {
  SetupRecords records;
  AddRelays(av_Plan, av_Registry, records);
  AddClients(av_Plan, av_Registry, records);
  AddUnits(av_Plan, av_Registry, records);
  return records;
}

SetupRecords RecordsIn(const Registry& av_Registry) {
  return {All(av_Registry.Units), All(av_Registry.Relays), All(av_Registry.Clients)};
}

void TakeRecords(SetupPlan& av_Plan, const SetupRecords& av_Records) {
  av_Plan.relays.clear();
  av_Plan.clients.clear();
  av_Plan.units.clear();
  const auto place = [](std::int64_t former) { return static_cast<std::int32_t>(former); };
  for (std::size_t i = 1; i < av_Records.relays.size(); ++i) {
    const Placed<Relay>& relay = av_Records.relays[i];
    av_Plan.relays.push_back({relay.record.Name, std::to_string(relay.record.ID), place(relay.former)});
  }
  for (const Placed<Client>& client : av_Records.clients) {
    if (StandsInForNone(client.record, av_Records)) continue;
    av_Plan.clients.push_back({client.record.Name, client.record.Folder, place(client.former)});
  }
  for (const auto& [record, former] : av_Records.units) {
    SetupUnit row;
    row.name = record.Name;
    row.id = std::to_string(record.ID);
    row.relay = NameOf(av_Records.relays, record.RelayID);
    row.client = NameOf(av_Records.clients, record.ClientID);
    row.depths = record.Depths;
    row.active = record.Active != 0;
    row.sent = record.ftpFile != 0;
    row.get_from = record.GetFrom;
    row.place = place(former);
    av_Plan.units.push_back(std::move(row));
  }
}

}  // namespace corvane
