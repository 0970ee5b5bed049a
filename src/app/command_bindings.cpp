// Which menu entry, button, field and key starts which command.
#include <array>
#include <vector>

#include "app/commands.h"

namespace corvane {

/// One menu entry: where it stands, what it says and what it starts or opens.
struct Commands::MenuRow {
  MenuGroup Form::*group;
  std::int32_t text_id;
  std::string_view caption;
  void (Commands::*command)(std::int16_t);
  std::int16_t argument;
  MenuGroup Form::*submenu = nullptr;
};

/// One button: what it says and what it starts.
struct Commands::ButtonRow {
  Button& button;
  std::string_view caption;
  void (Commands::*command)(std::int16_t);
  std::int16_t argument;
};

namespace {

constexpr int kSpaceBar = 32;
constexpr int kEscapeKey = 27;
constexpr int kF1Key = 112;
constexpr std::size_t kSpareEntry = 7;

}  // namespace

void Commands::Bind() {
  BindMenus();
  BindButtons();
  BindFields();
  BindKeys();
}

void Commands::BindMenus() {
  static const std::array kMenus = {
      MenuRow{&Form::mnu_File, 1101, "&Backup", &Commands::FileMenu, 0},
      MenuRow{&Form::mnu_File, 1102, "E&xit", &Commands::FileMenu, 1},
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
      MenuRow{&Form::mnu_Download, 1130, "&Current", &Commands::Download, 0},
      MenuRow{&Form::mnu_Download, 1131, "&Radio", &Commands::Download, 1},
      MenuRow{&Form::mnu_Download, 1132, "&Hand unit", &Commands::Download, 2},
      MenuRow{&Form::mnu_Download, 1133, "&Ftp", &Commands::Download, 3},
      MenuRow{&Form::mnu_Download, 1134, "&Web Data", &Commands::Download, 4},
      MenuRow{&Form::mnu_ftpFile, 1140, "&Current", &Commands::SendMenu, 0},
      MenuRow{&Form::mnu_ftpFile, 1141, "&Ftp", &Commands::SendMenu, 1},
      MenuRow{&Form::mnu_ftpFile, 1142, "&Web Data", &Commands::SendMenu, 2},
      MenuRow{&Form::mnu_Convert, 1150, "&Current", &Commands::Convert, 0},
      MenuRow{&Form::mnu_Convert, 1151, "&All...", &Commands::Convert, 1},
      MenuRow{&Form::mnu_Convert, 1152, "&Selected file", &Commands::Convert, 2},
      MenuRow{&Form::mnu_GetDate, 1160, "&Current", &Commands::ProcessSelected, kGetDate},
      MenuRow{&Form::mnu_GetDate, 1161, "&All", &Commands::ProcessEveryUnit, kGetDate},
      MenuRow{&Form::mnu_SetDate, 1163, "&Current...", &Commands::ProcessSelected, kSetDate},
      MenuRow{&Form::mnu_SetDate, 1164, "&All...", &Commands::ProcessEveryUnit, kSetDate},
      MenuRow{&Form::mnu_SetLogPeriod, 1166, "&Current...", &Commands::ProcessSelected, kSetLogPeriod},
      MenuRow{&Form::mnu_SetLogPeriod, 1167, "&All...", &Commands::ProcessEveryUnit, kSetLogPeriod},
      MenuRow{&Form::mnu_setMode, 1169, "&Current...", &Commands::ProcessSelected, kSetMode},
      MenuRow{&Form::mnu_setMode, 1170, "&All...", &Commands::ProcessEveryUnit, kSetMode},
      MenuRow{&Form::mnu_SetDelays, 1172, "&Current...", &Commands::ProcessSelected, kSetDelays},
      MenuRow{&Form::mnu_SetDelays, 1173, "&All...", &Commands::ProcessEveryUnit, kSetDelays},
      MenuRow{&Form::mnu_Units, 1201, "&New", &Commands::UnitCommand, 0},
      MenuRow{&Form::mnu_Units, 1202, "&Delete", &Commands::UnitCommand, 1},
      MenuRow{&Form::mnu_Units, 1203, "Move &Up", &Commands::UnitCommand, 2},
      MenuRow{&Form::mnu_Units, 1204, "Move &down", &Commands::UnitCommand, 3},
      MenuRow{&Form::mnu_Relays, 1207, "&New", &Commands::RelayCommand, 0},
      MenuRow{&Form::mnu_Relays, 1208, "&Delete", &Commands::RelayCommand, 1},
      MenuRow{&Form::mnu_Relays, 1209, "Move &up", &Commands::RelayCommand, 2},
      MenuRow{&Form::mnu_Relays, 1210, "Move &down", &Commands::RelayCommand, 3},
      MenuRow{&Form::mnu_Clients, 1213, "&New", &Commands::ClientCommand, 0},
      MenuRow{&Form::mnu_Clients, 1214, "&Delete", &Commands::ClientCommand, 1},
      MenuRow{&Form::mnu_Clients, 1215, "Move &Up", &Commands::ClientCommand, 2},
      MenuRow{&Form::mnu_Clients, 1216, "Move &Down", &Commands::ClientCommand, 3},
      MenuRow{&Form::mnu_Clients, 1217, "Create &local folders", &Commands::ClientCommand, 4},
      MenuRow{&Form::mnu_Clients, 1218, "Create &remote folders", &Commands::ClientCommand, 5},
      MenuRow{&Form::mnu_ftp, 1220, "&New", &Commands::FtpCommand, 0},
      MenuRow{&Form::mnu_ftp, 1221, "&Delete...", &Commands::FtpCommand, 1},
      MenuRow{&Form::mnu_ftp, 1222, "D&irectory", &Commands::FtpCommand, 2},
      MenuRow{&Form::mnu_ftp, 1223, "Di&sconnect", &Commands::FtpCommand, 3},
      MenuRow{&Form::mnu_Help, 1225, "&Contents", &Commands::Help, 0},
      MenuRow{&Form::mnu_Help, 1226, "&Index", &Commands::Help, 1},
      MenuRow{&Form::mnu_Help, 0, "-", nullptr, 2},
      MenuRow{&Form::mnu_Help, 1228, "&About", &Commands::Help, 3},
  };
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
      if (row.command != nullptr) (this->*row.command)(row.argument);
    };
    first = end;
  }
}

