#include "setup/setup_table.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "base/files.h"
#include "base/status.h"
#include "setup/setup_records.h"
#include "setup/stations_plan.h"
#include "setup/stations_table.h"

namespace corvane {
namespace {

constexpr Phrase kNotRead{1611, "%1 cannot be read: %2"};

/// The records in their order.
template <class Record>
RecordArray<Record> ArrayOf(const std::vector<Placed<Record>>& av_Records) {
  RecordArray<Record> records;
  for (const Placed<Record>& placed : av_Records) records.Append(placed.record);
  return records;
}

/// Lets the places of lists that were worked out from `av_Planned` be those that the plan's rows came from.
template <class Record>
std::vector<Placed<Record>> Traced(std::vector<Placed<Record>> av_Records,
                                   const std::vector<Placed<Record>>& av_Planned) {
  for (Placed<Record>& placed : av_Records) {
    if (placed.former > 0) placed.former = av_Planned[static_cast<std::size_t>(placed.former - 1)].former;
  }
  return av_Records;
}

std::vector<std::string> SentencesOf(const std::vector<StationFault>& av_Faults, const Phrases& av_Say) {
  std::vector<std::string> sentences;
  for (const StationFault& fault : av_Faults) sentences.push_back(fault.Sentence(av_Say));
  return sentences;
}

bool IsKept(const Placed<Client>& av_Client, const SetupRecords& av_Records) {
  const bool used = std::any_of(av_Records.units.begin(), av_Records.units.end(),
                                [&](const Placed<Unit>& unit) { return unit.record.ClientID == av_Client.record.ID; });
  return av_Client.former > 0 && !used;
}

}  // namespace

SetupTable TakeTable(SetupPlan& av_Plan, const Registry& av_Registry, const std::string& as_File,
                     const Phrases& av_Phrases) {
  std::string bytes;
  if (const Status read = ReadFile(as_File, bytes, kLargestStationsFile); !read.ok()) {
    return {{av_Phrases.Text(kNotRead, {as_File, read.text()})}, {}, {}};
  }
  const SetupRecords planned = RecordsOf(av_Plan, av_Registry);
  const Registry registry{ArrayOf(planned.units), ArrayOf(planned.relays), ArrayOf(planned.clients)};
  StationsPlan stations = PlanStations(registry, ReadStations(std::move(bytes), av_Phrases), {false, {}, av_Phrases});
  if (!stations.faults.empty()) return {SentencesOf(stations.faults, av_Phrases), {}, std::move(stations.notes)};
  SetupRecords records{Traced(std::move(stations.units), planned.units),
                       Traced(std::move(stations.relays), planned.relays),
                       Traced(std::move(stations.clients), planned.clients)};
  if (av_Plan.clients.empty()) {
    // One that is only kept because the settings hold one at least is nobody's.
    std::erase_if(records.clients, [&](const auto& client) { return IsKept(client, records); });
  }
  TakeRecords(av_Plan, records);
  return {{}, std::move(stations.changes), std::move(stations.notes)};
}

std::vector<Phrase> SetupTablePhrases() {
  std::vector<Phrase> all = StationsPhraseList();
  all.push_back(kNotRead);
  return all;
}

}  // namespace corvane
