#include <algorithm>
#include <map>
#include <set>
#include <string>

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

constexpr std::string_view kDirect = "Direct";

constexpr struct {
  Phrase control_characters{1500, "This holds line breaks or other control characters; take them out."};
  Phrase too_long{1501, "This is longer than the %1 characters that the settings keep; shorten it."};
  Phrase relay_unnamed{1502, "This relay has no name; give it one, or take the row away."};
  Phrase unit_unnamed{1503, "This unit has no name; give it one, or take the row away."};
  Phrase client_unnamed{1504, "This client has no name; give it one, or take the row away."};
  Phrase name_twice{1505, "Row %1 has the same name; change one of the two."};
  Phrase id_twice{1506, "Row %1 has the same ID; change one of the two."};
  Phrase named_direct{1507, "\"Direct\" stands for no relay; give this one another name."};
  Phrase no_relay{1508, "There is no relay %1; name one of the relays, or leave it empty for none."};
  Phrase file_twice{1509,
                    "Row %1 has the same ID and client: both would share one raw file. Change one of the two, or make "
                    "it inactive."};
  Phrase too_many{1510, "There are more than %1 rows; take some away."};
  Phrase leads_out{1511, "This leads out of the data folder; write a name without \"..\"."};
  Phrase no_client{1512, "There is no client %1, to which the unit %2 belongs; enter it, or change the unit."};
  Phrase no_points{1513, "%1 holds no points; choose the folder of the right tables."};
  Phrase unusable{1514, "%1 cannot be used: %2"};
  Phrase no_folder{1515, "There is no folder %1; choose one that exists, or none."};
  Phrase no_table{1516, "%1 holds no %2; choose the folder that holds all three tables, or none."};
  Phrase no_login{1517, "The server needs a user name and a password; enter both, or log in anonymously."};
  Phrase no_size{1518, "This is no number of megabytes; 0 stands for no end."};
  Phrase no_device{1519, "This is no device: %1."};
  Phrase file_shared{1703,
                     "The unit %1 of this client and that of another one would share one raw file; choose another "
                     "folder."};
  Phrase id_of_direct{1701, "\"Direct\" has the ID 0; give this relay another one."};
} kFaultSays;

/// The faults of one page as they are found.
class Findings {
 public:
  Findings(SetupPage page, const Phrases& phrases) : say(phrases), page_(page) {}

  /// Adds a fault where there is a text.
  void Add(SetupField field, std::size_t row, std::string text) {
    if (!text.empty()) faults.push_back({page_, field, row, std::move(text)});
  }
  void Add(SetupField field, std::string text) { Add(field, 0, std::move(text)); }

  const Phrases& say;
  std::vector<SetupFault> faults;

 private:
  SetupPage page_;
};

/// What is wrong with a text that becomes one line of the settings.
std::string TextProblem(std::string_view as_Text, const Phrases& av_Say) {
  if (HasControlCharacter(as_Text)) return av_Say.Text(kFaultSays.control_characters);
  if (CutCharacters(as_Text, TextField::kLongestText).size() == as_Text.size()) return {};
  return av_Say.Text(kFaultSays.too_long, {std::to_string(TextField::kLongestText)});
}

std::string NameProblem(std::string_view as_Name, const Phrase& av_Unnamed, const Phrases& av_Say) {
  return Trim(as_Name).empty() ? av_Say.Text(av_Unnamed) : TextProblem(as_Name, av_Say);
}

/// Tells which row had a key first; 0 where this is the first.
template <class Key>
std::size_t FirstRowOf(std::map<Key, std::size_t>& av_Rows, Key av_Key, std::size_t al_Row) {
  const auto [first, is_new] = av_Rows.emplace(std::move(av_Key), al_Row);
  return is_new ? 0 : first->second;
}

std::string NotTwice(std::size_t al_First, const Phrase& av_Twice, const Phrases& av_Say) {
  return al_First == 0 ? "" : av_Say.Text(av_Twice, {std::to_string(al_First)});
}

void FindInRelays(const SetupPlan& av_Plan, Findings& av_Findings) {
  const Phrases& say = av_Findings.say;
  std::map<std::string, std::size_t> names;
  std::map<std::string, std::size_t> ids;
  for (std::size_t row = 1; row <= av_Plan.relays.size(); ++row) {
    const SetupRelay& relay = av_Plan.relays[row - 1];
    const std::string name(Trim(relay.name));
    std::string problem = NameProblem(name, kFaultSays.relay_unnamed, say);
    if (EqualsNoCase(name, kDirect)) problem = say.Text(kFaultSays.named_direct);
    if (problem.empty()) problem = NotTwice(FirstRowOf(names, ToLower(name), row), kFaultSays.name_twice, say);
    av_Findings.Add(SetupField::RelayName, row, problem);
    const std::string id(Trim(relay.id));
    problem = WholeNumberProblem(id, kLowestID, kHighestID, say);
    if (problem.empty() && LeadingInteger(id) == 0) problem = say.Text(kFaultSays.id_of_direct);
    if (problem.empty()) {
      problem = NotTwice(FirstRowOf(ids, ShortestText(LeadingNumber(id)), row), kFaultSays.id_twice, say);
    }
    av_Findings.Add(SetupField::RelayID, row, problem);
  }
}

