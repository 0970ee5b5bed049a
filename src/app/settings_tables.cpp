#include "app/settings_tables.h"

#include <cstdint>
#include <limits>

#include "base/numbers.h"
#include "base/text.h"
#include "history/network_settings.h"

namespace corvane {
namespace {

std::string Zero(std::int32_t /*index*/) {
  return "0";
}
std::string One(std::int32_t /*index*/) {
  return "1";
}
std::string Nothing(std::int32_t /*index*/) {
  return {};
}
std::string Index(std::int32_t index) {
  return std::to_string(index);
}

std::string TextOf(const TextField& field) {
  return field.text();
}
std::string TextOf(const Label& label) {
  return label.text();
}
std::string TextOf(const CheckBox& box) {
  return box.ticked() ? "1" : "0";
}
std::string TextOf(const OptionGroup& group) {
  return std::to_string(group.GetOptionIndex());
}
std::string TextOf(const Selector& selector) {
  return selector.editable() ? selector.shown_text() : std::to_string(selector.SelectedItemData());
}
std::string TextOf(const std::string& text) {
  return text;
}

/// A number of the settings of the network; what is no such number takes its default.
Setting NumberOf(std::string_view as_Key, TextField& av_Field, const NumberRule& av_Rule) {
  return {as_Key, &av_Field, ShortestText(av_Rule.fallback), Setting::Meaning::Number, &av_Rule};
}

}  // namespace

std::string ValueOf(const Setting& av_Setting) {
  return std::visit([](const auto* control) { return TextOf(*control); }, av_Setting.control);
}

KeptSettings SettingsToKeep(const AppInfo& av_App) {
  Form form;
  KeptSettings kept;
  kept.is_password = IsPassword;
  for (const auto& settings : {FileListSettings(form, av_App), OtherSettings(form, av_App)}) {
    for (const Setting& setting : settings) {
      if (setting.meaning == Setting::Meaning::Path) kept.paths.push_back({std::string(setting.key), setting.fallback});
    }
  }
  return kept;
}

bool IsPassword(std::string_view as_Section, std::string_view as_Key) {
  constexpr std::string_view kPassword = "Password";
  if (EqualsNoCase(as_Section, "General")) {
    return EqualsNoCase(as_Key, kPassword) || EqualsNoCase(as_Key, "FTPPassword");
  }
  return EqualsNoCase(as_Section, "Clients") && StartsWithNoCase(as_Key, kPassword) &&
         ParseInteger(as_Key.substr(kPassword.size()), 1, INT32_MAX).has_value();
}

std::vector<Setting> FileListSettings(Form& av_Form, const AppInfo& av_App) {
  return {
      {"Folder", &av_Form.Txt_Folder, av_App.Folder(), Setting::Meaning::Path},
      {"WhichFile", &av_Form.Opt_WhichFile, "1"},
      {"SortFile", &av_Form.Opt_SortFile, "0"},
      {"SortDirection", &av_Form.Opt_Direction, "0"},
  };
}

std::vector<Setting> OtherSettings(Form& av_Form, const AppInfo& av_App) {
  return {
      {"Port", &av_Form.Cmb_Port[0], "1"},
      // Intended: existing files spell this key "PortHandheld" as well; keys match without regard to letter case.
      {"PortHandHeld", &av_Form.Cmb_Port[1], "1"},
      {"Settings", &av_Form.Txt_Settings, "9600,N,8,1"},
      {"ShowReply", &av_Form.Chk_ShowReply, "1"},
      {"MoistureLookupFile", &av_Form.Txt_File[0], av_App.AppPath("moisture.lkp"), Setting::Meaning::Path},
      // Intended: existing settings files keep the salinity table under this key.
      {"TemperatureLookupFile", &av_Form.Txt_File[1], av_App.AppPath("salinity.lkp"), Setting::Meaning::Path},
      {"SalinityCorrection", &av_Form.Txt_File[2], av_App.AppPath("salcorr.lkp"), Setting::Meaning::Path},
      {"UseLookup", &av_Form.Chk_UseLookup, "1"},
      {"Kelvin", &av_Form.Chk_Kelvin, "1"},
      {"ShowCorrectionFactors", &av_Form.Chk_ShowCorrectionFactors, "0"},
      {"Language", &av_Form.Txt_File[3], av_App.AppPath("hveng.lng"), Setting::Meaning::Path},
      {"Prefix", &av_Form.Txt_Prefix, ""},
      {"RawFileExtension", &av_Form.Txt_RawFileExtension, "epd"},
      {"CalibratedFileExtension", &av_Form.Txt_CalibratedFileExtension, "txt"},
      {"DateFormat", &av_Form.Txt_DateFormat, "d mmm yyyy HH:MM"},
      {"Password", &av_Form.txt_Password, ""},
      {"WhichReadings", &av_Form.Opt_WhichReadings, "0"},
      {"StartAt", &av_Form.Txt_StartAt, "06:00"},
      {"Interval", &av_Form.Txt_Interval, "01:00"},
      {"Average", &av_Form.Opt_Average, "0"},
      {"Timeout", &av_Form.Txt_Timeout[0], "45", Setting::Meaning::Number},
      {"DataTimeout", &av_Form.Txt_Timeout[1], "10", Setting::Meaning::Number},
      {"UnitWait", &av_Form.Txt_Timeout[2], "1", Setting::Meaning::Number},
      {"MaxRetries", &av_Form.Txt_MaxRetries, "10", Setting::Meaning::Number},
      {"MaxOveruns", &av_Form.Txt_MaxOveruns, "10", Setting::Meaning::Number},
      {"Uncorrected", &av_Form.Chk_Uncorrected, "1"},
      {"ShowTrace", &av_Form.Chk_ShowTrace, "0"},
      {"LogPeriod", &av_Form.Cmb_LogPeriod, "03:00"},
      {"LastDownload", &av_Form.Lbl_LastDownload, ""},
      {"NextDownload", &av_Form.Lbl_NextDownload, ""},
      {"Automatic", &av_Form.Chk_Automatic, "0"},
      {"AutomaticInterval", &av_Form.Txt_AutomaticInterval, "03:00"},
      {"HeartBeat", &av_Form.Opt_HeartBeat, "0"},
      {"FTPServer", &av_Form.Txt_FTPServer, ""},
      {"FTPFolder", &av_Form.Txt_FTPFolder, ""},
      {"FTPUserName", &av_Form.Txt_FTPUserName, ""},
      {"FTPPassword", &av_Form.Txt_FTPPassword, ""},
      {"ZIPFiles", &av_Form.Chk_ZIPFiles, "0"},
      {"Anonymous", &av_Form.Chk_Anonymous, "0"},
      {"FTPSecurity", &av_Form.Opt_FTPSecurity, "0", Setting::Meaning::Security},
      {"FTPCertificate", &av_Form.Txt_FTPCertificate, "", Setting::Meaning::Path},
      {"FtpLogFilesSent", &av_Form.Chk_FTPTrace[0], "0"},
      {"ManualFTP", &av_Form.Chk_ManualFTP, "0"},
      {"WebFileType", &av_Form.Opt_WebFileType, "0"},
      // Intended: the web-data fields are hidden and start from their built-in values; their keys are only written.
      {"OstrelHost", &av_Form.Txt_OstrelHost, "", Setting::Meaning::SavedOnly},
      {"OstrelPort", &av_Form.Txt_OstrelPort, "", Setting::Meaning::SavedOnly},
      {"PHPWebServer", &av_Form.Chk_PHPWebServer, "", Setting::Meaning::SavedOnly},
      {"Backup", &av_Form.Chk_Backup, "0"},
      {"BackupDestination", &av_Form.Lbl_BackupDestination, "", Setting::Meaning::Path},
      {"GoOnPastFailures", &av_Form.Chk_GoOn, "0"},
      {"RepairGaps", &av_Form.Chk_RepairGaps, "0"},
      NumberOf("RepairLimit", av_Form.Txt_RepairLimit, kRepairLimitRule),
      NumberOf("LateAfter", av_Form.Txt_LateAfter, kLateAfterRule),
      NumberOf("BatteryLimit", av_Form.Txt_BatteryLimit, kBatteryLimitRule),
      {"AlertCommand", &av_Form.Txt_AlertCommand, ""},
      {"DigestAt", &av_Form.Txt_DigestAt, "", Setting::Meaning::TimeIfAny},
      NumberOf("HistoryYears", av_Form.Txt_HistoryYears, kHistoryYearsRule),
      {"PageFolder", &av_Form.Txt_PageFolder, "", Setting::Meaning::Path},
      {"PageSend", &av_Form.Chk_PageSend, "0"},
      {"TrayIcon", &av_Form.Chk_TrayIcon, "0"},
      {"LogSize", &av_Form.LogSize, "0", Setting::Meaning::Number},
  };
}

const RecordSection<Unit>& UnitSection() {
  static const RecordSection<Unit> section = {
      "Units",
      "NumUnits",
      "5",
      std::numeric_limits<std::int16_t>::min(),
      {
          {"Name", &Unit::Name, [](std::int32_t index) { return "Site " + Index(index); }},
          {"ID", &Unit::ID, Index},
          {"Active", &Unit::Active, One},
          {"RelayID", &Unit::RelayID, Zero},
          {"ftpFile", &Unit::ftpFile, Zero},
          {"ClientID", &Unit::ClientID, Zero},
          {"GetFrom", &Unit::GetFrom, Zero},
          {"MoistureCorrection", &Unit::MoistureCorrection, Zero},
          {"SalinityCorrection", &Unit::SalinityCorrection, Zero},
          {"Depths", &Unit::Depths, Nothing, true},
      }};
  return section;
}

const RecordSection<Relay>& RelaySection() {
  static const RecordSection<Relay> section = {
      "Relays",
      "NumRelays",
      "2",
      1,
      {
          {"Name", &Relay::Name, [](std::int32_t index) { return "Relay " + Index(index); }},
          {"ID", &Relay::ID, [](std::int32_t index) { return Index(index - 1); }},
          {"PasswordStyle", &Relay::PasswordStyle, Zero},
      }};
  return section;
}

const RecordSection<Client>& ClientSection() {
  static const RecordSection<Client> section = {
      "Clients",
      "NumClients",
      "2",
      1,
      {
          {"Name", &Client::Name, [](std::int32_t index) { return "Client " + Index(index); }},
          {"ID", &Client::ID, Index},
          {"Folder", &Client::Folder, [](std::int32_t index) { return "F" + Index(index); }},
          {"Password", &Client::Password, Nothing},
          {"UserID", &Client::UserID, Nothing},
      }};
  return section;
}

}  // namespace corvane