void Commands::BindButtons() {
  Form& form = p_.form;
  std::vector<ButtonRow> rows = {
      {form.Cmd_Cancel, "Cancel", &Commands::CancelButton, 0},
      {form.Cmd_Close, "E&xit", &Commands::FileMenu, 1},
      {form.Cmd_DownloadAll[0], "&Download Handheld", &Commands::DownloadAllButton, kHandHeldUnits},
      {form.Cmd_DownloadAll[1], "&Download", &Commands::DownloadAllButton, kRadioUnits},
      {form.Cmd_Convert, "Convert", &Commands::Convert, 2},
      {form.Cmd_ConvertAll, "Convert", &Commands::Convert, 1},
      {form.Cmd_Hex, "Convert hex dump...", &Commands::ConvertHex, 0},
      {form.Cmd_EditDataFile, "Edit", &Commands::FileCommand, 0},
      {form.Cmd_DeleteFile, "Delete", &Commands::FileCommand, 1},
      {form.Cmd_EditTrace, "Edit", &Commands::FileCommand, 2},
      {form.Cmd_GetFolder, "...", &Commands::FileCommand, 3},
      {form.Cmd_BackupFolder, "...", &Commands::FileCommand, 4},
      {form.Cmd_Direct, "Send", &Commands::SendDirect, 0},
      {form.Cmd_Mode, "...", &Commands::AskMode, 0},
      {form.Cmd_FTPCertificate, "...", &Commands::GetCertificate, 0},
      {form.Cmd_FTP[0], "New folder", &Commands::FtpCommand, 0},
      {form.Cmd_FTP[1], "Delete", &Commands::FtpCommand, 1},
      {form.Cmd_FTP[2], "Files", &Commands::FtpCommand, 2},
      {form.Cmd_FTP[3], "Disconnect", &Commands::FtpCommand, 3},
  };
  for (std::int16_t index = 0; index <= 1; ++index) {
    rows.push_back({form.Cmd_TestBaseUnit[index], "Test Port", &Commands::TestPortButton, index});
    rows.push_back({form.Cmd_FindPort[index], "Find Port", &Commands::FindPortButton, index});
  }
  for (std::int16_t index = 0; index <= 3; ++index) {
    rows.push_back({form.Cmd_GetFile[index], "...", &Commands::GetFile, index});
    rows.push_back({form.Cmd_EditFile[index], "Edit", &Commands::EditFile, index});
  }
  for (std::int16_t command = kDownload; command <= kReadMemory; ++command) {
    const std::string_view name = CommandOf(command).name;
    rows.push_back({form.Cmd_Process[command], name, &Commands::ProcessSelected, command});
    rows.push_back({form.Cmd_ProcessAll[command], name, &Commands::ProcessEveryUnit, command});
  }
  static constexpr std::array<std::string_view, 6> kListCaptions = {
      "New", "Delete", "Move up", "Move down", "Create local folders", "Create remote folders"};
  for (std::int16_t index = 0; index < static_cast<std::int16_t>(kListCaptions.size()); ++index) {
    const std::string_view caption = kListCaptions[static_cast<std::size_t>(index)];
    rows.push_back({form.Cmd_Clients[index], caption, &Commands::ClientCommand, index});
    if (index > kMoveDown) continue;
    rows.push_back({form.Cmd_Units[index], caption, &Commands::UnitCommand, index});
    rows.push_back({form.Cmd_Relays[index], caption, &Commands::RelayCommand, index});
  }
  for (const ButtonRow& row : rows) {
    row.button.SetCaption(row.caption);
    row.button.on_click = [this, command = row.command, argument = row.argument] { (this->*command)(argument); };
  }
}

