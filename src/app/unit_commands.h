#pragma once

#include <cstdint>
#include <vector>

#include "app/operations.h"
#include "form/form.h"
#include "link/direct_terminal.h"
#include "platform/dialogs.h"
#include "registry/unit_editor.h"
#include "rounds/download_round.h"
#include "rounds/gap_repair.h"
#include "rounds/port_finder.h"
#include "rounds/round_journal.h"
#include "rounds/sessions.h"

namespace corvane {

/// The commands that go over the serial line.
///
/// All **yield**; those that return bool are refused, returning false, while an operation runs.
class UnitCommands {
 public:
  /// What the commands start; all must outlive this object.
  struct Parts {
    Form& form;
    const Registry& registry;
    RunFlags& flags;
    UnitEditor& units;
    Operations& operations;
    Sessions& sessions;
    DownloadRound& round;
    GapRepair& repair;
    PortFinder& finder;
    RoundJournal& journal;
    DirectTerminal& terminal;
    Dialogs& dialogs;
  };
  explicit UnitCommands(const Parts& av_Parts) : p_(av_Parts) {}

  /// The chained download; an automatic run shows no box that waits for a click.
  bool DownloadAll(bool ab_All, DownloadMode av_Mode, bool ab_Automatic);
  /// Downloads every active unit of a connection type, without what follows a download.
  bool DownloadOnly(std::int32_t al_ConnectionType);
  /// Downloads those of these units (positions from 1) that are active and read by radio, with what follows a download.
  /// No tick and neither the last nor the next download changes.
  bool Collect(const std::vector<std::int64_t>& av_Units);
  /// One command with the selected unit by its own connection, or with all units by radio.
  bool Process(bool ab_All, std::int16_t ai_Command);
  /// Asks the selected unit, or all active ones that are read by radio, for readings that their raw files lack.
  bool Repair(bool ab_All);
  /// The same with these units (positions from 1), for gaps that end behind `av_Since`.
  bool RepairUnits(const std::vector<std::int64_t>& av_Units, DateTime av_Since);
  bool TestPort(std::int16_t ai_Index);
  bool FindPort(std::int16_t ai_Index);
  /// Sends what is typed in the direct terminal; opens it first where it does not listen.
  void SendDirect();
  /// Asks for the text that the command "Set Mode" sends.
  void AskMode();

 private:
  Parts p_;
};

}  // namespace corvane
