#include "setup_command.h"

#include <cstdlib>
#include <set>
#include <utility>

#include "base/numbers.h"
#include "base/paths.h"
#include "base/text.h"
#include "desktop/posix_shell.h"
#include "full_path.h"
#include "link/port_choices.h"
#include "link_commands.h"
#include "setup/setup_reader.h"
#include "setup/value_words.h"
#include "setup_stations.h"
#include "setup_talk.h"
#include "state/settings_file.h"
#include "text_table.h"

namespace corvane::console {
namespace {

/// The questions of a set-up; each page changes the plan only.
class Walk {
 public:
  explicit Walk(Desk& desk) : desk_(desk), talk_(desk), plan_(desk.app.setup().PlanOf()) {}

  /// True when the person wants the plan put in.
  bool Run();
  [[nodiscard]] const SetupPlan& plan() const { return plan_; }
  [[nodiscard]] bool collects() const { return collects_; }
  /// The unit whose clock was set meanwhile; empty for none.
  [[nodiscard]] const std::string& clock_set_of() const { return clock_set_of_; }

 private:
  void Ask(SetupPage page);
  void AskLanguage();
  void AskPort();
  void ListDevices(const std::vector<DeviceChoice>& devices);
  void AskFolders();
  void AskTables();
  void AskClock();
  void SetClock(std::size_t row);
  void AskSchedule();
  void AskDelivery();
  void AskServer();
  void AskSummary();
  /// Asks for one text until nothing is wrong with it.
  void AskField(SetupPage page, SetupField field, std::string& value, const std::string& what,
                const std::string& none = {});
  /// The same for a folder: what is typed begins in the current one, what is there is shown as a full path.
  void AskFolder(SetupPage page, SetupField field, std::string& value, const std::string& what,
                 const std::string& none = {});
  [[nodiscard]] std::string FullFolder(const std::string& value) const;
  [[nodiscard]] std::vector<SetupFault> FaultsAt(SetupPage page, SetupField field) const;
  /// The row of a unit by its position, name or ID; 0 when there is none.
  [[nodiscard]] std::size_t RowOf(std::string_view text) const;

