// The tables of menu entries and buttons.
#include "app/command_bindings.h"

#include <array>
#include <vector>

namespace corvane {
namespace {

using Parts = CommandBindings::Parts;
/// What a menu entry or a button starts, with the number that stands in its row.
using Command = void (*)(const Parts&, std::int16_t);

// Whether a command is for the selected unit or for all of them.
constexpr std::int16_t kSelected = 0;
constexpr std::int16_t kAll = 1;

constexpr Command kDownloadAll = [](const Parts& p, std::int16_t mode) {
  p.units.DownloadAll(true, static_cast<DownloadMode>(mode), false);
};
constexpr Command kDownloadCurrent = [](const Parts& p, std::int16_t) {
  p.units.DownloadAll(false, kCurrentUnit, false);
};
constexpr Command kDownloadOnly = [](const Parts& p, std::int16_t from) { p.units.DownloadOnly(from); };
constexpr Command kProcessSelected = [](const Parts& p, std::int16_t command) { p.units.Process(false, command); };
constexpr Command kProcessAll = [](const Parts& p, std::int16_t command) { p.units.Process(true, command); };
constexpr Command kRepair = [](const Parts& p, std::int16_t all) { p.units.Repair(all == kAll); };
constexpr Command kTestPort = [](const Parts& p, std::int16_t index) { p.units.TestPort(index); };
constexpr Command kFindPort = [](const Parts& p, std::int16_t index) { p.units.FindPort(index); };
constexpr Command kSendDirect = [](const Parts& p, std::int16_t) { p.units.SendDirect(); };
constexpr Command kAskMode = [](const Parts& p, std::int16_t) { p.units.AskMode(); };
constexpr Command kConvert = [](const Parts& p, std::int16_t all) { p.conversion.ConvertAll(all == kAll); };
constexpr Command kConvertFiles = [](const Parts& p, std::int16_t) { p.conversion.ConvertSelected(); };
constexpr Command kConvertHex = [](const Parts& p, std::int16_t) { p.conversion.ConvertHex(); };
constexpr Command kSend = [](const Parts& p, std::int16_t all) { p.transfer.Send(all == kAll); };
constexpr Command kSendWebData = [](const Parts& p, std::int16_t) { p.transfer.SendWebData(); };
constexpr Command kFetch = [](const Parts& p, std::int16_t source) { p.transfer.Fetch(true, source); };
constexpr Command kBackUp = [](const Parts& p, std::int16_t) { p.transfer.BackUp(); };
constexpr Command kRemote = [](const Parts& p, std::int16_t command) { p.remote.RunCommand(command); };
constexpr Command kRemoteFolders = [](const Parts& p, std::int16_t) { p.remote.CreateFolders(); };
constexpr Command kGetCertificate = [](const Parts& p, std::int16_t) { p.remote.GetCertificate(); };
constexpr Command kUnitList = [](const Parts& p, std::int16_t command) { p.registry.RunOnUnits(command); };
constexpr Command kRelayList = [](const Parts& p, std::int16_t command) { p.registry.RunOnRelays(command); };
constexpr Command kClientList = [](const Parts& p, std::int16_t command) { p.registry.RunOnClients(command); };
constexpr Command kLocalFolders = [](const Parts& p, std::int16_t) { p.registry.CreateFolders(); };
constexpr Command kEditDataFile = [](const Parts& p, std::int16_t) { p.files.Run(&LocalFiles::EditDataFile); };
constexpr Command kDeleteFiles = [](const Parts& p, std::int16_t) { p.files.Run(&LocalFiles::DeleteFiles); };
constexpr Command kEditTrace = [](const Parts& p, std::int16_t) { p.files.Run(&LocalFiles::EditTrace); };
constexpr Command kGetFolder = [](const Parts& p, std::int16_t) { p.files.Run(&LocalFiles::GetFolder); };
constexpr Command kGetBackupFolder = [](const Parts& p, std::int16_t) { p.files.Run(&LocalFiles::GetBackupFolder); };
constexpr Command kGetFile = [](const Parts& p, std::int16_t index) { p.files.GetFile(index); };
constexpr Command kEditFile = [](const Parts& p, std::int16_t index) { p.files.EditFile(index); };
constexpr Command kHelpContents = [](const Parts& p, std::int16_t) { p.files.ShowHelp(&HelpFiles::contents); };
constexpr Command kHelpIndex = [](const Parts& p, std::int16_t) { p.files.ShowHelp(&HelpFiles::index); };
constexpr Command kAbout = [](const Parts& p, std::int16_t) { p.files.ShowAbout(); };
constexpr Command kCancel = [](const Parts& p, std::int16_t) { p.commands.Cancel(); };
constexpr Command kExit = [](const Parts& p, std::int16_t) { p.commands.Close(false); };

/// One menu entry: where it stands, what it says and what it starts or opens.
struct MenuRow {
  MenuGroup Form::*group;
  std::int32_t text_id;
  std::string_view caption;
  Command command;
  std::int16_t number;
  MenuGroup Form::*submenu = nullptr;
};

/// One button: what it says and what it starts.
struct ButtonRow {
  Button& button;
  std::string_view caption;
  Command command;
  std::int16_t number;
};

constexpr std::size_t kSpareEntry = 7;

constexpr std::array kMenus = {
    MenuRow{&Form::mnu_File, 1101, "&Backup", kBackUp, 0},
    MenuRow{&Form::mnu_File, 1102, "E&xit", kExit, 0},
    MenuRow{&Form::mnu_halvex, 1111, "&Download", nullptr, 0, &Form::mnu_Download},
    MenuRow{&Form::mnu_halvex, 1112, "&Send Files", nullptr, 0, &Form::mnu_ftpFile},
    MenuRow{&Form::mnu_halvex, 1113, "&Convert", nullptr, 0, &Form::mnu_Convert},
    MenuRow{&Form::mnu_halvex, 0, "-", nullptr, 0},
    MenuRow{&Form::mnu_halvex, 1115, "&Test", nullptr, 0, &Form::mnu_GetDate},
    MenuRow{&Form::mnu_halvex, 1116, "&Set Date", nullptr, 0, &Form::mnu_SetDate},
    MenuRow{&Form::mnu_halvex, 1117, "Set &Log Period", nullptr, 0, &Form::mnu_SetLogPeriod},
    MenuRow{&Form::mnu_halvex, 1118, "spare", nullptr, 0},
    MenuRow{&Form::mnu_halvex, 0, "-", nullptr, 0},
    MenuRow{&Form::mnu_halvex, 1120, "Set Mode", nullptr, 0, &Form::mnu_setMode},
    MenuRow{&Form::mnu_halvex, 1121, "Set Delays", nullptr, 0, &Form::mnu_SetDelays},
    MenuRow{&Form::mnu_Download, 1130, "&Current", kDownloadCurrent, 0},
    MenuRow{&Form::mnu_Download, 1131, "&Radio", kDownloadOnly, kFromRadio},
    MenuRow{&Form::mnu_Download, 1132, "&Hand unit", kDownloadOnly, kFromHandHeld},
    MenuRow{&Form::mnu_Download, 1133, "&Ftp", kFetch, kFromFtp},
    MenuRow{&Form::mnu_Download, 1134, "&Web Data", kFetch, kFromWebData},
    MenuRow{&Form::mnu_Download, 1135, "Repair &gaps", kRepair, kSelected},
    MenuRow{&Form::mnu_Download, 1136, "Repair &all gaps", kRepair, kAll},
    MenuRow{&Form::mnu_ftpFile, 1140, "&Current", kSend, kSelected},
    MenuRow{&Form::mnu_ftpFile, 1141, "&Ftp", kSend, kAll},
    MenuRow{&Form::mnu_ftpFile, 1142, "&Web Data", kSendWebData, 0},
    MenuRow{&Form::mnu_Convert, 1150, "&Current", kConvert, kSelected},
    MenuRow{&Form::mnu_Convert, 1151, "&All...", kConvert, kAll},
    MenuRow{&Form::mnu_Convert, 1152, "&Selected file", kConvertFiles, 0},
    MenuRow{&Form::mnu_GetDate, 1160, "&Current", kProcessSelected, kGetDate},
    MenuRow{&Form::mnu_GetDate, 1161, "&All", kProcessAll, kGetDate},
    MenuRow{&Form::mnu_SetDate, 1163, "&Current...", kProcessSelected, kSetDate},
    MenuRow{&Form::mnu_SetDate, 1164, "&All...", kProcessAll, kSetDate},
    MenuRow{&Form::mnu_SetLogPeriod, 1166, "&Current...", kProcessSelected, kSetLogPeriod},
    MenuRow{&Form::mnu_SetLogPeriod, 1167, "&All...", kProcessAll, kSetLogPeriod},
    MenuRow{&Form::mnu_setMode, 1169, "&Current...", kProcessSelected, kSetMode},
    MenuRow{&Form::mnu_setMode, 1170, "&All...", kProcessAll, kSetMode},
    MenuRow{&Form::mnu_SetDelays, 1172, "&Current...", kProcessSelected, kSetDelays},
    MenuRow{&Form::mnu_SetDelays, 1173, "&All...", kProcessAll, kSetDelays},
    MenuRow{&Form::mnu_Units, 1201, "&New", kUnitList, kNew},
    MenuRow{&Form::mnu_Units, 1202, "&Delete", kUnitList, kDelete},
    MenuRow{&Form::mnu_Units, 1203, "Move &Up", kUnitList, kMoveUp},
    MenuRow{&Form::mnu_Units, 1204, "Move &down", kUnitList, kMoveDown},
    MenuRow{&Form::mnu_Relays, 1207, "&New", kRelayList, kNew},
    MenuRow{&Form::mnu_Relays, 1208, "&Delete", kRelayList, kDelete},
    MenuRow{&Form::mnu_Relays, 1209, "Move &up", kRelayList, kMoveUp},
    MenuRow{&Form::mnu_Relays, 1210, "Move &down", kRelayList, kMoveDown},
    MenuRow{&Form::mnu_Clients, 1213, "&New", kClientList, kNew},
    MenuRow{&Form::mnu_Clients, 1214, "&Delete", kClientList, kDelete},
    MenuRow{&Form::mnu_Clients, 1215, "Move &Up", kClientList, kMoveUp},
    MenuRow{&Form::mnu_Clients, 1216, "Move &Down", kClientList, kMoveDown},
    MenuRow{&Form::mnu_Clients, 1217, "Create &local folders", kLocalFolders, 0},
    MenuRow{&Form::mnu_Clients, 1218, "Create &remote folders", kRemoteFolders, 0},
    MenuRow{&Form::mnu_ftp, 1220, "&New", kRemote, 0},
    MenuRow{&Form::mnu_ftp, 1221, "&Delete...", kRemote, 1},
    MenuRow{&Form::mnu_ftp, 1222, "D&irectory", kRemote, 2},
    MenuRow{&Form::mnu_ftp, 1223, "Di&sconnect", kRemote, 3},
    MenuRow{&Form::mnu_Help, 1225, "&Contents", kHelpContents, 0},
    MenuRow{&Form::mnu_Help, 1226, "&Index", kHelpIndex, 0},
    MenuRow{&Form::mnu_Help, 0, "-", nullptr, 0},
    MenuRow{&Form::mnu_Help, 1228, "&About", kAbout, 0},
};

std::vector<ButtonRow> SingleButtons(Form& av_Form) {
  return {
      {av_Form.Cmd_Cancel, "Cancel", kCancel, 0},
      {av_Form.Cmd_Close, "E&xit", kExit, 0},
      {av_Form.Cmd_DownloadAll[0], "&Download Handheld", kDownloadAll, kHandHeldUnits},
      {av_Form.Cmd_DownloadAll[1], "&Download", kDownloadAll, kRadioUnits},
      {av_Form.Cmd_Convert, "Convert", kConvertFiles, 0},
      {av_Form.Cmd_ConvertAll, "Convert", kConvert, kAll},
      {av_Form.Cmd_Hex, "Convert hex dump...", kConvertHex, 0},
      {av_Form.Cmd_EditDataFile, "Edit", kEditDataFile, 0},
      {av_Form.Cmd_DeleteFile, "Delete", kDeleteFiles, 0},
      {av_Form.Cmd_EditTrace, "Edit", kEditTrace, 0},
      {av_Form.Cmd_GetFolder, "...", kGetFolder, 0},
      {av_Form.Cmd_BackupFolder, "...", kGetBackupFolder, 0},
      {av_Form.Cmd_Direct, "Send", kSendDirect, 0},
      {av_Form.Cmd_Mode, "...", kAskMode, 0},
      {av_Form.Cmd_FTPCertificate, "...", kGetCertificate, 0},
      {av_Form.Cmd_FTP[0], "New folder", kRemote, 0},
      {av_Form.Cmd_FTP[1], "Delete", kRemote, 1},
      {av_Form.Cmd_FTP[2], "Files", kRemote, 2},
      {av_Form.Cmd_FTP[3], "Disconnect", kRemote, 3},
      {av_Form.Cmd_Clients[4], "Create local folders", kLocalFolders, 0},
      {av_Form.Cmd_Clients[5], "Create remote folders", kRemoteFolders, 0},
  };
}

void AddRepeatedButtons(Form& av_Form, std::vector<ButtonRow>& av_Rows) {
  for (std::int16_t index = 0; index <= 1; ++index) {
    av_Rows.push_back({av_Form.Cmd_TestBaseUnit[index], "Test Port", kTestPort, index});
    av_Rows.push_back({av_Form.Cmd_FindPort[index], "Find Port", kFindPort, index});
  }
  for (std::int16_t index = 0; index <= 3; ++index) {
    av_Rows.push_back({av_Form.Cmd_GetFile[index], "...", kGetFile, index});
    av_Rows.push_back({av_Form.Cmd_EditFile[index], "Edit", kEditFile, index});
  }
  for (std::int16_t command = kDownload; command <= kReadMemory; ++command) {
    const std::string_view name = CommandOf(command).name;
    av_Rows.push_back({av_Form.Cmd_Process[command], name, kProcessSelected, command});
    av_Rows.push_back({av_Form.Cmd_ProcessAll[command], name, kProcessAll, command});
  }
  static constexpr std::array<std::string_view, 4> kListCaptions = {"New", "Delete", "Move up", "Move down"};
  for (std::int16_t command = kNew; command <= kMoveDown; ++command) {
    const std::string_view caption = kListCaptions[static_cast<std::size_t>(command)];
    av_Rows.push_back({av_Form.Cmd_Units[command], caption, kUnitList, command});
    av_Rows.push_back({av_Form.Cmd_Relays[command], caption, kRelayList, command});
    av_Rows.push_back({av_Form.Cmd_Clients[command], caption, kClientList, command});
  }
}

}  // namespace

void CommandBindings::Bind() {
  BindMenus();
  BindButtons();
  p_.form.Lst_LocalFiles.on_open = [this] { kEditDataFile(p_, 0); };
  p_.form.Lst_RemoteFiles.on_open = [this] { p_.remote.OpenEntry(); };
}

void CommandBindings::BindMenus() {
  for (std::size_t first = 0; first < kMenus.size();) {
    std::size_t end = first;
    std::vector<MenuGroup::Entry> entries;
    for (; end < kMenus.size() && kMenus[end].group == kMenus[first].group; ++end) {
      const MenuRow& row = kMenus[end];
      const MenuGroup* submenu = row.submenu == nullptr ? nullptr : &(p_.form.*row.submenu);
      entries.push_back({.caption = std::string(row.caption), .text_id = row.text_id, .submenu = submenu});
    }
    MenuGroup& group = p_.form.*kMenus[first].group;
    if (&group == &p_.form.mnu_halvex) entries[kSpareEntry].visible = false;
    group.SetEntries(std::move(entries));
    group.on_click = [this, first](std::int64_t index) {
      const MenuRow& row = kMenus[first + static_cast<std::size_t>(index)];
      if (row.command != nullptr) row.command(p_, row.number);
    };
    first = end;
  }
}

void CommandBindings::BindButtons() {
  // What it brings back is known to the editor that deleted it.
  p_.form.Cmd_Undo.SetCaption("Undo");
  std::vector<ButtonRow> rows = SingleButtons(p_.form);
  AddRepeatedButtons(p_.form, rows);
  for (const ButtonRow& row : rows) {
    row.button.SetCaption(row.caption);
    row.button.on_click = [this, command = row.command, number = row.number] { command(p_, number); };
  }
}

}  // namespace corvane
