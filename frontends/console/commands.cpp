#include "commands.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>

#include "base/numbers.h"
#include "base/paths.h"
#include "base/text.h"
#include "script.h"
#include "script_runner.h"
#include "text_table.h"
#include "transfer_results.h"
#include "unit_files.h"

namespace corvane::console {
namespace {

/// The unit command behind a command of the console.
struct UnitCommandRow {
  CommandId id;
  std::int16_t command;
};

constexpr std::array kUnitCommands = {
    UnitCommandRow{CommandId::GetDate, corvane::kGetDate},
    UnitCommandRow{CommandId::SetDate, corvane::kSetDate},
    UnitCommandRow{CommandId::SetLogPeriod, corvane::kSetLogPeriod},
    UnitCommandRow{CommandId::SetMode, corvane::kSetMode},
    UnitCommandRow{CommandId::SetDelays, corvane::kSetDelays},
    UnitCommandRow{CommandId::ReadMemory, corvane::kReadMemory},
};

bool HasPort(const Unit& unit) {
  return unit.GetFrom == kFromRadio || unit.GetFrom == kFromHandHeld;
}

/// Why a unit named by the user cannot be asked; empty when it can.
std::string WhyNotAsked(const Unit& unit) {
  if (unit.Active == 0) return "not asked: the unit is not active";
  return HasPort(unit) ? "" : "not asked: its readings do not come over a port";
}

std::int16_t PortIndexOf(const Options& options) {
  return !options.arguments.empty() && options.arguments[0] == "hand-held" ? 1 : 0;
}

}  // namespace

int ConsoleCommands::Run(const Options& options) {
  switch (options.command) {
    case CommandId::Download:
      return Download(options);
    case CommandId::Convert:
      return Convert(options);
    case CommandId::Send:
    case CommandId::Fetch:
    case CommandId::Backup:
      return Transfer(options);
    case CommandId::TestPort:
      return TestPort(options);
    case CommandId::FindPort:
      return FindPort(options);
    case CommandId::Run:
      return KeepSchedule(options);
    case CommandId::Units:
      return ListUnits();
    case CommandId::Script:
      return RunScript(options);
    default:
      return UnitCommand(options);
  }
}

void ConsoleCommands::Operate(UnitResults& results, const std::vector<std::int64_t>& units,
                              const std::function<void()>& operation) {
  app_.flags().automatic_run = true;
  app_.flags().problems = 0;
  results.Begin(units);
  view_.on_change = [&results](const Control& control) { results.OnChange(control); };
  operation();
  view_.on_change = nullptr;
  results.End();
  for (const TransferResult& result : app_.flows().Results()) {
    if (!result.problem.empty()) output_.Error(result.file + ": " + result.problem);
  }
  problems_ += app_.flags().problems;
  app_.flags().automatic_run = false;
}

int ConsoleCommands::Download(const Options& options) {
  UnitResults results(app_, UnitResults::Kind::Download);
  // Only a round over all radio units serves the schedule.
  const std::string next_download = app_.form().Lbl_NextDownload.text();
  if (options.hand_held) {
    Operate(results, ActiveUnits(kFromHandHeld), [this] { app_.commands().DownloadAll(true, kHandHeldUnits, true); });
    app_.form().Lbl_NextDownload.SetText(next_download);
  } else if (options.arguments.empty()) {
    Operate(results, ActiveUnits(kFromRadio), [this] { app_.commands().DownloadAll(true, kRadioUnits, true); });
  } else {
    for (const std::int64_t unit : FindUnits(options.arguments)) DownloadUnit(results, unit);
    app_.form().Lbl_NextDownload.SetText(next_download);
  }
  return Report(results);
}

void ConsoleCommands::DownloadUnit(UnitResults& results, std::int64_t unit) {
  const Unit record = app_.registry().Units[unit];
  if (const std::string reason = WhyNotAsked(record); !reason.empty()) return results.AddLeftOut(record.Name, reason);
  Operate(results, {unit}, [this, unit, &record] {
    app_.units().Select(unit);
    app_.commands().DownloadAll(false, record.GetFrom == kFromRadio ? kRadioUnits : kHandHeldUnits, true);
  });
}

int ConsoleCommands::Convert(const Options& options) {
  UnitResults results(app_, UnitResults::Kind::Convert);
  if (options.files) {
    for (const std::string& file : options.arguments) ConvertFile(results, file);
  } else if (options.arguments.empty()) {
    Operate(results, ActiveUnits(-1), [this] { app_.commands().ConvertAll(true); });
  } else {
    for (const std::int64_t unit : FindUnits(options.arguments)) ConvertUnit(results, unit);
  }
  return Report(results);
}

void ConsoleCommands::ConvertUnit(UnitResults& results, std::int64_t unit) {
  Operate(results, {unit}, [this, unit] {
    app_.units().Select(unit);
    app_.commands().ConvertAll(false);
  });
}

void ConsoleCommands::ConvertFile(UnitResults& results, const std::string& file) {
  for (std::int32_t unit = 1; unit <= app_.registry().Units.count(); ++unit) {
    if (app_.names().DataFileShortName(unit, false) != FileNameOf(file)) continue;
    const std::string raw_file = app_.names().DataFileName(unit, false);
    std::error_code error;
    const bool same = FileNameOf(file) == file || std::filesystem::equivalent(file, raw_file, error);
    if (same) return ConvertUnit(results, unit);
    return results.AddLeftOut(file, "not converted: the raw file is " + raw_file);
  }
  results.AddLeftOut(file, "not converted: no unit has a raw file of that name");
}

int ConsoleCommands::Transfer(const Options& options) {
  if (options.command == CommandId::Backup && !app_.form().Chk_Backup.ticked()) {
    output_.Error("Backup is switched off in the settings. Tick it in the window, or write Backup=1 into corvane.ini");
    return kProblems;
  }
  TransferResults results(app_, options.command);
  if (options.arguments.empty()) {
    TransferAll(options.command);
    results.Collect(TransferUnits(options.command));
  } else {
    for (const std::int64_t unit : FindUnits(options.arguments)) {
      TransferOne(options.command, unit);
      results.Collect({unit});
    }
  }
  problems_ += results.problems();
  const std::string table = results.Table();
  if (!table.empty() && !(OperationStatus() == kAllWell && output_.quiet())) output_.Result("\n" + table);
  return OperationStatus();
}

void ConsoleCommands::RunTransfer(const std::function<void()>& operation) {
  app_.flags().automatic_run = true;
  app_.flags().problems = 0;
  operation();
  problems_ += app_.flags().problems;
  app_.flags().automatic_run = false;
}

void ConsoleCommands::TransferAll(CommandId command) {
  RunTransfer([this, command] {
    if (command == CommandId::Send) app_.commands().Send(true);
    if (command == CommandId::Fetch) app_.commands().Fetch(true);
    if (command == CommandId::Backup) app_.commands().Backup();
  });
}

void ConsoleCommands::TransferOne(CommandId command, std::int64_t unit) {
  RunTransfer([this, command, unit] {
    app_.units().Select(unit);
    if (command == CommandId::Send) {
      app_.commands().Send(false);
    } else {
      app_.commands().Fetch(false);
    }
  });
}

std::vector<std::int64_t> ConsoleCommands::TransferUnits(CommandId command) const {
  if (command == CommandId::Backup) return {};
  std::vector<std::int64_t> units;
  for (const std::int64_t unit : ActiveUnits(command == CommandId::Fetch ? kFromFtp : -1)) {
    if (command == CommandId::Fetch || app_.registry().Units[unit].ftpFile == kToFtp) units.push_back(unit);
  }
  return units;
}

int ConsoleCommands::UnitCommand(const Options& options) {
  const auto* row = std::find_if(kUnitCommands.begin(), kUnitCommands.end(),
                                 [&options](const UnitCommandRow& each) { return each.id == options.command; });
  const std::int16_t command = row->command;
  const std::vector<std::int64_t> units = FindUnits(options.units);
  EnterCommandText(options);
  UnitResults results(app_, UnitResults::Kind::Command);
  if (units.empty()) {
    Operate(results, ActiveUnits(kFromRadio), [this, command] { app_.commands().Process(true, command); });
  }
  for (const std::int64_t unit : units) {
    const Unit record = app_.registry().Units[unit];
    if (const std::string reason = WhyNotAsked(record); !reason.empty()) {
      results.AddLeftOut(record.Name, reason);
      continue;
    }
    Operate(results, {unit}, [this, unit, command] {
      app_.units().Select(unit);
      app_.commands().Process(false, command);
    });
  }
  return Report(results);
}

void ConsoleCommands::EnterCommandText(const Options& options) {
  Form& form = app_.form();
  if (options.command == CommandId::SetLogPeriod) form.Cmb_LogPeriod.SetShownText(options.arguments[0]);
  if (options.command == CommandId::SetMode) form.Lbl_Mode.SetText(options.arguments[0]);
  if (options.command == CommandId::SetDelays) form.Txt_Delays.SetText(options.arguments[0]);
}

int ConsoleCommands::TestPort(const Options& options) {
  const std::int16_t index = PortIndexOf(options);
  app_.flags().automatic_run = true;
  app_.flags().problems = 0;
  app_.commands().TestPort(index);
  problems_ = app_.flags().problems;
  if (problems_ == 0) {
    output_.Line(PortText(index) + ": answered");
  } else {
    output_.Error(PortText(index) + ": no answer");
  }
  return OperationStatus();
}

int ConsoleCommands::FindPort(const Options& options) {
  const std::int16_t index = PortIndexOf(options);
  app_.flags().automatic_run = true;
  app_.commands().FindPort(index);
  problems_ = app_.flags().problems;
  if (problems_ == 0) output_.Line("Kept in the settings: " + PortText(index));
  return OperationStatus();
}

std::string ConsoleCommands::PortText(int index) const {
  const Selector& ports = app_.form().Cmb_Port[index];
  const std::string device = app_.devices().DeviceOf(ports.SelectedItemData());
  return ports.shown_text() + " (" + (device.empty() ? "no device" : device) + ")";
}

int ConsoleCommands::KeepSchedule(const Options& options) {
  Form& form = app_.form();
  if (!options.interval.empty()) {
    form.Txt_AutomaticInterval.SetText(options.interval);
    form.Txt_AutomaticInterval.Leave();
  }
  if (options.automatic) form.Chk_Automatic.SetTicked(true);
  if (!form.Chk_Automatic.ticked()) {
    output_.Error(
        "Automatic download is switched off in the settings. Switch it on with: corvanectl run --automatic "
        "[--interval H:MM]");
    return kNotStarted;
  }
  app_.life().OnWindowActivate("");
  output_.Line("Running in " + app_.app().Folder() + ", next download: " + form.Lbl_NextDownload.text());
  view_.ShowNextDownload();
  app_.RunUntilClosed();
  output_.Line("Ended");
  return kAllWell;
}

int ConsoleCommands::ListUnits() {
  const Registry& registry = app_.registry();
  const Selector& sources = app_.form().Cmb_GetFrom;
  std::vector<std::vector<std::string>> rows;
  for (std::int32_t i = 1; i <= registry.Units.count(); ++i) {
    const Unit& unit = registry.Units[i];
    const Relay* relay = registry.FindRelay(unit.RelayID);
    const Client* client = registry.FindClient(unit.ClientID);
    std::string source = std::to_string(unit.GetFrom);
    for (std::int64_t row = 0; row < sources.count(); ++row) {
      if (sources.number(row) == unit.GetFrom) source = sources.text(row);
    }
    const std::string raw_file = app_.names().DataFileName(i, false);
    rows.push_back({std::to_string(i), unit.Name, std::to_string(unit.ID), unit.Active != 0 ? "yes" : "no",
                    relay != nullptr ? relay->Name : std::to_string(unit.RelayID),
                    client != nullptr ? client->Name : "", source, raw_file, LastReading(raw_file)});
  }
  output_.Result(FormatTable({{"No", true},
                              {"Name"},
                              {"ID", true},
                              {"Active"},
                              {"Relay"},
                              {"Client"},
                              {"Get from"},
                              {"Raw file"},
                              {"Last reading"}},
                             rows));
  return kAllWell;
}

int ConsoleCommands::RunScript(const Options& options) {
  const Statements script = LoadScript(options.arguments[0], app_.form());
  ScriptRunner runner(app_.form(), loop_, app_.flags(),
                      {[this](const std::string& text) { dialogs_.QueueAnswer(text); },
                       [this](const std::string& switches) { app_.life().OnWindowActivate(switches); },
                       [this](const std::string& text) { output_.Result(Printable(text) + "\n"); }});
  view_.on_change = [&runner](const Control& control) { runner.OnChange(control); };
  const ScriptResult result = runner.Run(script);
  view_.on_change = nullptr;
  if (!result.error.empty()) output_.Error("corvanectl: " + result.error);
  return result.error.empty() && result.problems == 0 ? kAllWell : kProblems;
}

int ConsoleCommands::Report(const UnitResults& results) {
  const bool well = results.problems() == 0 && OperationStatus() == kAllWell;
  const std::string table = results.Table();
  if (!table.empty() && !(well && output_.quiet())) output_.Result("\n" + table);
  return well ? kAllWell : kProblems;
}

int ConsoleCommands::OperationStatus() const {
  return problems_ == 0 && dialogs_.declined() == 0 ? kAllWell : kProblems;
}

std::vector<std::int64_t> ConsoleCommands::FindUnits(const std::vector<std::string>& names) const {
  std::vector<std::int64_t> units;
  for (const std::string& name : names) {
    const std::int64_t unit = FindUnit(name);
    if (std::find(units.begin(), units.end(), unit) == units.end()) units.push_back(unit);
  }
  return units;
}

std::int64_t ConsoleCommands::FindUnit(const std::string& name) const {
  const auto& units = app_.registry().Units;
  const auto id = ParseInteger(name, INT32_MIN, INT32_MAX);
  std::vector<std::int64_t> found;
  for (std::int64_t i = 1; i <= units.count(); ++i) {
    if (EqualsNoCase(units[i].Name, name)) found.push_back(i);
  }
  for (std::int64_t i = 1; id && found.empty() && i <= units.count(); ++i) {
    if (units[i].ID == *id) found.push_back(i);
  }
  if (found.empty()) throw UsageError("there is no unit \"" + name + "\"; corvanectl units lists them");
  if (found.size() > 1) throw UsageError("several units are called \"" + name + "\": name the unit by its ID");
  return found.front();
}

std::vector<std::int64_t> ConsoleCommands::ActiveUnits(std::int32_t get_from) const {
  std::vector<std::int64_t> active;
  const auto& units = app_.registry().Units;
  for (std::int64_t i = 1; i <= units.count(); ++i) {
    if (units[i].Active != 0 && (get_from < 0 || units[i].GetFrom == get_from)) active.push_back(i);
  }
  return active;
}

}  // namespace corvane::console
