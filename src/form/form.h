// The main window's controls under their own names. Between load and save they are the settings.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <utility>

#include "form/control.h"
#include "form/suppress_events.h"

namespace corvane {

/// A group of like controls indexed from `kFirst` to `kLast`; each is named "<group>_<index>".
template <class T, int kFirst, int kLast>
class ControlArray {
 public:
  template <class... Args>
  ControlArray(ControlRegistry& registry, const std::string& name, Args... args)
      : ControlArray(std::make_integer_sequence<int, kLast - kFirst + 1>(), registry, name, args...) {}

  static constexpr int first() { return kFirst; }
  static constexpr int last() { return kLast; }
  T& operator[](int index) { return items_[static_cast<std::size_t>(index - kFirst)]; }
  const T& operator[](int index) const { return items_[static_cast<std::size_t>(index - kFirst)]; }
  auto begin() { return items_.begin(); }
  auto end() { return items_.end(); }

 private:
  template <int... kIndex, class... Args>
  ControlArray(std::integer_sequence<int, kIndex...>, ControlRegistry& registry, const std::string& name, Args... args)
      : items_{T(registry, name + "_" + std::to_string(kFirst + kIndex), args...)...} {}

  std::array<T, kLast - kFirst + 1> items_;
};

struct Form : ControlRegistry {
  Form();

  SuppressEvents Suppress;

  Window Frm_Main{*this, "Frm_Main"};
  Label Lbl_Status{*this, "Lbl_Status"};
  Label Lbl_PortProblem{*this, "Lbl_PortProblem"};
  Button Cmd_Undo{*this, "Cmd_Undo"};
  ProgressBar Bar_Unit{*this, "Bar_Unit"};
  ProgressBar Bar_Download{*this, "Bar_Download"};
  Label lbl_CountDown{*this, "lbl_CountDown"};
  ControlArray<Label, 0, 1> Lbl_Tries{*this, "Lbl_Tries"};
  Label Lbl_Try{*this, "Lbl_Try"};
  Label Lbl_Now{*this, "Lbl_Now"};
  Label Lbl_LastDownload{*this, "Lbl_LastDownload"};
  Label Lbl_NextDownload{*this, "Lbl_NextDownload"};
  Label Lbl_NextIsOff{*this, "Lbl_NextIsOff"};  ///< only shown and hidden, like `Lbl_NoAnswer`
  Button Cmd_Cancel{*this, "Cmd_Cancel"};
  Button Cmd_Close{*this, "Cmd_Close"};

  // Units, relays, clients
  List Lst_Units{*this, "Lst_Units"};
  TextField Txt_UnitName{*this, "Txt_UnitName"};
  TextField Txt_UnitID{*this, "Txt_UnitID"};
  CheckBox Chk_UnitActive{*this, "Chk_UnitActive"};
  Selector Cmb_Relay{*this, "Cmb_Relay"};
  Selector Cmb_Client{*this, "Cmb_Client"};
  Selector Cmb_GetFrom{*this, "Cmb_GetFrom"};
  Selector Cmb_SendTo{*this, "Cmb_SendTo"};
  ControlArray<TextField, 0, 1> Txt_Correction{*this, "Txt_Correction"};
  TextField Txt_Depths{*this, "Txt_Depths"};
  ControlArray<Button, 0, 3> Cmd_Units{*this, "Cmd_Units"};
  List Lst_Relays{*this, "Lst_Relays"};
  TextField Txt_RelayName{*this, "Txt_RelayName"};
  TextField Txt_RelayID{*this, "Txt_RelayID"};
  OptionGroup Opt_Password{*this, "Opt_Password", 3};
  ControlArray<Button, 0, 3> Cmd_Relays{*this, "Cmd_Relays"};
  List Lst_Clients{*this, "Lst_Clients"};
  TextField Txt_ClientName{*this, "Txt_ClientName"};
  Label Lbl_ClientID{*this, "Lbl_ClientID"};
  TextField Txt_ClientFolder{*this, "Txt_ClientFolder"};
  TextField Txt_OstrelUserID{*this, "Txt_OstrelUserID"};
  TextField Txt_OstrelPassword{*this, "Txt_OstrelPassword"};
  ControlArray<Button, 0, 5> Cmd_Clients{*this, "Cmd_Clients"};

