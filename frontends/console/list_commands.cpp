#include "list_commands.h"

#include "text_table.h"
#include "units.h"

namespace corvane::console {
namespace {

std::string SourceName(const Selector& sources, std::int32_t get_from) {
  for (std::int64_t row = 0; row < sources.count(); ++row) {
    if (sources.number(row) == get_from) return sources.text(row);
  }
  return std::to_string(get_from);
}

std::vector<std::string> RowOf(Desk& desk, std::int32_t position) {
  const Registry& registry = desk.app.registry();
  const Unit& unit = registry.Units[position];
  const Relay* const relay = registry.FindRelay(unit.RelayID);
  const Client* const client = registry.FindClient(unit.ClientID);
  const std::string raw_file = desk.app.names().DataFileName(position, false);
  return {std::to_string(position),
          unit.Name,
          std::to_string(unit.ID),
          unit.Active != 0 ? "yes" : "no",
          relay != nullptr ? relay->Name : std::to_string(unit.RelayID),
          client != nullptr ? client->Name : "",
          SourceName(desk.app.form().Cmb_GetFrom, unit.GetFrom),
          raw_file,
          LastReading(raw_file)};
}

}  // namespace

int ListUnits(Desk& desk, const Options& /*options*/) {
  std::vector<std::vector<std::string>> rows;
  for (std::int32_t i = 1; i <= desk.app.registry().Units.count(); ++i) rows.push_back(RowOf(desk, i));
  desk.output.Result(FormatTable({{"No", true},
                                  {"Name"},
                                  {"ID", true},
                                  {"Active"},
                                  {"Relay"},
                                  {"Client"},
                                  {"Get from"},
                                  {"Raw file"},
                                  {"Last reading"}},
                                 rows));
  for (const std::string& sentence : desk.app.names().SharedRawFiles(false)) desk.output.Error(sentence);
  return kAllWell;
}

int Recover(Desk& desk, const Options& /*options*/) {
  const std::string file = desk.app.app().AppPath("corvane.ini.recovery");
  switch (desk.app.recovery()) {
    case RecoveryState::Ours:
      desk.output.Line("The settings of " + file + " are taken over.");
      return kAllWell;
    case RecoveryState::Outdated:
      desk.output.Error("corvanectl: corvane.ini was changed since " + file +
                        " was written; it is not taken over. Look what is missing, enter it, and delete the copy");
      return kProblems;
    default:
      desk.output.Error("corvanectl: there is no " + file);
      return kProblems;
  }
}

}  // namespace corvane::console
