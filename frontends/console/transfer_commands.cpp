#include "transfer_commands.h"

#include <algorithm>

#include "text_table.h"
#include "units.h"

namespace corvane::console {
namespace {

/// What became of each unit's file: the rows of the table.
using Rows = std::vector<std::vector<std::string>>;

/// The units that the command is about when it names none.
std::vector<std::int64_t> UnitsOf(const Registry& registry, CommandId command) {
  if (command == CommandId::Backup) return {};
  if (command == CommandId::Fetch) return ActiveUnits(registry, kFromFtp);
  std::vector<std::int64_t> units = ActiveUnits(registry, kFromAnywhere);
  std::erase_if(units, [&registry](std::int64_t unit) { return registry.Units[unit].ftpFile != kToFtp; });
  return units;
}

std::string WhyNotTried(const Unit& unit, CommandId command) {
  if (command == CommandId::Send && unit.ftpFile != kToFtp) return "not tried: its file is not sent by FTP";
  if (command == CommandId::Fetch && unit.GetFrom != kFromFtp) return "not tried: its file does not come by FTP";
  return unit.Active == 0 ? "not tried: the unit is not active" : "not tried";
}

/// Adds what the operation that just ended has tried, and the units of `expected` that it did not come to: those are
/// problems that it has not counted.
void Collect(Desk& desk, CommandId command, const std::vector<std::int64_t>& expected, Rows& rows) {
  const auto& results = desk.app.transfer_results();
  const auto& units = desk.app.registry().Units;
  for (const TransferResult& result : results) {
    const std::string well = result.nothing ? "no file yet" : "ok";
    rows.push_back({units[result.unit].Name, result.file, result.problem.empty() ? well : result.problem});
  }
  for (const std::int64_t unit : expected) {
    const auto is_unit = [unit](const TransferResult& result) { return result.unit == unit; };
    if (std::any_of(results.begin(), results.end(), is_unit)) continue;
    rows.push_back({units[unit].Name, "", WhyNotTried(units[unit], command)});
    ++desk.problems;
  }
}

void TransferAll(Desk& desk, CommandId command) {
  Operate(desk, [&] {
    if (command == CommandId::Send) desk.app.commands().Send(true);
    if (command == CommandId::Fetch) desk.app.commands().Fetch(true);
    if (command == CommandId::Backup) desk.app.commands().Backup();
  });
}

void TransferOne(Desk& desk, CommandId command, std::int64_t unit) {
  Operate(desk, [&] {
    desk.app.units().Select(unit);
    if (command == CommandId::Send) {
      desk.app.commands().Send(false);
    } else {
      desk.app.commands().Fetch(false);
    }
  });
}

}  // namespace

int Transfer(Desk& desk, const Options& options) {
  const CommandId command = options.command;
  if (command == CommandId::Backup && !desk.app.form().Chk_Backup.ticked()) {
    desk.output.Error("Backup is switched off in the settings. Tick it in the window, or: corvanectl set Backup 1");
    return kProblems;
  }
  Rows rows;
  if (options.arguments.empty()) {
    TransferAll(desk, command);
    Collect(desk, command, UnitsOf(desk.app.registry(), command), rows);
  }
  for (const std::int64_t unit : FindUnits(desk.app.registry(), options.arguments)) {
    TransferOne(desk, command, unit);
    Collect(desk, command, {unit}, rows);
  }
  const int status = StatusOf(desk);
  PrintTable(desk, rows.empty() ? "" : FormatTable({{"Unit"}, {"File"}, {"Result"}}, rows), status);
  return status;
}

}  // namespace corvane::console