  Desk& desk_;
  SetupTalk talk_;
  SetupPlan plan_;
  SetupTried tried_;
  bool collects_ = false;
  std::string clock_set_of_;
};

bool Walk::Run() {
  talk_.Say("Enter keeps what stands in brackets; \"back\" goes back, \"quit\" ends and changes nothing.");
  for (std::size_t page = 0; page < kSetupPages.size();) {
    try {
      Ask(kSetupPages[page]);
      CompletePlan(plan_, kSetupPages[page]);
      ++page;
    } catch (Leave reason) {
      if (reason == Leave::Quit) return false;
      // Without languages to choose from there is no first page to go back to.
      if (reason == Leave::Back && page > 0) --page;
    }
  }
  return true;
}

void Walk::Ask(SetupPage page) {
  if (page != SetupPage::Language) talk_.BeginPage(TitleOf(page));
  switch (page) {
    case SetupPage::Language:
      return AskLanguage();
    case SetupPage::Port:
      return AskPort();
    case SetupPage::Stations:
      return AskStations(desk_, talk_, plan_);
    case SetupPage::Folders:
      return AskFolders();
    case SetupPage::Tables:
      return AskTables();
    case SetupPage::Clock:
      return AskClock();
    case SetupPage::Schedule:
      return AskSchedule();
    case SetupPage::Delivery:
      return AskDelivery();
    case SetupPage::Summary:
      return AskSummary();
  }
}

std::vector<SetupFault> Walk::FaultsAt(SetupPage page, SetupField field) const {
  std::vector<SetupFault> faults = desk_.app.setup().FaultsOf(plan_, page);
  std::erase_if(faults, [field](const SetupFault& fault) { return fault.field != field; });
  return faults;
}

void Walk::AskField(SetupPage page, SetupField field, std::string& value, const std::string& what,
                    const std::string& none) {
  const std::string present = value;
  talk_.Until(
      [&] {
        // What was refused is no proposal.
        value = present;
        value = talk_.Text(what, present, none);
      },
      [&] { return FaultsAt(page, field); });
}

std::string Walk::FullFolder(const std::string& value) const {
  return value.empty() ? value : desk_.app.app().AppPath(WithSlashes(value));
}

void Walk::AskFolder(SetupPage page, SetupField field, std::string& value, const std::string& what,
                     const std::string& none) {
  const std::string present = value;
  const std::string shown = FullFolder(present);
  talk_.Until(
      [&] {
        value = present;
        const std::string typed = talk_.Text(what, shown, none);
        // What is kept stays as the settings have it.
        if (typed != shown) value = TypedPath(desk_.app.app(), typed);
      },
      [&] { return FaultsAt(page, field); });
}

void Walk::AskLanguage() {
  const std::string programs = PosixShell("corvane").ProgramFolder();
  const std::vector<SetupLanguage> languages =
      FindLanguages({desk_.app.app().Folder(), programs + "/../share/corvane"});
  if (languages.size() < 2) return;
  talk_.BeginPage(TitleOf(SetupPage::Language));
  std::string present(FileNameOf(plan_.language_file));
  for (std::size_t i = 0; i < languages.size(); ++i) {
    talk_.Say("  " + std::to_string(i + 1) + "  " + languages[i].name);
    if (EqualsNoCase(FileNameOf(languages[i].file), FileNameOf(plan_.language_file))) present = languages[i].name;
  }
  const char* const wanted = std::getenv("LANG");
  if (plan_.first && wanted != nullptr && StartsWithNoCase(wanted, "de")) present = "Deutsch";
  for (;;) {
    const std::string answer = talk_.Text("Language of the window, its number or name", present);
    for (std::size_t i = 0; i < languages.size(); ++i) {
      if (answer != std::to_string(i + 1) && !EqualsNoCase(answer, languages[i].name)) continue;
      plan_.language_file = languages[i].file;
      return;
    }
    if (answer == present) return;
    talk_.Refuse("There is no language \"" + answer + "\".");
  }
}

void Walk::ListDevices(const std::vector<DeviceChoice>& devices) {
  if (devices.empty()) return talk_.Say("  No serial device was found: plug the adapter in and enter ? to look again.");
  std::set<std::string> groups;
  for (std::size_t i = 0; i < devices.size(); ++i) {
    const DeviceChoice& device = devices[i];
    const std::string leads = device.device == device.path ? "" : " -> " + device.device;
    const std::string users = device.group.empty() ? "" : ", as users of the group " + device.group;
    const std::string state = device.problem.empty() ? "you may use it" + users : device.problem;
    talk_.Say("  " + std::to_string(i + 1) + "  " + device.path + leads + "   (" + state + ")");
    if (!device.problem.empty() && !device.group.empty()) groups.insert(device.group);
  }
  for (const std::string& group : groups) {
    talk_.Say("  To be allowed to use it: " + PortChoices::CommandToJoin(group) + ", then log out and in again.");
  }
}

void Walk::AskPort() {
  for (;;) {
    const std::vector<DeviceChoice> devices = desk_.app.ports().Devices();
    ListDevices(devices);
    const std::string former = plan_.device;
    const std::string answer =
        talk_.Text("Device of the base station, its number or name; ? looks again", plan_.device, "none");
    if (answer == "?") continue;
    const auto number = ParseInteger(answer, 1, static_cast<std::int64_t>(devices.size()));
    const std::string device = number ? devices[static_cast<std::size_t>(*number - 1)].path : answer;
    SetupPlan chosen = plan_;
    desk_.app.setup().ChooseDevice(chosen, device);
    if (talk_.Refuse(desk_.app.setup().FaultsOf(chosen, SetupPage::Port), false)) continue;
    const bool again = tried_.port && chosen.device == former;
    plan_ = std::move(chosen);
    // Who keeps a device that was tested wants to go on with it.
    if (plan_.device.empty() || again) return;
    talk_.Say("  Testing " + plan_.device + " ...");
    tried_.port = desk_.app.setup().TryPort(plan_);
    talk_.Tell(*tried_.port);
    if (tried_.port->well || !talk_.HasPerson()) return;
    talk_.Say("  Enter goes on with it all the same.");
  }
}

void Walk::AskFolders() {
  AskFolder(SetupPage::Folders, SetupField::DataFolder, plan_.data_folder, "Folder of the data files");
  for (std::size_t i = 0; i < plan_.clients.size(); ++i) {
    SetupClient& client = plan_.clients[i];
    const auto faults = [&] {
      std::vector<SetupFault> found = FaultsAt(SetupPage::Folders, SetupField::ClientFolder);
      std::erase_if(found, [i](const SetupFault& fault) { return fault.row != i + 1; });
      return found;
    };
    const std::string present = client.folder;
    talk_.Until(
        [&] {
          client.folder = present;
          client.folder = talk_.Text("Folder of the client " + Quote(client.name) + ", below it", present);
        },
        faults);
  }
  if (talk_.Refuse(desk_.app.setup().FaultsOf(plan_, SetupPage::Folders), true)) throw Leave::Again;
}

void Walk::AskTables() {
  talk_.Say("  moisture.lkp, salinity.lkp and salcorr.lkp turn raw readings into calibrated ones.");
  if (plan_.tables_are_set) talk_.Say("  The settings name tables one by one; - leaves them.");
  AskFolder(SetupPage::Tables, SetupField::TablesFolder, plan_.tables_folder, "Folder that holds the three",
            plan_.tables_are_set ? "as they are" : "none: raw files only");
}

std::size_t Walk::RowOf(std::string_view text) const {
  if (const auto row = ParseInteger(text, 1, static_cast<std::int64_t>(plan_.units.size()))) {
    return static_cast<std::size_t>(*row);
  }
  for (std::size_t row = 1; row <= plan_.units.size(); ++row) {
    if (EqualsNoCase(plan_.units[row - 1].name, text)) return row;
  }
  return 0;
}

void Walk::AskClock() {
  std::size_t row = 0;
  for (std::size_t i = plan_.units.size(); i > 0; --i) {
    const SetupUnit& unit = plan_.units[i - 1];
    if (unit.active && unit.get_from == kFromRadio) row = i;
  }
  if (plan_.device.empty() || row == 0) return talk_.Say("  No unit can be asked yet.");
  std::string present = tried_.port && !tried_.port->well ? "" : plan_.units[row - 1].name;
  for (;;) {
    const std::string answer = talk_.Text("Ask which unit for its clock, its number or name", present, "none");
    if (answer.empty()) return;
    row = RowOf(answer);
    if (row == 0) {
      talk_.Refuse("There is no unit \"" + answer + "\".");
      continue;
    }
    talk_.Say("  Asking " + plan_.units[row - 1].name + " ...");
    const SetupClock clock = desk_.app.setup().AskClock(plan_, row);
    talk_.Tell(clock);
    tried_.clock = clock;
    if (clock.well || !talk_.HasPerson()) return;
    if (clock.is_off) return SetClock(row);
    present.clear();
  }
}

void Walk::SetClock(std::size_t row) {
  talk_.Say("  Readings that the unit has stored keep their dates.");
  if (!talk_.Yes("Set it to this computer's clock?", false)) return;
  clock_set_of_ = plan_.units[row - 1].name;
  tried_.clock = desk_.app.setup().SetClock(plan_, row);
  talk_.Tell(*tried_.clock);
}

void Walk::AskSchedule() {
  plan_.automatic = talk_.Yes("Download automatically", plan_.automatic);
  if (plan_.automatic) AskField(SetupPage::Schedule, SetupField::Interval, plan_.interval, "Every (hours:minutes)");
  plan_.goes_on = talk_.Yes("Go on past units and files that fail", plan_.goes_on);
  AskField(SetupPage::Schedule, SetupField::LogSize, plan_.log_size,
           "A log goes over to another file at how many megabytes, 0 for never");
}

void Walk::AskServer() {
  AskField(SetupPage::Delivery, SetupField::Server, plan_.server, "FTP server that the files are sent to", "none");
  tried_.server.reset();
  if (plan_.server.empty()) return;
  plan_.server_folder = talk_.Text("Folder on the server", plan_.server_folder, "that of the login");
  plan_.user = talk_.Text("User name", plan_.anonymous ? "" : plan_.user, "anonymous");
  plan_.anonymous = plan_.user.empty();
  if (!plan_.anonymous) plan_.password = talk_.Secret("Password", plan_.password);
  plan_.encrypted = talk_.Yes("Encrypt, with a certificate that is checked", plan_.encrypted);
  plan_.sends_calibrated = talk_.Yes("Send calibrated files (else raw ones)", plan_.sends_calibrated);
  bool all = true;
  bool none = true;
  for (const SetupUnit& unit : plan_.units) {
    all = all && unit.sent;
    none = none && !unit.sent;
  }
  if (!all && talk_.Yes("Send the files of all units", none)) {
    for (SetupUnit& unit : plan_.units) unit.sent = true;
  }
  std::vector<SetupFault> faults = desk_.app.setup().FaultsOf(plan_, SetupPage::Delivery);
  std::erase_if(faults, [](const SetupFault& fault) { return fault.field == SetupField::BackupFolder; });
  if (talk_.Refuse(faults, false)) throw Leave::Again;
  talk_.Say("  Trying " + plan_.server + " ...");
  tried_.server = desk_.app.setup().TryServer(plan_);
  talk_.Tell(*tried_.server);
  if (!tried_.server->well && talk_.HasPerson() && talk_.Yes("Enter it anew", true)) throw Leave::Again;
}

void Walk::AskDelivery() {
  AskServer();
  for (;;) {
    const std::string former = plan_.backup_folder;
    AskFolder(SetupPage::Delivery, SetupField::BackupFolder, plan_.backup_folder, "Folder for a backup", "none");
    const bool again = tried_.backup && former == plan_.backup_folder;
    if (plan_.backup_folder.empty()) tried_.backup.reset();
    if (plan_.backup_folder.empty() || again) return;
    tried_.backup = desk_.app.setup().TryBackup(plan_);
    talk_.Tell(*tried_.backup);
    if (tried_.backup->well || !talk_.HasPerson()) return;
    talk_.Say("  Enter goes on with it all the same.");
  }
}

void Walk::AskSummary() {
  std::vector<std::vector<std::string>> rows;
  SetupPlan shown = plan_;
  for (std::string* folder : {&shown.data_folder, &shown.tables_folder, &shown.backup_folder}) {
    *folder = FullFolder(*folder);
  }
  if (const std::string words = ValueInWords("AutomaticInterval", plan_.interval); !words.empty()) {
    shown.interval += " (" + words + ")";
  }
  for (const auto& [what, value] : SummaryOf(shown)) rows.push_back({"", what, value});
  desk_.output.Result(FormatTable({{""}, {"What"}, {"Will be"}}, rows));
  const std::vector<std::string> not_done = NotDone(plan_, tried_);
  if (!not_done.empty()) talk_.Say("  Not done yet:");
  for (const std::string& sentence : not_done) talk_.Say("  - " + sentence);
  if (talk_.Refuse(desk_.app.setup().FaultsOf(plan_, SetupPage::Summary), true)) throw Leave::Back;
  if (!talk_.Yes("Save this", true)) throw Leave::Quit;
  const bool can_collect = !plan_.device.empty() && !plan_.units.empty();
  collects_ = can_collect && talk_.Yes("Collect now", true);
}

}  // namespace

int SetUp(Desk& desk, const Options& options) {
  bool& saves_nothing = desk.app.flags().saves_nothing;
  saves_nothing = true;
  Walk walk(desk);
  desk.view.hides_steps = true;
  const bool wanted = walk.Run();
  desk.view.hides_steps = false;
  if (!wanted) {
    const std::string& unit = walk.clock_set_of();
    desk.output.Error("Ended: nothing is changed" + (unit.empty() ? "." : " but the clock of " + unit + "."));
    return kProblems;
  }
  saves_nothing = false;
  SetupPlan plan = walk.plan();
  if (!desk.app.setup().PutIn(plan)) return kProblems;
  desk.output.Line("Saved in " + desk.app.app().AppPath(kSettingsFile));
  const int status = walk.collects() ? Download(desk, options) : kAllWell;
  desk.output.Line("The files are in " + desk.app.names().DataFolder());
  if (walk.plan().automatic)
    desk.output.Line("To stay and download on schedule: corvanectl run, or one of the services (man corvanectl)");
  return status;
}

}  // namespace corvane::console
