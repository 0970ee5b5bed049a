#include "app/unit_commands.h"

namespace corvane {

bool UnitCommands::DownloadAll(bool ab_All, DownloadMode av_Mode, bool ab_Automatic) {
  // Also for what follows when the slot is given back.
  const AutomaticRun automatic(p_.flags, ab_Automatic);
  return p_.operations.RunOperation("Download", [&] {
    p_.round.DownloadAllUnits(ab_All, av_Mode);
    if (ab_All && av_Mode == kRadioUnits) p_.repair.AfterRound();
  });
}

bool UnitCommands::DownloadOnly(std::int32_t al_ConnectionType) {
  return p_.operations.RunOperation("Download", [&] {
    p_.journal.Run(RoundKind::Download, true, [&] { p_.sessions.ProcessAllUnits(true, al_ConnectionType, kDownload); });
  });
}

bool UnitCommands::Collect(const std::vector<std::int64_t>& av_Units) {
  return p_.operations.RunOperation("Download", [&] {
    const std::int64_t selected = p_.units.Selected();
    std::vector<std::int64_t> units;
    for (const std::int64_t unit : av_Units) {
      if (!p_.registry.Units.Has(unit)) continue;
      if (p_.registry.Units[unit].Active != 0 && p_.registry.Units[unit].GetFrom == kFromRadio) units.push_back(unit);
    }
    p_.round.CollectUnits(units, [this](std::int64_t unit) { p_.units.ReselectUnit(unit); });
    p_.units.ReselectUnit(selected);
  });
}

bool UnitCommands::Process(bool ab_All, std::int16_t ai_Command) {
  return p_.operations.RunOperation(CommandOf(ai_Command).name, [&] {
    const std::int64_t selected = p_.units.Selected();
    const bool by_radio = ab_All || !p_.registry.Units.Has(selected);
    const std::int32_t from = by_radio ? kFromRadio : p_.registry.Units[selected].GetFrom;
    p_.journal.Run(RoundKind::Command, ab_All, [&] { p_.sessions.ProcessAllUnits(ab_All, from, ai_Command); });
  });
}

bool UnitCommands::Repair(bool ab_All) {
  return p_.operations.RunOperation("Repair gaps", [&] { p_.repair.RepairAll(ab_All); });
}

bool UnitCommands::RepairUnits(const std::vector<std::int64_t>& av_Units, DateTime av_Since) {
  return p_.operations.RunOperation("Repair gaps", [&] { p_.repair.RepairUnits(av_Units, av_Since); });
}

bool UnitCommands::TestPort(std::int16_t ai_Index) {
  return p_.operations.RunOperation("Test Port", [&] {
    if (!p_.finder.TestBaseUnit(ai_Index)) ++p_.flags.problems;
  });
}

bool UnitCommands::FindPort(std::int16_t ai_Index) {
  return p_.operations.RunOperation("Find Port", [&] {
    if (!p_.finder.FindPort(ai_Index)) ++p_.flags.problems;
  });
}

void UnitCommands::SendDirect() {
  if (p_.terminal.Listening()) return p_.terminal.SendNext();
  p_.operations.RunOperation("Direct terminal", [&] {
    if (!p_.terminal.Run()) ++p_.flags.problems;
  });
}

void UnitCommands::AskMode() {
  const auto mode = p_.dialogs.AskText("Set Mode", "Mode that is sent to the units:", p_.form.Lbl_Mode.text());
  if (mode) p_.form.Lbl_Mode.SetText(*mode);
}

}  // namespace corvane
