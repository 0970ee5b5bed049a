#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "app/run_at_startup.h"
#include "data/hex_conversion.h"
#include "data/local_files.h"
#include "form/form.h"
#include "link/direct_terminal.h"
#include "link/schedule.h"
#include "platform/dialogs.h"
#include "platform/shell.h"
#include "registry/client_editor.h"
#include "registry/relay_editor.h"
#include "registry/unit_editor.h"
#include "rounds/batch_conversion.h"
#include "rounds/client_folders.h"
#include "rounds/download_round.h"
#include "rounds/port_finder.h"
#include "rounds/sessions.h"
#include "rounds/transfer_flows.h"
#include "state/app_info.h"
#include "state/operation_slot.h"
#include "state/run_flags.h"
#include "transfer/remote_browser.h"

namespace corvane {

/// The pages of the user guide as full paths; empty where the program was installed without them.
struct HelpFiles {
  std::string contents;
  std::string index;
};

/// The commands of the main window: what each menu entry, button and key starts.
///
/// Operations run in the operation slot; a second one is refused. Every command first stores the registry editors.
class Commands {
 public:
  /// What the commands start; all must outlive this object.
  struct Parts {
    Form& form;
    Registry& registry;
    LinkState& link;
    RunFlags& flags;
    OperationSlot& slot;
    const FileNames& names;
    UnitEditor& units;
    RelayEditor& relays;
    ClientEditor& clients;
    LocalFiles& files;
    BatchConversion& conversion;
    HexConversion& hex;
    PortLink& port;
    DirectTerminal& terminal;
    CommandStates& states;
    LinkWriter& writer;
    Sessions& sessions;
    DownloadRound& round;
    PortFinder& finder;
    Schedule& schedule;
    RunAtStartup& run_at_startup;
    TransferFlows& flows;
    RemoteBrowser& browser;
    EventLoop& loop;
    Dialogs& dialogs;
    Shell& shell;
    const HelpFiles& help;
    Messages& messages;
    Trace& trace;
  };
  explicit Commands(const Parts& av_Parts) : p_(av_Parts) {}

  /// Fills the menus and binds every control to its command.
  void Bind();
  /// Stores the three registry editors into their records.
  void StoreEditors();

  // Operations; all **yield** and are refused, returning false, while another one runs.

  /// The chained download; an automatic run shows no box that waits for a click.
  bool DownloadAll(bool ab_All, DownloadMode av_Mode, bool ab_Automatic);
  /// One command with the selected unit by its own connection, or with all units by radio.
  bool Process(bool ab_All, std::int16_t ai_Command);
  bool ConvertAll(bool ab_All);
  bool ConvertSelected();
  /// Sends the units' files by FTP, or where `ab_All` is false the selected unit's by FTP and web data.
  bool Send(bool ab_All);
  /// Fetches the units' files from the FTP server and converts what came raw.
  bool Fetch(bool ab_All);
  bool Backup();
  bool TestPort(std::int16_t ai_Index);
  bool FindPort(std::int16_t ai_Index);

  /// Cancels what runs; while idle tells the base station to stop whatever it does.
  void Cancel();
  /// Asks the program to end: what runs is cancelled and unwinds, then the main loop closes.
  ///
  /// `ab_Silently`: ended by a signal or the session; no box is shown any more.
  void Close(bool ab_Silently);
  /// Called once when the end is asked for, by whatever way.
  std::function<void()> on_close;

 private:
  struct MenuRow;
  struct ButtonRow;

  bool RunOperation(std::string_view as_Name, const std::function<void()>& av_Operation);
  void RunCommand(std::string_view as_Name, const std::function<void()>& av_Command);

  void Download(std::int16_t ai_Entry);
  void DownloadAllButton(std::int16_t ai_Mode) { DownloadAll(true, static_cast<DownloadMode>(ai_Mode), false); }
  void ProcessSelected(std::int16_t ai_Command) { Process(false, ai_Command); }
  void ProcessEveryUnit(std::int16_t ai_Command) { Process(true, ai_Command); }
  void Convert(std::int16_t ai_Entry);
  void ConvertHex(std::int16_t ai_Unused);
  void FileMenu(std::int16_t ai_Entry);
  void SendMenu(std::int16_t ai_Entry);
  bool FetchFrom(bool ab_All, std::int32_t al_Source);
  void UnitCommand(std::int16_t ai_Command);
  void RelayCommand(std::int16_t ai_Command);
  void ClientCommand(std::int16_t ai_Command);
  void FtpCommand(std::int16_t ai_Command);
  void OpenRemoteEntry();
  void GetCertificate(std::int16_t ai_Unused);
  void SendDirect(std::int16_t ai_Unused);
  void AskMode(std::int16_t ai_Unused);
  void Help(std::int16_t ai_Entry);
  void FileCommand(std::int16_t ai_Entry);
  void GetFile(std::int16_t ai_Index);
  void EditFile(std::int16_t ai_Index);
  void TestPortButton(std::int16_t ai_Index) { TestPort(ai_Index); }
  void FindPortButton(std::int16_t ai_Index) { FindPort(ai_Index); }
  void CancelButton(std::int16_t /*ai_Index*/) { Cancel(); }

  void BindMenus();
  void BindButtons();
  void BindFields();
  void BindKeys();

  Parts p_;
};

}  // namespace corvane