  // Radio link
  ControlArray<Selector, 0, 1> Cmb_Port{*this, "Cmb_Port"};
  TextField Txt_Settings{*this, "Txt_Settings"};
  ControlArray<Button, 0, 1> Cmd_TestBaseUnit{*this, "Cmd_TestBaseUnit"};
  ControlArray<Button, 0, 1> Cmd_FindPort{*this, "Cmd_FindPort"};
  ControlArray<Label, 0, 1> Lbl_PortAnswer{*this, "Lbl_PortAnswer"};
  ControlArray<Label, 0, 1> Lbl_NoAnswer{*this, "Lbl_NoAnswer"};
  ControlArray<TextField, 0, 2> Txt_Timeout{*this, "Txt_Timeout"};
  TextField Txt_MaxRetries{*this, "Txt_MaxRetries"};
  TextField Txt_MaxOveruns{*this, "Txt_MaxOveruns"};
  CheckBox Chk_PauseOnSend{*this, "Chk_PauseOnSend"};
  CheckBox Chk_ShowReply{*this, "Chk_ShowReply"};
  Label Lbl_Send{*this, "Lbl_Send"};
  Label Lbl_Reply{*this, "Lbl_Reply"};
  Label Lbl_HeaderLine{*this, "Lbl_HeaderLine"};
  CheckBox Chk_Direct{*this, "Chk_Direct"};
  List Lst_Direct{*this, "Lst_Direct"};
  TextField Txt_Direct{*this, "Txt_Direct"};
  Button Cmd_Direct{*this, "Cmd_Direct"};
  TextField txt_Password{*this, "txt_Password"};
  Selector Cmb_LogPeriod{*this, "Cmb_LogPeriod", true};
  Label Lbl_Mode{*this, "Lbl_Mode"};
  Button Cmd_Mode{*this, "Cmd_Mode"};
  TextField Txt_Delays{*this, "Txt_Delays"};
  ControlArray<Button, 1, 7> Cmd_Process{*this, "Cmd_Process"};
  ControlArray<Button, 1, 7> Cmd_ProcessAll{*this, "Cmd_ProcessAll"};
  ControlArray<Button, 0, 1> Cmd_DownloadAll{*this, "Cmd_DownloadAll"};

  // Schedule and start-up
  CheckBox Chk_Automatic{*this, "Chk_Automatic"};
  CheckBox Chk_GoOn{*this, "Chk_GoOn"};
  std::string LogSize;  ///< megabytes at which a log goes over to another file, as text; a setting without a field
  TextField Txt_AutomaticInterval{*this, "Txt_AutomaticInterval"};
  OptionGroup Opt_HeartBeat{*this, "Opt_HeartBeat", 2};
  CheckBox Chk_RunAtStartup{*this, "Chk_RunAtStartup"};

  // Watching over the network
  CheckBox Chk_RepairGaps{*this, "Chk_RepairGaps"};
  TextField Txt_RepairLimit{*this, "Txt_RepairLimit"};
  TextField Txt_LateAfter{*this, "Txt_LateAfter"};
  TextField Txt_BatteryLimit{*this, "Txt_BatteryLimit"};
  TextField Txt_AlertCommand{*this, "Txt_AlertCommand"};
  TextField Txt_DigestAt{*this, "Txt_DigestAt"};
  TextField Txt_HistoryYears{*this, "Txt_HistoryYears"};
  TextField Txt_PageFolder{*this, "Txt_PageFolder"};
  CheckBox Chk_PageSend{*this, "Chk_PageSend"};
  CheckBox Chk_TrayIcon{*this, "Chk_TrayIcon"};

  // Data files and conversion
  TextField Txt_Folder{*this, "Txt_Folder"};
  Button Cmd_GetFolder{*this, "Cmd_GetFolder"};
  TextField Txt_Prefix{*this, "Txt_Prefix"};
  TextField Txt_RawFileExtension{*this, "Txt_RawFileExtension"};
  TextField Txt_CalibratedFileExtension{*this, "Txt_CalibratedFileExtension"};
  TextField Txt_DateFormat{*this, "Txt_DateFormat"};
  Label Lbl_DateExample{*this, "Lbl_DateExample"};
  ControlArray<Label, 0, 1> Lbl_FileExample{*this, "Lbl_FileExample"};
  Label Lbl_Path{*this, "Lbl_Path"};
  List Lst_LocalFiles{*this, "Lst_LocalFiles", true};
  OptionGroup Opt_WhichFile{*this, "Opt_WhichFile", 3};
  OptionGroup Opt_SortFile{*this, "Opt_SortFile", 3};
  OptionGroup Opt_Direction{*this, "Opt_Direction", 2};
  Button Cmd_EditDataFile{*this, "Cmd_EditDataFile"};
  Button Cmd_DeleteFile{*this, "Cmd_DeleteFile"};
  Button Cmd_Convert{*this, "Cmd_Convert"};
  Button Cmd_ConvertAll{*this, "Cmd_ConvertAll"};
  Button Cmd_Hex{*this, "Cmd_Hex"};
  ControlArray<TextField, 0, 3> Txt_File{*this, "Txt_File"};
  ControlArray<Button, 0, 3> Cmd_GetFile{*this, "Cmd_GetFile"};
  ControlArray<Button, 0, 3> Cmd_EditFile{*this, "Cmd_EditFile"};
  CheckBox Chk_UseLookup{*this, "Chk_UseLookup"};
  CheckBox Chk_Kelvin{*this, "Chk_Kelvin"};
  CheckBox Chk_ShowCorrectionFactors{*this, "Chk_ShowCorrectionFactors"};
  CheckBox Chk_Uncorrected{*this, "Chk_Uncorrected"};
  OptionGroup Opt_WhichReadings{*this, "Opt_WhichReadings", 2};
  TextField Txt_StartAt{*this, "Txt_StartAt"};
  TextField Txt_Interval{*this, "Txt_Interval"};
  OptionGroup Opt_Average{*this, "Opt_Average", 2};

