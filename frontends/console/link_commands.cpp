#include "link_commands.h"

#include <algorithm>
#include <array>

#include "units.h"

namespace corvane::console {
namespace {

/// The unit command behind a command of the console.
struct UnitCommandRow {
  CommandId id;
  std::int16_t command;
};

constexpr std::array kUnitCommands = {
    UnitCommandRow{CommandId::GetDate, kGetDate},           UnitCommandRow{CommandId::SetDate, kSetDate},
    UnitCommandRow{CommandId::SetLogPeriod, kSetLogPeriod}, UnitCommandRow{CommandId::SetMode, kSetMode},
    UnitCommandRow{CommandId::SetDelays, kSetDelays},       UnitCommandRow{CommandId::ReadMemory, kReadMemory},
};

/// Why a unit named by the user cannot be asked; empty when it can.
std::string WhyNotAsked(const Unit& unit) {
  if (unit.Active == 0) return "not asked: the unit is not active";
  const bool has_port = unit.GetFrom == kFromRadio || unit.GetFrom == kFromHandHeld;
  return has_port ? "" : "not asked: its readings do not come over a port";
}

/// Runs `operation` for each of the units that can be asked; the unit is selected and its record is handed over.
void OperateOnEach(Desk& desk, UnitResults& results, const std::vector<std::int64_t>& units,
                   const std::function<void(const Unit& unit)>& operation) {
  for (const std::int64_t unit : units) {
    const Unit record = desk.app.registry().Units[unit];
    if (const std::string reason = WhyNotAsked(record); !reason.empty()) {
      results.AddLeftOut(record.Name, reason);
      continue;
    }
    OperateOn(desk, results, {unit}, [&] {
      desk.app.units().Select(unit);
      operation(record);
    });
  }
}

void DownloadAll(Desk& desk, UnitResults& results, GetFrom source, DownloadMode mode) {
  OperateOn(desk, results, ActiveUnits(desk.app.registry(), source),
            [&] { desk.app.commands().DownloadAll(true, mode, true); });
}

void EnterCommandText(Form& form, const Options& options) {
  if (options.command == CommandId::SetLogPeriod) form.Cmb_LogPeriod.SetShownText(options.arguments[0]);
  if (options.command == CommandId::SetMode) form.Lbl_Mode.SetText(options.arguments[0]);
  if (options.command == CommandId::SetDelays) form.Txt_Delays.SetText(options.arguments[0]);
}

}  // namespace

int Download(Desk& desk, const Options& options) {
  UnitResults results(desk.app, UnitResults::Kind::Download);
  if (!options.hand_held && options.arguments.empty()) {
    DownloadAll(desk, results, kFromRadio, kRadioUnits);
    return Report(desk, results);
  }
  // Only a round over all radio units serves the schedule.
  const std::string next_download = desk.app.form().Lbl_NextDownload.text();
  if (options.hand_held) {
    DownloadAll(desk, results, kFromHandHeld, kHandHeldUnits);
  } else {
    OperateOnEach(desk, results, FindUnits(desk.app.registry(), options.arguments), [&desk](const Unit& unit) {
      desk.app.commands().DownloadAll(false, unit.GetFrom == kFromRadio ? kRadioUnits : kHandHeldUnits, true);
    });
  }
  desk.app.form().Lbl_NextDownload.SetText(next_download);
  return Report(desk, results);
}

int UnitCommand(Desk& desk, const Options& options) {
  const auto* const row = std::find_if(kUnitCommands.begin(), kUnitCommands.end(),
                                       [&options](const auto& each) { return each.id == options.command; });
  const std::int16_t command = row->command;
  const std::vector<std::int64_t> units = FindUnits(desk.app.registry(), options.units);
  EnterCommandText(desk.app.form(), options);
  UnitResults results(desk.app, UnitResults::Kind::Command);
  if (units.empty()) {
    OperateOn(desk, results, ActiveUnits(desk.app.registry(), kFromRadio),
              [&] { desk.app.commands().Process(true, command); });
  }
  OperateOnEach(desk, results, units, [&](const Unit&) { desk.app.commands().Process(false, command); });
  return Report(desk, results);
}

}  // namespace corvane::console
