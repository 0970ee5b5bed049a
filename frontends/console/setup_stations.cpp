#include "setup_stations.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/csv.h"
#include "base/numbers.h"
#include "base/text.h"
#include "full_path.h"
#include "text_table.h"

namespace corvane::console {
namespace {

/// The cells of a line as a file of a spreadsheet has them, at least `count`; semicolons part them where no comma does.
std::vector<std::string> CellsOf(const std::string& line, std::size_t count) {
  const char* const separator = line.find(',') == line.npos ? "sep=;\n" : "sep=,\n";
  const CsvContents contents = ParseCsv(separator + line);
  std::vector<std::string> cells;
  if (!contents.rows.empty()) cells = contents.rows.front().cells;
  for (std::string& cell : cells) cell = Trim(cell);
  cells.resize(std::max(cells.size(), count));
  return cells;
}

/// What is typed into a list: a new row, another text for a row, or a row that is to go.
struct Typed {
  std::optional<std::size_t> row;  ///< from 0; none: a new one
  bool goes = false;
  std::string text;
};

constexpr std::string_view kHowRowsAreTyped =
    "  A row a line; Enter ends the list, \"-2\" takes row 2 away, \"2: ...\" enters it anew, \"file NAME\" reads a "
    "table.";

/// What stands at a row's place where it is asked for one that is not there.
std::string NoSuchRow(const std::string& line, std::size_t rows) {
  const bool is_number = line.starts_with('-') && ParseInteger(line.substr(1), 0, INT32_MAX);
  return is_number ? "There is no row " + line.substr(1) + ", only " + std::to_string(rows) + "." : "";
}

/// "-2" takes row 2 away, "2: ..." enters it anew, anything else is a new row.
Typed Read(const std::string& line, std::size_t rows) {
  const auto most = static_cast<std::int64_t>(rows);
  if (line.starts_with('-')) {
    if (const auto row = ParseInteger(line.substr(1), 1, most)) return {static_cast<std::size_t>(*row - 1), true, {}};
  }
  const std::size_t colon = line.find(':');
  if (colon != std::string::npos) {
    if (const auto row = ParseInteger(line.substr(0, colon), 1, most)) {
      return {static_cast<std::size_t>(*row - 1), false, line.substr(colon + 1)};
    }
  }
  return {std::nullopt, false, line};
}

SetupRelay RelayOf(const SetupPlan& plan, SetupRelay relay, const std::string& text) {
  const std::vector<std::string> cells = CellsOf(text, 2);
  relay.name = cells[0];
  relay.id = cells[1].empty() ? NextRelay(plan).id : cells[1];
  return relay;
}

SetupUnit UnitOf(const SetupPlan&, SetupUnit unit, const std::string& text) {
  const std::vector<std::string> cells = CellsOf(text, 5);
  unit.name = cells[0];
  const auto take = [](std::string& value, const std::string& cell) {
    if (!cell.empty()) value = cell == "-" ? "" : cell;
  };
  take(unit.id, cells[1]);
  take(unit.relay, cells[2]);
  take(unit.client, cells[3]);
  take(unit.depths, cells[4]);
  return unit;
}

/// One of the two lists: what its rows are made of, and how it looks.
template <class Row>
struct RowList {
  std::vector<Row>& rows;
  std::string prompt;
  std::function<Row()> fresh;
  Row (*entered)(const SetupPlan& plan, Row row, const std::string& text);
  std::vector<SetupField> fields;
  std::string (*told)(const Row& row);
  /// What follows from a row that was entered anew, as the rest of a sentence.
  std::string (*follow)(SetupPlan& plan, const Row& former, const Row& now);
};

std::string TextOf(const SetupRelay& relay) {
  return relay.name + ", ID " + relay.id;
}

std::string TextOf(const SetupUnit& unit) {
  std::string text = unit.name + ", ID " + unit.id + (unit.relay.empty() ? ", direct" : ", relay " + unit.relay);
  if (!unit.client.empty()) text += ", client " + unit.client;
  if (!unit.depths.empty()) text += ", depths " + unit.depths;
  return text;
}

std::string FollowText(SetupPlan& plan, const SetupRelay& former, const SetupRelay& now) {
  const std::size_t followed = FollowRelay(plan, former.name, now.name);
  if (followed == 0) return "";
  return "; " + std::to_string(followed) + (followed == 1 ? " unit follows it" : " units follow it");
}

std::vector<SetupFault> FaultsIn(const Desk& desk, const SetupPlan& plan, const std::vector<SetupField>& fields,
                                 std::size_t row) {
  std::vector<SetupFault> faults = desk.app.setup().FaultsOf(plan, SetupPage::Stations);
  std::erase_if(faults, [&](const SetupFault& fault) {
    return fault.row != row || std::find(fields.begin(), fields.end(), fault.field) == fields.end();
  });
  return faults;
}

/// Takes a table's file where one is named; false where none is.
bool TakeFile(Desk& desk, SetupTalk& talk, SetupPlan& plan, const std::string& line) {
  constexpr std::string_view kFile = "file ";
  if (!StartsWithNoCase(line, kFile)) return false;
  const std::string name(Trim(std::string_view(line).substr(kFile.size())));
  const SetupTable table = desk.app.setup().TakeTable(plan, FullPath(name));
  for (const std::string& change : table.changes) talk.Say("  " + change);
  if (table.faults.empty()) {
    if (table.changes.empty()) talk.Say("  no change");
    return true;
  }
  std::string text;
  for (const std::string& fault : table.faults) text += (text.empty() ? "" : "\n") + fault;
  talk.Refuse(text);
  return true;
}

/// Enters what was typed, unless it has a fault of its own.
template <class Row>
void Take(Desk& desk, SetupTalk& talk, SetupPlan& plan, const RowList<Row>& list, const std::string& line) {
  const Typed typed = Read(line, list.rows.size());
  if (const std::string none = NoSuchRow(line, list.rows.size()); !typed.goes && !none.empty()) {
    return talk.Refuse(none);
  }
  const std::vector<Row> before = list.rows;
  if (typed.goes)
    return static_cast<void>(list.rows.erase(list.rows.begin() + static_cast<std::ptrdiff_t>(*typed.row)));
  const std::size_t at = typed.row.value_or(list.rows.size());
  Row row = list.entered(plan, typed.row ? list.rows[at] : list.fresh(), typed.text);
  if (typed.row) {
    list.rows[at] = std::move(row);
  } else {
    list.rows.push_back(std::move(row));
  }
  if (talk.Refuse(FaultsIn(desk, plan, list.fields, at + 1), false)) {
    list.rows = before;
  } else {
    const std::string follows = typed.row ? list.follow(plan, before[at], list.rows[at]) : "";
    talk.Say("  Row " + std::to_string(at + 1) + ": " + list.told(list.rows[at]) + follows);
  }
}

template <class Row>
void AskRows(Desk& desk, SetupTalk& talk, SetupPlan& plan, const RowList<Row>& list) {
  for (;;) {
    const std::string line = talk.Line(list.prompt);
    if (line.empty() || line == "-") return;
    if (line == "?") {
      talk.Say(std::string(kHowRowsAreTyped));
      continue;
    }
    if (TakeFile(desk, talk, plan, line)) continue;
    Take(desk, talk, plan, list, line);
  }
}

void ShowRelays(Desk& desk, const SetupPlan& plan) {
  std::vector<std::vector<std::string>> rows;
  for (const SetupRelay& relay : plan.relays) rows.push_back({std::to_string(rows.size() + 1), relay.name, relay.id});
  if (!rows.empty()) desk.output.Result(FormatTable({{"Row", true}, {"Relay"}, {"ID", true}}, rows));
}

void ShowUnits(Desk& desk, const SetupPlan& plan) {
  std::vector<std::vector<std::string>> rows;
  for (const SetupUnit& unit : plan.units) {
    rows.push_back({std::to_string(rows.size() + 1), unit.name, unit.id, unit.relay.empty() ? "-" : unit.relay,
                    unit.client.empty() ? "-" : unit.client, unit.depths});
  }
  if (rows.empty()) return;
  desk.output.Result(FormatTable({{"Row", true}, {"Unit"}, {"ID", true}, {"Relay"}, {"Client"}, {"Depths"}}, rows));
}

}  // namespace

void AskStations(Desk& desk, SetupTalk& talk, SetupPlan& plan) {
  talk.Say(std::string(kHowRowsAreTyped));
  ShowRelays(desk, plan);
  AskRows<SetupRelay>(desk, talk, plan,
                      {plan.relays,
                       "Relay: name, ID",
                       [&plan] { return NextRelay(plan); },
                       RelayOf,
                       {SetupField::RelayName, SetupField::RelayID},
                       [](const SetupRelay& relay) { return TextOf(relay); },
                       FollowText});
  if (!plan.relays.empty()) ShowRelays(desk, plan);
  talk.Say("  A unit is behind the relay of the one before; - stands for none.");
  ShowUnits(desk, plan);
  AskRows<SetupUnit>(desk, talk, plan,
                     {plan.units,
                      "Unit: name, ID [, relay [, client [, depths in cm, as 10;20;40]]]",
                      [&plan] { return NextUnit(plan); },
                      UnitOf,
                      {SetupField::UnitName, SetupField::UnitID, SetupField::UnitRelay, SetupField::UnitClient,
                       SetupField::UnitDepths},
                      [](const SetupUnit& unit) { return TextOf(unit); },
                      [](SetupPlan&, const SetupUnit&, const SetupUnit&) { return std::string(); }});
  ShowUnits(desk, plan);
  // A relay that units name may have gone.
  if (talk.Refuse(desk.app.setup().FaultsOf(plan, SetupPage::Stations), true)) throw Leave::Again;
}

}  // namespace corvane::console
