#include "state/command_states.h"

#include <initializer_list>

namespace corvane {
namespace {

constexpr int kFilesCommand = 2;

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
  for (Button* button : {&form_.Cmd_Hex, &form_.Cmd_BackupFolder, &form_.Cmd_Mode, &form_.Cmd_Undo})
    button->SetEnabled(ab_Enabled);
  EnableEditors(ab_Enabled);
  form_.Lst_Units.SetEnabled(ab_Enabled);
  form_.Lst_Relays.SetEnabled(ab_Enabled);
  for (MenuGroup* menu : {&form_.mnu_Download, &form_.mnu_ftpFile, &form_.mnu_Convert, &form_.mnu_GetDate,
                          &form_.mnu_SetDate, &form_.mnu_SetLogPeriod, &form_.mnu_setMode, &form_.mnu_SetDelays}) {
    menu->SetEnabled(ab_Enabled);
  }
}

// A round goes through the units in the editor, and its files are named and treated by these fields: what is typed
// meanwhile would go to whichever unit stands there.
void CommandStates::EnableEditors(bool ab_Enabled) {
  for (Control* field : std::initializer_list<Control*>{&form_.Txt_UnitName,
                                                        &form_.Txt_UnitID,
                                                        &form_.Chk_UnitActive,
                                                        &form_.Cmb_Relay,
                                                        &form_.Cmb_Client,
                                                        &form_.Cmb_GetFrom,
                                                        &form_.Cmb_SendTo,
                                                        &form_.Txt_Correction[0],
                                                        &form_.Txt_Correction[1],
                                                        &form_.Txt_Depths,
                                                        &form_.Txt_RelayName,
                                                        &form_.Txt_RelayID,
                                                        &form_.Opt_Password,
                                                        &form_.Txt_ClientName,
                                                        &form_.Txt_ClientFolder,
                                                        &form_.Txt_Folder,
                                                        &form_.Txt_Prefix,
                                                        &form_.Txt_RawFileExtension,
                                                        &form_.Txt_CalibratedFileExtension,
                                                        &form_.Opt_WebFileType,
                                                        &form_.Chk_ZIPFiles,
                                                        &form_.Chk_GoOn,
                                                        &form_.Chk_RepairGaps,
                                                        &form_.Txt_RepairLimit}) {
    field->SetEnabled(ab_Enabled);
  }
}

// What works on the remote folder that is shown needs its server; "Files" makes the connection.
void CommandStates::UpdateTransfer() {
  const bool idle = Idle();
  form_.mnu_File.SetEntryEnabled(0, idle);
  form_.mnu_ftp.SetEnabled(idle);
  for (int index = 0; index <= form_.Cmd_FTP.last(); ++index) {
    const bool enabled = idle && (connected_ || index == kFilesCommand);
    form_.Cmd_FTP[index].SetEnabled(enabled);
    form_.mnu_ftp.SetEntryEnabled(index, enabled);
  }
  form_.Lst_RemoteFiles.SetEnabled(idle);
  form_.Cmd_FTPCertificate.SetEnabled(idle);
}

void CommandStates::SetConnected(bool ab_Connected) {
  connected_ = ab_Connected;
  UpdateTransfer();
}

void CommandStates::SetListening(bool ab_Listening) {
  listening_ = ab_Listening;
  UpdateDirect();
}

void CommandStates::UpdateDirect() {
  const bool enabled = form_.Chk_Direct.ticked() && (Idle() || listening_);
  form_.Txt_Direct.SetEnabled(enabled);
  form_.Cmd_Direct.SetEnabled(enabled);
}

void CommandStates::UpdateListCommands() {
  UpdateOneList(Idle(), form_.Lst_Units, form_.Cmd_Units, form_.mnu_Units);
  UpdateOneList(Idle(), form_.Lst_Relays, form_.Cmd_Relays, form_.mnu_Relays);
  UpdateOneList(Idle(), form_.Lst_Clients, form_.Cmd_Clients, form_.mnu_Clients);
}

void CommandStates::UpdateCommandStates() {
  UpdateListCommands();
  UpdateTransfer();
  UpdateDirect();
}

}  // namespace corvane
