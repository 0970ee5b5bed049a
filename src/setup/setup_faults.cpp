#include <algorithm>
#include <limits>
#include <map>

#include "base/numbers.h"
#include "base/paths.h"
#include "base/status.h"
#include "base/text.h"
#include "data/lookup.h"
#include "form/control.h"
#include "link/port_choices.h"
#include "registry/record_editor.h"
#include "setup/field_rules.h"
#include "setup/setup_plan.h"

namespace corvane {
namespace {

constexpr double kHighestID = std::numeric_limits<std::int32_t>::max();
constexpr std::string_view kDirect = "Direct";

/// The faults of one page as they are found.
class Findings {
 public:
  explicit Findings(SetupPage page) : page_(page) {}

  /// Adds a fault where there is a text.
  void Add(SetupField field, std::size_t row, std::string text) {
    if (!text.empty()) faults.push_back({page_, field, row, std::move(text)});
  }
  void Add(SetupField field, std::string text) { Add(field, 0, std::move(text)); }

  std::vector<SetupFault> faults;

 private:
  SetupPage page_;
};

/// What is wrong with a text that becomes one line of the settings.
std::string TextProblem(std::string_view as_Text) {
  if (HasControlCharacter(as_Text)) return "This holds line breaks or other control characters; take them out.";
  if (CutCharacters(as_Text, TextField::kLongestText).size() == as_Text.size()) return {};
  return "This is longer than the " + std::to_string(TextField::kLongestText) +
         " characters that the settings keep; shorten it.";
}

std::string NameProblem(std::string_view as_Name, std::string_view as_Of) {
  if (Trim(as_Name).empty()) return "This " + std::string(as_Of) + " has no name; give it one, or take the row away.";
  return TextProblem(as_Name);
}

/// Tells which row had a key first; 0 where this is the first.
template <class Key>
std::size_t FirstRowOf(std::map<Key, std::size_t>& av_Rows, Key av_Key, std::size_t al_Row) {
  const auto [first, is_new] = av_Rows.emplace(std::move(av_Key), al_Row);
  return is_new ? 0 : first->second;
}

std::string NotTwice(std::size_t al_First, std::string_view as_What) {
  if (al_First == 0) return {};
  return "Row " + std::to_string(al_First) + " has the same " + std::string(as_What) + "; change one of the two.";
}

void FindInRelays(const SetupPlan& av_Plan, Findings& av_Findings) {
  std::map<std::string, std::size_t> names;
  std::map<std::string, std::size_t> ids;
  for (std::size_t row = 1; row <= av_Plan.relays.size(); ++row) {
    const SetupRelay& relay = av_Plan.relays[row - 1];
    const std::string name(Trim(relay.name));
    std::string problem = NameProblem(name, "relay");
    if (EqualsNoCase(name, kDirect)) problem = "\"Direct\" stands for no relay; give this one another name.";
    if (problem.empty()) problem = NotTwice(FirstRowOf(names, ToLower(name), row), "name");
    av_Findings.Add(SetupField::RelayName, row, problem);
    const std::string id(Trim(relay.id));
    problem = WholeNumberProblem(id, 1, kHighestID);
    if (problem.empty()) problem = NotTwice(FirstRowOf(ids, ShortestText(LeadingNumber(id)), row), "ID");
    av_Findings.Add(SetupField::RelayID, row, problem);
  }
}

std::string RelayProblem(const SetupPlan& av_Plan, std::string_view as_Relay) {
  const std::string_view name = Trim(as_Relay);
  const bool known = name.empty() || EqualsNoCase(name, kDirect) ||
                     std::any_of(av_Plan.relays.begin(), av_Plan.relays.end(),
                                 [name](const SetupRelay& relay) { return EqualsNoCase(Trim(relay.name), name); });
  if (known) return {};
  return "There is no relay " + Quote(name) + "; name one of the relays, or leave it empty for none.";
}

void FindInUnits(const SetupPlan& av_Plan, Findings& av_Findings) {
  std::map<std::string, std::size_t> files;
  for (std::size_t row = 1; row <= av_Plan.units.size(); ++row) {
    const SetupUnit& unit = av_Plan.units[row - 1];
    av_Findings.Add(SetupField::UnitName, row, NameProblem(unit.name, "unit"));
    const std::string id(Trim(unit.id));
    std::string problem = WholeNumberProblem(id, 0, kHighestID);
    if (problem.empty() && unit.active) {
      const std::string file = ShortestText(LeadingNumber(id)) + " " + ToLower(Trim(unit.client));
      if (const std::size_t first = FirstRowOf(files, file, row); first != 0) {
        problem = "Row " + std::to_string(first) +
                  " has the same ID and client: both would share one raw file. Change one of the two, or make it "
                  "inactive.";
      }
    }
    av_Findings.Add(SetupField::UnitID, row, problem);
    av_Findings.Add(SetupField::UnitRelay, row, RelayProblem(av_Plan, unit.relay));
    av_Findings.Add(SetupField::UnitClient, row, TextProblem(unit.client));
    problem = DepthsProblem(unit.depths);
    av_Findings.Add(SetupField::UnitDepths, row, problem.empty() ? TextProblem(unit.depths) : problem);
  }
}

void FindInStations(const SetupPlan& av_Plan, Findings& av_Findings) {
  FindInRelays(av_Plan, av_Findings);
  FindInUnits(av_Plan, av_Findings);
  constexpr auto kMost = static_cast<std::size_t>(RecordEditor::kMostRecords) - 1;
  if (std::max(av_Plan.units.size(), av_Plan.relays.size()) > kMost) {
    av_Findings.Add(SetupField::Page, "There are more than " + std::to_string(kMost) + " rows; take some away.");
  }
}

/// What is wrong with a client's folder, which has to be below the data folder.
std::string ClientFolderProblem(std::string_view as_Folder) {
  const std::string folder = WithSlashes(Trim(as_Folder));
  for (const std::string_view part : Split(folder, '/')) {
    if (part == "..") return "This leads out of the data folder; write a name without \"..\".";
  }
  return TextProblem(as_Folder);
}

void FindInFolders(const SetupPlan& av_Plan, const AppInfo& av_App, Findings& av_Findings) {
  std::string problem = NewFolderProblem(av_App.AppPath(WithSlashes(av_Plan.data_folder)));
  if (problem.empty()) problem = TextProblem(av_Plan.data_folder);
  av_Findings.Add(SetupField::DataFolder, problem);
  std::map<std::string, std::size_t> names;
  for (std::size_t row = 1; row <= av_Plan.clients.size(); ++row) {
    const SetupClient& client = av_Plan.clients[row - 1];
    const std::string name(Trim(client.name));
    problem = NameProblem(name, "client");
    if (problem.empty()) problem = NotTwice(FirstRowOf(names, ToLower(name), row), "name");
    av_Findings.Add(SetupField::ClientName, row, problem);
    av_Findings.Add(SetupField::ClientFolder, row, ClientFolderProblem(client.folder));
  }
  for (const SetupUnit& unit : av_Plan.units) {
    const std::string client = ToLower(Trim(unit.client));
    if (client.empty() || names.contains(client)) continue;
    av_Findings.Add(SetupField::Page, "There is no client " + Quote(Trim(unit.client)) + ", to which the unit " +
                                          Quote(unit.name) + " belongs; enter it, or change the unit.");
    break;
  }
}

/// What is wrong with a table that is there.
std::string TableProblem(const std::string& as_File) {
  try {
    LookupTable table;
    table.Read(as_File);
    return table.Count() > 0 ? "" : as_File + " holds no points; choose the folder of the right tables.";
  } catch (const RunTimeError& error) {
    return as_File + " cannot be used: " + error.what();
  }
}

void FindInTables(const SetupPlan& av_Plan, const AppInfo& av_App, Findings& av_Findings) {
  if (Trim(av_Plan.tables_folder).empty()) return;
  const std::string folder = av_App.AppPath(WithSlashes(Trim(av_Plan.tables_folder)));
  if (!IsFolder(folder)) {
    return av_Findings.Add(SetupField::TablesFolder,
                           "There is no folder " + folder + "; choose one that exists, or none.");
  }
  const auto files = TablesIn(folder);
  for (std::size_t table = 0; table < files.size(); ++table) {
    av_Findings.Add(SetupField::TablesFolder, files[table].empty()
                                                  ? folder + " holds no " + std::string(kTableNames[table]) +
                                                        "; choose the folder that holds all three tables, or none."
                                                  : TableProblem(files[table]));
  }
}

void FindInDelivery(const SetupPlan& av_Plan, const AppInfo& av_App, Findings& av_Findings) {
  if (!Trim(av_Plan.server).empty()) {
    av_Findings.Add(SetupField::Server, ServerProblem(Trim(av_Plan.server)));
    const bool can_log_in = av_Plan.anonymous || (!Trim(av_Plan.user).empty() && !av_Plan.password.empty());
    if (!can_log_in) {
      av_Findings.Add(SetupField::User,
                      "The server needs a user name and a password; enter both, or log in anonymously.");
    }
    if (!av_Plan.certificate.empty()) {
      av_Findings.Add(SetupField::Certificate, FileProblem(av_Plan.certificate, av_App));
    }
  }
  if (Trim(av_Plan.backup_folder).empty()) return;
  av_Findings.Add(SetupField::BackupFolder, NewFolderProblem(av_App.AppPath(WithSlashes(Trim(av_Plan.backup_folder)))));
}

void FindInSchedule(const SetupPlan& av_Plan, Findings& av_Findings) {
  if (av_Plan.automatic) av_Findings.Add(SetupField::Interval, IntervalProblem(av_Plan.interval));
  const bool is_size = ParseNumber(av_Plan.log_size).value_or(-1) >= 0;
  av_Findings.Add(SetupField::LogSize, is_size ? "" : "This is no number of megabytes; 0 stands for no end.");
}

}  // namespace

std::vector<SetupFault> FaultsOf(const SetupPlan& av_Plan, SetupPage av_Page, const AppInfo& av_App) {
  Findings findings(av_Page);
  switch (av_Page) {
    case SetupPage::Language:
      if (!av_Plan.language_file.empty()) findings.Add(SetupField::Language, TextProblem(av_Plan.language_file));
      break;
    case SetupPage::Port:
      if (av_Plan.device.empty()) break;
      if (const Status device = PortChoices::Check(av_Plan.device); !device.ok()) {
        findings.Add(SetupField::Device, "This is no device: " + device.text() + ".");
      }
      break;
    case SetupPage::Stations:
      FindInStations(av_Plan, findings);
      break;
    case SetupPage::Folders:
      FindInFolders(av_Plan, av_App, findings);
      break;
    case SetupPage::Tables:
      FindInTables(av_Plan, av_App, findings);
      break;
    case SetupPage::Schedule:
      FindInSchedule(av_Plan, findings);
      break;
    case SetupPage::Delivery:
      FindInDelivery(av_Plan, av_App, findings);
      break;
    case SetupPage::Clock:
      break;
    case SetupPage::Summary:
      // A front end may jump to the end: nothing is put in with a fault left behind.
      for (const SetupPage page : kSetupPages) {
        if (page == SetupPage::Summary) break;
        const std::vector<SetupFault> found = FaultsOf(av_Plan, page, av_App);
        findings.faults.insert(findings.faults.end(), found.begin(), found.end());
      }
      break;
  }
  return std::move(findings.faults);
}

}  // namespace corvane