void Commands::BindFields() {
  Form& form = p_.form;
  for (TextField* field : {&form.Txt_Prefix, &form.Txt_RawFileExtension, &form.Txt_CalibratedFileExtension,
                           &form.Txt_DateFormat, &form.Txt_Folder}) {
    field->on_change = [this] { p_.files.UpdateFileExamples(); };
  }
  for (OptionGroup* group : {&form.Opt_WhichFile, &form.Opt_SortFile, &form.Opt_Direction}) {
    group->on_change = [this] {
      if (!p_.form.Suppress.set()) p_.files.RefreshFileListBox();
    };
  }
  form.Chk_Direct.on_change = [this] { p_.states.UpdateDirect(); };
  form.Lst_LocalFiles.on_open = [this] { FileCommand(0); };
  form.Lst_RemoteFiles.on_open = [this] { OpenRemoteEntry(); };
  form.Chk_ShowCorrectionFactors.on_change = [this] {
    for (TextField& field : p_.form.Txt_Correction) field.SetVisible(p_.form.Chk_ShowCorrectionFactors.ticked());
  };
  form.Chk_ShowCorrectionFactors.on_change();
  form.Chk_RunAtStartup.on_change = [this] {
    if (!p_.form.Suppress.set()) p_.run_at_startup.SetRunAtStartup(p_.form.Chk_RunAtStartup.ticked(), "/M");
  };
  form.Opt_HeartBeat.on_change = [this] {
    if (!p_.form.Suppress.set()) p_.schedule.StartHeartbeat();
  };
  form.Frm_Main.on_change = [this] {
    if (!p_.form.Frm_Main.minimised()) p_.form.Frm_Main.SetTitle(kProductName);
  };
  form.Txt_AutomaticInterval.on_leave = [this] { p_.schedule.CalculateNextDownload(); };
  form.Txt_MaxRetries.on_leave = [this] { p_.schedule.LimitMaxRetries(); };
}

void Commands::BindKeys() {
  p_.form.Cmd_Cancel.on_key = [this](int code, bool key_down) {
    p_.trace.LogWrite(std::string(key_down ? "cmd_Cancel_KeyDown" : "Cmd_Cancel_KeyPress") +
                      " KeyCode: " + std::to_string(code) + " DoingSomething: " + (p_.slot.Taken() ? "True" : "False"));
    if (!p_.form.Cmd_Cancel.enabled() || code != kSpaceBar) return false;
    p_.trace.LogWrite("space, so set ai_KeyAscii = 0");
    return true;
  };
  p_.form.Frm_Main.on_key = [this](int code, bool key_down) {
    p_.trace.LogWrite((key_down ? "Form_KeyDown KeyCode: " : "Form_KeyPress KeyAscii set to zero: ") +
                      std::to_string(code));
    // What these keys start may wait, which a key event must not.
    if (key_down && code == kEscapeKey) p_.loop.Post([this] { p_.form.Cmd_Cancel.Click(); });
    if (key_down && code == kF1Key) p_.loop.Post([this] { p_.form.mnu_Help.Click(0); });
    return !key_down || code == kEscapeKey || code == kF1Key;
  };
}

}  // namespace corvane
