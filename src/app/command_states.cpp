#include "app/command_states.h"

namespace corvane {
namespace {

/// New, Delete, Move up and Move down of one list; the menu follows its buttons.
template <class Buttons>
void UpdateOneList(bool idle, const List& list, Buttons& buttons, MenuGroup& menu) {
  const std::int64_t current = list.current();
  const bool selected = idle && current >= 0;
  buttons[0].SetEnabled(idle);
  buttons[1].SetEnabled(selected);
  buttons[2].SetEnabled(selected && current > 0);
  buttons[3].SetEnabled(selected && current < list.count() - 1);
  for (int index = Buttons::first() + 4; index <= Buttons::last(); ++index) buttons[index].SetEnabled(idle);
  menu.SetEnabled(idle);
  for (int index = Buttons::first(); index <= Buttons::last(); ++index) {
    menu.SetEntryEnabled(index, buttons[index].enabled());
  }
}

}  // namespace

void CommandStates::SetIdle(bool ab_Enabled) {
  form_.Cmd_Close.SetEnabled(ab_Enabled);
  for (Button& button : form_.Cmd_Process) button.SetEnabled(ab_Enabled);
  for (Button& button : form_.Cmd_ProcessAll) button.SetEnabled(ab_Enabled);
  for (Button& button : form_.Cmd_DownloadAll) button.SetEnabled(ab_Enabled);
  for (Button& button : form_.Cmd_GetFile) button.SetEnabled(ab_Enabled);
  for (Button& button : form_.Cmd_TestBaseUnit) button.SetEnabled(ab_Enabled);
  for (Button& button : form_.Cmd_FindPort) button.SetEnabled(ab_Enabled);
  for (Button* button : {&form_.Cmd_Convert, &form_.Cmd_ConvertAll, &form_.Cmd_EditTrace, &form_.Cmd_EditDataFile,
                         &form_.Cmd_DeleteFile, &form_.Cmd_GetFolder}) {
    button->SetEnabled(ab_Enabled);
  }
  form_.Lst_Units.SetEnabled(ab_Enabled);
  form_.Lst_Relays.SetEnabled(ab_Enabled);
  for (MenuGroup* menu : {&form_.mnu_Download, &form_.mnu_ftpFile, &form_.mnu_Convert, &form_.mnu_GetDate,
                          &form_.mnu_SetDate, &form_.mnu_SetLogPeriod, &form_.mnu_setMode, &form_.mnu_SetDelays}) {
    menu->SetEnabled(ab_Enabled);
  }
}

void CommandStates::UpdateListCommands() {
  UpdateOneList(Idle(), form_.Lst_Units, form_.Cmd_Units, form_.mnu_Units);
  UpdateOneList(Idle(), form_.Lst_Relays, form_.Cmd_Relays, form_.mnu_Relays);
  UpdateOneList(Idle(), form_.Lst_Clients, form_.Cmd_Clients, form_.mnu_Clients);
}

void CommandStates::UpdateCommandStates() {
  UpdateListCommands();
}

}  // namespace corvane
