// Which menu entry, button, field and key starts which command.
#include <array>
#include <vector>

#include "app/commands.h"

namespace corvane {

/// One menu entry: where it stands, what it says and what it starts.
struct Commands::MenuRow {
  MenuGroup Form::*group;
  std::string_view caption;
  void (Commands::*command)(std::int16_t);
  std::int16_t argument;
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
      MenuRow{&Form::mnu_File, "&Backup", &Commands::FileMenu, 0},
      MenuRow{&Form::mnu_File, "E&xit", &Commands::FileMenu, 1},
      MenuRow{&Form::mnu_halvex, "&Download", nullptr, 0},
      MenuRow{&Form::mnu_halvex, "&Send Files", nullptr, 0},
      MenuRow{&Form::mnu_halvex, "&Convert", nullptr, 0},
      MenuRow{&Form::mnu_halvex, "-", nullptr, 0},
      MenuRow{&Form::mnu_halvex, "&Test", nullptr, 0},
      MenuRow{&Form::mnu_halvex, "&Set Date", nullptr, 0},
      MenuRow{&Form::mnu_halvex, "Set &Log Period", nullptr, 0},
      MenuRow{&Form::mnu_halvex, "spare", nullptr, 0},
      MenuRow{&Form::mnu_halvex, "-", nullptr, 0},
      MenuRow{&Form::mnu_halvex, "Set Mode", nullptr, 0},
      MenuRow{&Form::mnu_halvex, "Set Delays", nullptr, 0},
      MenuRow{&Form::mnu_Download, "&Current", &Commands::Download, 0},
      MenuRow{&Form::mnu_Download, "&Radio", &Commands::Download, 1},
      MenuRow{&Form::mnu_Download, "&Hand unit", &Commands::Download, 2},
      MenuRow{&Form::mnu_Download, "&Ftp", &Commands::Download, 3},
      MenuRow{&Form::mnu_Download, "&Web Data", &Commands::Download, 4},
      MenuRow{&Form::mnu_ftpFile, "&Current", &Commands::Send, 0},
      MenuRow{&Form::mnu_ftpFile, "&Ftp", &Commands::Send, 1},
      MenuRow{&Form::mnu_ftpFile, "&Web Data", &Commands::Send, 2},
      MenuRow{&Form::mnu_Convert, "&Current", &Commands::Convert, 0},
      MenuRow{&Form::mnu_Convert, "&All...", &Commands::Convert, 1},
      MenuRow{&Form::mnu_Convert, "&Selected file", &Commands::Convert, 2},
      MenuRow{&Form::mnu_GetDate, "&Current", &Commands::ProcessSelected, kGetDate},
      MenuRow{&Form::mnu_GetDate, "&All", &Commands::ProcessEveryUnit, kGetDate},
      MenuRow{&Form::mnu_SetDate, "&Current...", &Commands::ProcessSelected, kSetDate},
      MenuRow{&Form::mnu_SetDate, "&All...", &Commands::ProcessEveryUnit, kSetDate},
      MenuRow{&Form::mnu_SetLogPeriod, "&Current...", &Commands::ProcessSelected, kSetLogPeriod},
      MenuRow{&Form::mnu_SetLogPeriod, "&All...", &Commands::ProcessEveryUnit, kSetLogPeriod},
      MenuRow{&Form::mnu_setMode, "&Current...", &Commands::ProcessSelected, kSetMode},
      MenuRow{&Form::mnu_setMode, "&All...", &Commands::ProcessEveryUnit, kSetMode},
      MenuRow{&Form::mnu_SetDelays, "&Current...", &Commands::ProcessSelected, kSetDelays},
      MenuRow{&Form::mnu_SetDelays, "&All...", &Commands::ProcessEveryUnit, kSetDelays},
      MenuRow{&Form::mnu_Units, "&New", &Commands::UnitCommand, 0},
      MenuRow{&Form::mnu_Units, "&Delete", &Commands::UnitCommand, 1},
      MenuRow{&Form::mnu_Units, "Move &Up", &Commands::UnitCommand, 2},
      MenuRow{&Form::mnu_Units, "Move &down", &Commands::UnitCommand, 3},
      MenuRow{&Form::mnu_Relays, "&New", &Commands::RelayCommand, 0},
      MenuRow{&Form::mnu_Relays, "&Delete", &Commands::RelayCommand, 1},
      MenuRow{&Form::mnu_Relays, "Move &up", &Commands::RelayCommand, 2},
      MenuRow{&Form::mnu_Relays, "Move &down", &Commands::RelayCommand, 3},
      MenuRow{&Form::mnu_Clients, "&New", &Commands::ClientCommand, 0},
      MenuRow{&Form::mnu_Clients, "&Delete", &Commands::ClientCommand, 1},
      MenuRow{&Form::mnu_Clients, "Move &Up", &Commands::ClientCommand, 2},
      MenuRow{&Form::mnu_Clients, "Move &Down", &Commands::ClientCommand, 3},
      MenuRow{&Form::mnu_Clients, "Create &local folders", &Commands::ClientCommand, 4},
      MenuRow{&Form::mnu_Clients, "Create &remote folders", &Commands::ClientCommand, 5},
      MenuRow{&Form::mnu_Help, "&Contents", &Commands::Help, 0},
      MenuRow{&Form::mnu_Help, "&Index", &Commands::Help, 1},
      MenuRow{&Form::mnu_Help, "-", nullptr, 2},
      MenuRow{&Form::mnu_Help, "&About", &Commands::Help, 3},
  };
  for (std::size_t first = 0; first < kMenus.size();) {
    std::size_t end = first;
    std::vector<MenuGroup::Entry> entries;
    for (; end < kMenus.size() && kMenus[end].group == kMenus[first].group; ++end) {
      entries.push_back({std::string(kMenus[end].caption)});
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
      {form.Cmd_EditDataFile, "Edit", &Commands::FileCommand, 0},
      {form.Cmd_DeleteFile, "Delete", &Commands::FileCommand, 1},
      {form.Cmd_EditTrace, "Edit", &Commands::FileCommand, 2},
      {form.Cmd_GetFolder, "...", &Commands::FileCommand, 3},
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
  form.Lst_LocalFiles.on_open = [this] { FileCommand(0); };
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
    return !key_down;
  };
}

}  // namespace corvane