std::string RelayProblem(const SetupPlan& av_Plan, std::string_view as_Relay, const Phrases& av_Say) {
  return RelayMeant(av_Plan, as_Relay) ? "" : av_Say.Text(kFaultSays.no_relay, {Quote(Trim(as_Relay))});
}

void FindInUnits(const SetupPlan& av_Plan, Findings& av_Findings) {
  const Phrases& say = av_Findings.say;
  std::map<std::string, std::size_t> files;
  for (std::size_t row = 1; row <= av_Plan.units.size(); ++row) {
    const SetupUnit& unit = av_Plan.units[row - 1];
    av_Findings.Add(SetupField::UnitName, row, NameProblem(unit.name, kFaultSays.unit_unnamed, say));
    const std::string id(Trim(unit.id));
    std::string problem = WholeNumberProblem(id, kLowestID, kHighestID, say);
    if (problem.empty() && unit.active) {
      const std::string file = ShortestText(LeadingNumber(id)) + " " + ToLower(Trim(unit.client));
      problem = NotTwice(FirstRowOf(files, file, row), kFaultSays.file_twice, say);
    }
    av_Findings.Add(SetupField::UnitID, row, problem);
    av_Findings.Add(SetupField::UnitRelay, row, RelayProblem(av_Plan, unit.relay, say));
    av_Findings.Add(SetupField::UnitClient, row, TextProblem(unit.client, say));
    problem = DepthsProblem(PlainDepths(unit.depths), say);
    av_Findings.Add(SetupField::UnitDepths, row, problem.empty() ? TextProblem(unit.depths, say) : problem);
  }
}

void FindInStations(const SetupPlan& av_Plan, Findings& av_Findings) {
  FindInRelays(av_Plan, av_Findings);
  FindInUnits(av_Plan, av_Findings);
  constexpr auto kMost = static_cast<std::size_t>(RecordEditor::kMostRecords) - 1;
  if (std::max(av_Plan.units.size(), av_Plan.relays.size()) > kMost) {
    av_Findings.Add(SetupField::Page, av_Findings.say.Text(kFaultSays.too_many, {std::to_string(kMost)}));
  }
}

/// What is wrong with a client's folder, which has to be below the data folder.
std::string ClientFolderProblem(std::string_view as_Folder, const Phrases& av_Say) {
  const std::string folder = WithSlashes(Trim(as_Folder));
  for (const std::string_view part : Split(folder, '/')) {
    if (part == "..") return av_Say.Text(kFaultSays.leads_out);
  }
  return TextProblem(as_Folder, av_Say);
}

/// Units of one ID whose clients have one folder would share a raw file.
void FindSharedFiles(const SetupPlan& av_Plan, Findings& av_Findings) {
  std::map<std::string, std::size_t> clients = {{"", 0}};
  for (std::size_t row = 1; row <= av_Plan.clients.size(); ++row) {
    clients.emplace(ToLower(Trim(av_Plan.clients[row - 1].name)), row);
  }
  std::map<std::string, std::size_t> files;
  std::set<std::size_t> told;
  for (const SetupUnit& unit : av_Plan.units) {
    const auto client = clients.find(ToLower(Trim(unit.client)));
    if (!unit.active || client == clients.end()) continue;
    const std::size_t row = client->second;
    const std::string id = ShortestText(LeadingNumber(Trim(unit.id)));
    const std::string folder = row == 0 ? "" : av_Plan.clients[row - 1].folder;
    const std::size_t first = files.emplace(RawFileKey(folder, id), row).first->second;
    if (first == row || !told.insert(std::max(first, row)).second) continue;
    av_Findings.Add(SetupField::ClientFolder, std::max(first, row), av_Findings.say.Text(kFaultSays.file_shared, {id}));
  }
}

