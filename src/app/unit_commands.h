#pragma once

#include <cstdint>

#include "app/operations.h"
#include "form/form.h"
#include "link/direct_terminal.h"
#include "platform/dialogs.h"
#include "registry/unit_editor.h"
#include "rounds/download_round.h"
#include "rounds/port_finder.h"
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
    PortFinder& finder;
    DirectTerminal& terminal;
    Dialogs& dialogs;
  };
  explicit UnitCommands(const Parts& av_Parts) : p_(av_Parts) {}

  /// The chained download; an automatic run shows no box that waits for a click.
  bool DownloadAll(bool ab_All, DownloadMode av_Mode, bool ab_Automatic);
  /// Downloads every active unit of a connection type, without what follows a download.
  bool DownloadOnly(std::int32_t al_ConnectionType);
  /// One command with the selected unit by its own connection, or with all units by radio.
  bool Process(bool ab_All, std::int16_t ai_Command);
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