  // Transfer and backup
  TextField Txt_FTPServer{*this, "Txt_FTPServer"};
  TextField Txt_FTPFolder{*this, "Txt_FTPFolder"};
  TextField Txt_FTPUserName{*this, "Txt_FTPUserName"};
  TextField Txt_FTPPassword{*this, "Txt_FTPPassword"};
  CheckBox Chk_Anonymous{*this, "Chk_Anonymous"};
  OptionGroup Opt_FTPSecurity{*this, "Opt_FTPSecurity", 2};
  TextField Txt_FTPCertificate{*this, "Txt_FTPCertificate"};
  Button Cmd_FTPCertificate{*this, "Cmd_FTPCertificate"};
  CheckBox Chk_ZIPFiles{*this, "Chk_ZIPFiles"};
  ControlArray<CheckBox, 0, 2> Chk_FTPTrace{*this, "Chk_FTPTrace"};
  OptionGroup Opt_WebFileType{*this, "Opt_WebFileType", 2};
  CheckBox Chk_ManualFTP{*this, "Chk_ManualFTP"};
  List Lst_RemoteFiles{*this, "Lst_RemoteFiles"};
  Label Lbl_ftpRemoteFolder{*this, "Lbl_ftpRemoteFolder"};
  ControlArray<Button, 0, 3> Cmd_FTP{*this, "Cmd_FTP"};
  Label Frame_OstrelWebData{*this, "Frame_OstrelWebData"};
  TextField Txt_OstrelHost{*this, "Txt_OstrelHost"};
  TextField Txt_OstrelPort{*this, "Txt_OstrelPort"};
  CheckBox Chk_PHPWebServer{*this, "Chk_PHPWebServer"};
  CheckBox Chk_Backup{*this, "Chk_Backup"};
  Label Lbl_BackupDestination{*this, "Lbl_BackupDestination"};
  Button Cmd_BackupFolder{*this, "Cmd_BackupFolder"};

  // Trace
  ControlArray<CheckBox, 0, 4> Chk_Trace{*this, "Chk_Trace"};
  ControlArray<CheckBox, 0, 2> chk_AutoTrace{*this, "chk_AutoTrace"};
  CheckBox Chk_ShowTrace{*this, "Chk_ShowTrace"};
  List Lst_Debug{*this, "Lst_Debug"};
  Button Cmd_EditTrace{*this, "Cmd_EditTrace"};

  // Menus
  MenuGroup mnu_File{*this, "mnu_File"};
  MenuGroup mnu_halvex{*this, "mnu_halvex"};
  MenuGroup mnu_Download{*this, "mnu_Download"};
  MenuGroup mnu_ftpFile{*this, "mnu_ftpFile"};
  MenuGroup mnu_Convert{*this, "mnu_Convert"};
  MenuGroup mnu_GetDate{*this, "mnu_GetDate"};
  MenuGroup mnu_SetDate{*this, "mnu_SetDate"};
  MenuGroup mnu_SetLogPeriod{*this, "mnu_SetLogPeriod"};
  MenuGroup mnu_setMode{*this, "mnu_setMode"};
  MenuGroup mnu_SetDelays{*this, "mnu_SetDelays"};
  MenuGroup mnu_Units{*this, "mnu_Units"};
  MenuGroup mnu_Relays{*this, "mnu_Relays"};
  MenuGroup mnu_Clients{*this, "mnu_Clients"};
  MenuGroup mnu_ftp{*this, "mnu_ftp"};
  MenuGroup mnu_Help{*this, "mnu_Help"};
};

}  // namespace corvane
