#include "setup/setup_reader.h"

#include <algorithm>
#include <set>

#include "base/files.h"
#include "base/paths.h"
#include "base/text.h"
#include "setup/setup_records.h"

namespace corvane {
namespace {

constexpr int kLanguageFile = 3;

/// What a new settings file begins with: units that nobody has.
bool IsExample(const Registry& av_Registry) {
  constexpr std::int32_t kUnits = 5;
  if (av_Registry.Units.count() != kUnits || av_Registry.Relays.count() != 2 || av_Registry.Clients.count() != 2) {
    return false;
  }
  for (std::int32_t i = 1; i <= kUnits; ++i) {
    const Unit& unit = av_Registry.Units[i];
    const bool as_written = unit.Name == "Site " + std::to_string(i) && unit.ID == i && unit.RelayID == 0 &&
                            unit.ClientID == 0 && unit.GetFrom == kFromRadio && unit.Depths.empty();
    if (!as_written) return false;
  }
  return av_Registry.Relays[2].Name == "Relay 2" && av_Registry.Clients[1].Name == "Client 1" &&
         av_Registry.Clients[2].Name == "Client 2";
}

}  // namespace

SetupPlan SetupReader::PlanOf(bool ab_First) const {
  SetupPlan plan;
  const Form& form = p_.form;
  // Somebody may have tried a command before: what that has left is no network either.
  plan.first = ab_First || (IsExample(p_.registry) && form.Lbl_LastDownload.text().empty());
  plan.language_file = form.Txt_File[kLanguageFile].text();
  plan.port = form.Cmb_Port[0].SelectedItemData();
  plan.data_folder = form.Txt_Folder.text();
  plan.at_log_on = form.Chk_RunAtStartup.ticked();
  ReadTables(plan);
  ReadDelivery(plan);
  if (!plan.first) {
    plan.device = p_.devices.DeviceOf(plan.port);
    plan.automatic = form.Chk_Automatic.ticked();
    plan.interval = form.Txt_AutomaticInterval.text();
    plan.goes_on = form.Chk_GoOn.ticked();
    plan.log_size = form.LogSize;
    TakeRecords(plan, RecordsIn(p_.registry));
    return plan;
  }
  // The only device there is will be the one.
  const std::vector<DeviceChoice> devices = p_.ports.Devices();
  if (devices.size() == 1) ChooseDevice(plan, devices.front().path);
  return plan;
}

void SetupReader::ReadTables(SetupPlan& av_Plan) const {
  bool there = true;
  bool named_alike = true;
  const std::string folder(FolderOf(p_.names.SettingsFile(0)));
  for (std::size_t table = 0; table < kTableNames.size(); ++table) {
    const std::string file = p_.names.SettingsFile(static_cast<int>(table));
    there = there && ExamineFile(file).has_value();
    named_alike = named_alike && FolderOf(file) == folder && EqualsNoCase(FileNameOf(file), kTableNames[table]);
  }
  av_Plan.tables_are_set = there && !named_alike;
  if (there && named_alike) av_Plan.tables_folder = folder;
  if (there) return;
  const auto found = TablesIn(p_.app.Folder());
  const bool all = std::none_of(found.begin(), found.end(), [](const std::string& file) { return file.empty(); });
  if (all) av_Plan.tables_folder = p_.app.Folder();
}

void SetupReader::ReadDelivery(SetupPlan& av_Plan) const {
  const Form& form = p_.form;
  av_Plan.server = form.Txt_FTPServer.text();
  av_Plan.server_folder = form.Txt_FTPFolder.text();
  av_Plan.user = form.Txt_FTPUserName.text();
  av_Plan.password = form.Txt_FTPPassword.text();
  av_Plan.anonymous = form.Chk_Anonymous.ticked();
  // Where no server was named yet, nobody has chosen to send a password in the clear.
  av_Plan.encrypted = av_Plan.server.empty() || form.Opt_FTPSecurity.GetOptionIndex() != 0;
  av_Plan.certificate = form.Txt_FTPCertificate.text();
  av_Plan.sends_calibrated = p_.names.TransfersCalibrated();
  if (form.Chk_Backup.ticked()) {
    const std::string& folder = form.Lbl_BackupDestination.text();
    av_Plan.backup_folder = folder.empty() ? p_.app.Folder() : folder;
  }
}

void SetupReader::ChooseDevice(SetupPlan& av_Plan, const std::string& as_Device) const {
  av_Plan.device = Trim(as_Device);
  if (!av_Plan.device.empty()) av_Plan.port = NumberFor(av_Plan, av_Plan.device);
}

int SetupReader::NumberFor(const SetupPlan& av_Plan, const std::string& as_Device) const {
  const int present = p_.form.Cmb_Port[0].SelectedItemData();
  if (p_.devices.DeviceOf(present) == as_Device) return present;
  for (int number = 1; number <= PortDevices::kLastNumber; ++number) {
    if (p_.devices.DeviceOf(number) == as_Device) return number;
  }
  // The hand-held unit keeps its device.
  const bool is_shared = !av_Plan.first && p_.form.Cmb_Port[1].SelectedItemData() == present;
  if (present > 0 && !is_shared) return present;
  for (int number = 1; number <= PortDevices::kLastNumber; ++number) {
    if (number != present && p_.devices.AssignedTo(number).empty()) return number;
  }
  return std::max(present, 1);
}

std::array<std::string, 3> TablesIn(const std::string& as_Folder) {
  std::array<std::string, 3> found;
  std::vector<FolderEntry> entries;
  const auto wanted = [](std::string_view name) {
    return std::any_of(kTableNames.begin(), kTableNames.end(),
                       [name](std::string_view table) { return EqualsNoCase(name, table); });
  };
  if (!as_Folder.starts_with('/') || !ListFiles(as_Folder, wanted, entries).ok()) return found;
  for (std::size_t table = 0; table < kTableNames.size(); ++table) {
    for (const FolderEntry& entry : entries) {
      // One that is spelled as it should be comes first.
      if (!EqualsNoCase(entry.name, kTableNames[table]) || found[table].ends_with(kTableNames[table])) continue;
      found[table] = AddBackslash(as_Folder) + entry.name;
    }
  }
  return found;
}

std::vector<SetupLanguage> FindLanguages(const std::vector<std::string>& av_Folders) {
  constexpr std::pair<std::string_view, std::string_view> kKnown[] = {{"hveng.lng", "English"},
                                                                      {"hvdeu.lng", "Deutsch"}};
  std::vector<SetupLanguage> languages;
  std::set<std::string> taken;
  for (const std::string& folder : av_Folders) {
    std::vector<FolderEntry> entries;
    if (!ListFiles(
             folder, [](std::string_view name) { return EqualsNoCase(ExtensionOf(name), "lng"); }, entries)
             .ok()) {
      continue;
    }
    for (const FolderEntry& entry : entries) {
      if (!taken.insert(ToLower(entry.name)).second) continue;
      std::string name = entry.name;
      for (const auto& [file, language] : kKnown) {
        if (EqualsNoCase(entry.name, file)) name = language;
      }
      languages.push_back({AddBackslash(folder) + entry.name, name});
    }
  }
  std::sort(languages.begin(), languages.end(), [](const SetupLanguage& a, const SetupLanguage& b) {
    const bool a_first = a.name == "English";
    const bool b_first = b.name == "English";
    return a_first != b_first ? a_first : a.name < b.name;
  });
  return languages;
}

}  // namespace corvane