void FindInFolders(const SetupPlan& av_Plan, const AppInfo& av_App, Findings& av_Findings) {
  const Phrases& say = av_Findings.say;
  std::string problem = NewFolderProblem(av_App.AppPath(WithSlashes(av_Plan.data_folder)), say);
  if (problem.empty()) problem = TextProblem(av_Plan.data_folder, say);
  av_Findings.Add(SetupField::DataFolder, problem);
  std::map<std::string, std::size_t> names;
  for (std::size_t row = 1; row <= av_Plan.clients.size(); ++row) {
    const SetupClient& client = av_Plan.clients[row - 1];
    const std::string name(Trim(client.name));
    problem = NameProblem(name, kFaultSays.client_unnamed, say);
    if (problem.empty()) problem = NotTwice(FirstRowOf(names, ToLower(name), row), kFaultSays.name_twice, say);
    av_Findings.Add(SetupField::ClientName, row, problem);
    av_Findings.Add(SetupField::ClientFolder, row, ClientFolderProblem(client.folder, say));
  }
  FindSharedFiles(av_Plan, av_Findings);
  for (const SetupUnit& unit : av_Plan.units) {
    const std::string client = ToLower(Trim(unit.client));
    if (client.empty() || names.contains(client)) continue;
    av_Findings.Add(SetupField::Page, say.Text(kFaultSays.no_client, {Quote(Trim(unit.client)), Quote(unit.name)}));
    break;
  }
}

/// What is wrong with a table that is there.
std::string TableProblem(const std::string& as_File, const Phrases& av_Say) {
  try {
    LookupTable table;
    table.Read(as_File);
    return table.Count() > 0 ? "" : av_Say.Text(kFaultSays.no_points, {as_File});
  } catch (const RunTimeError& error) {
    return av_Say.Text(kFaultSays.unusable, {as_File, error.what()});
  }
}

void FindInTables(const SetupPlan& av_Plan, const AppInfo& av_App, Findings& av_Findings) {
  if (Trim(av_Plan.tables_folder).empty()) return;
  const Phrases& say = av_Findings.say;
  const std::string folder = av_App.AppPath(WithSlashes(Trim(av_Plan.tables_folder)));
  if (!IsFolder(folder)) return av_Findings.Add(SetupField::TablesFolder, say.Text(kFaultSays.no_folder, {folder}));
  const auto files = TablesIn(folder);
  for (std::size_t table = 0; table < files.size(); ++table) {
    av_Findings.Add(SetupField::TablesFolder, files[table].empty()
                                                  ? say.Text(kFaultSays.no_table, {folder, kTableNames[table]})
                                                  : TableProblem(files[table], say));
  }
}

void FindInDelivery(const SetupPlan& av_Plan, const AppInfo& av_App, Findings& av_Findings) {
  const Phrases& say = av_Findings.say;
  if (!Trim(av_Plan.server).empty()) {
    av_Findings.Add(SetupField::Server, ServerProblem(Trim(av_Plan.server), say));
    const bool can_log_in = av_Plan.anonymous || (!Trim(av_Plan.user).empty() && !av_Plan.password.empty());
    if (!can_log_in) av_Findings.Add(SetupField::User, say.Text(kFaultSays.no_login));
    if (!av_Plan.certificate.empty()) {
      av_Findings.Add(SetupField::Certificate, FileProblem(av_Plan.certificate, av_App, say));
    }
  }
  if (Trim(av_Plan.backup_folder).empty()) return;
  av_Findings.Add(SetupField::BackupFolder,
                  NewFolderProblem(av_App.AppPath(WithSlashes(Trim(av_Plan.backup_folder))), say));
}

void FindInSchedule(const SetupPlan& av_Plan, Findings& av_Findings) {
  if (av_Plan.automatic) av_Findings.Add(SetupField::Interval, IntervalProblem(av_Plan.interval, av_Findings.say));
  const bool is_size = ParseNumber(av_Plan.log_size).value_or(-1) >= 0;
  av_Findings.Add(SetupField::LogSize, is_size ? "" : av_Findings.say.Text(kFaultSays.no_size));
}

}  // namespace

std::vector<SetupFault> FaultsOf(const SetupPlan& av_Plan, SetupPage av_Page, const AppInfo& av_App,
                                 const Phrases& av_Phrases) {
  Findings findings(av_Page, av_Phrases);
  switch (av_Page) {
    case SetupPage::Language:
      if (!av_Plan.language_file.empty())
        findings.Add(SetupField::Language, TextProblem(av_Plan.language_file, av_Phrases));
      break;
    case SetupPage::Port:
      if (av_Plan.device.empty()) break;
      if (const Status device = PortChoices::Check(av_Plan.device, av_Phrases); !device.ok()) {
        findings.Add(SetupField::Device, av_Phrases.Text(kFaultSays.no_device, {device.text()}));
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
        const std::vector<SetupFault> found = FaultsOf(av_Plan, page, av_App, av_Phrases);
        findings.faults.insert(findings.faults.end(), found.begin(), found.end());
      }
      break;
  }
  return std::move(findings.faults);
}

std::vector<Phrase> SetupFaultPhrases() {
  return PhrasesIn(kFaultSays);
}

}  // namespace corvane
