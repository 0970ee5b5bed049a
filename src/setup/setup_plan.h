// What a set-up asks for, page by page, as plain data: the rules of every front end that asks it.
//
// A front end takes the plan of what is there (`SetupReader`), lets a person change it, asks `FaultsOf` at each step
// on, tries what can be tried (`SetupTries`) and puts the plan in at the end. Nothing is written before that.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "lang/phrases.h"
#include "state/app_info.h"
#include "state/records.h"

namespace corvane {

enum class SetupPage : std::uint8_t {
  Language,
  Port,
  Stations,
  Folders,
  Tables,
  Clock,
  Schedule,
  Delivery,
  Summary,
};

/// The pages in their order.
inline constexpr std::array kSetupPages = {SetupPage::Language, SetupPage::Port,     SetupPage::Stations,
                                           SetupPage::Folders,  SetupPage::Tables,   SetupPage::Clock,
                                           SetupPage::Schedule, SetupPage::Delivery, SetupPage::Summary};

/// Which field of a page is meant; of rows, the column.
enum class SetupField : std::uint8_t {
  Page,  ///< the page as a whole
  Language,
  Device,
  RelayName,
  RelayID,
  UnitName,
  UnitID,
  UnitRelay,
  UnitClient,
  UnitDepths,
  DataFolder,
  ClientName,
  ClientFolder,
  TablesFolder,
  Interval,
  LogSize,
  Server,
  User,
  Certificate,
  BackupFolder,
};

struct SetupRelay {
  std::string name;
  std::string id;          ///< as typed
  std::int32_t place = 0;  ///< of the relay in the registry, from 1; 0: it is new

  bool operator==(const SetupRelay&) const = default;
};

struct SetupUnit {
  std::string name;
  std::string id;      ///< as typed
  std::string relay;   ///< its name, or what `RelayMeant` understands; empty: reached directly
  std::string client;  ///< its name; empty: none, the files are in the data folder itself
  std::string depths;  ///< as typed
  bool active = true;
  bool sent = false;                   ///< its file is sent to the server
  std::int32_t get_from = kFromRadio;  ///< how it is read, see `GetFrom`
  std::int32_t place = 0;              ///< of the unit in the registry, from 1; 0: it is new

  bool operator==(const SetupUnit&) const = default;
};

struct SetupClient {
  std::string name;
  std::string folder;      ///< below the data folder, and on the server
  std::int32_t place = 0;  ///< of the client in the registry, from 1; 0: it is new

  bool operator==(const SetupClient&) const = default;
};

struct SetupPlan {
  bool first = false;  ///< nothing was set up before

  std::string language_file;  ///< full path, or a name in the application folder

  int port = 1;        ///< number of the radio port, COM1 to COM50
  std::string device;  ///< behind it; empty: none is chosen

  std::vector<SetupRelay> relays;  ///< without "Direct"
  std::vector<SetupUnit> units;    ///< those that are there in their order, new ones behind them

  std::string data_folder;
  std::vector<SetupClient> clients;

  std::string tables_folder;    ///< that holds the three lookup tables; empty: none is chosen
  bool tables_are_set = false;  ///< the settings name them one by one and they are there: so it stays without a folder

  bool automatic = true;  ///< downloads on schedule
  std::string interval = "03:00";
  bool at_log_on = false;
  bool goes_on = true;          ///< past units and files that fail
  std::string log_size = "10";  ///< megabytes at which a log goes over to another file; 0: no end

  std::string server;  ///< empty: nothing is sent
  std::string server_folder;
  std::string user;
  std::string password;
  bool anonymous = false;
  bool encrypted = true;
  std::string certificate;        ///< of the server's authority; empty: the system's
  bool sends_calibrated = false;  ///< and backs them up; else the raw files
  std::string backup_folder;      ///< empty: no backup

  bool operator==(const SetupPlan&) const = default;
};

/// Something that has to be mended before a page can be left.
struct SetupFault {
  SetupPage page = SetupPage::Language;
  SetupField field = SetupField::Page;
  std::size_t row = 0;  ///< of relays, units or clients, from 1; 0: no row
  std::string text;     ///< a sentence that says what to do
};

/// How something went that was tried.
struct SetupAnswer {
  bool well = false;
  std::string text;      ///< sentences for a person: what was found, and what to do
  std::size_t unit = 0;  ///< row of the unit that was asked for its clock, from 1; 0: of nothing else
};

/// What was tried with the present values; none where nothing was, or a value was changed since.
struct SetupTried {
  std::optional<SetupAnswer> port;
  std::optional<SetupAnswer> clock;
  std::optional<SetupAnswer> server;
  std::optional<SetupAnswer> backup;
};

/// A page's title.
[[nodiscard]] std::string_view TitleOf(SetupPage av_Page);
/// What is wrong on a page; empty when it can be left. Looks at files and folders that the plan names.
[[nodiscard]] std::vector<SetupFault> FaultsOf(const SetupPlan& av_Plan, SetupPage av_Page, const AppInfo& av_App,
                                               const Phrases& av_Phrases = {});
/// Fills in what follows from a page that is left without faults: clients that units name get a row and a folder, and
/// relays and depths are as they are written elsewhere.
void CompletePlan(SetupPlan& av_Plan, SetupPage av_Page);
/// The name of the relay that a text means: a name, or an ID where no relay is called so; an empty one for an empty
/// text, "Direct", "-" and 0. None where there is no such relay.
[[nodiscard]] std::optional<std::string> RelayMeant(const SetupPlan& av_Plan, std::string_view as_Text);
/// A row for one more unit: behind the relay of the last one and of its client, the next ID as a proposal.
[[nodiscard]] SetupUnit NextUnit(const SetupPlan& av_Plan);
[[nodiscard]] SetupRelay NextRelay(const SetupPlan& av_Plan);
/// Lets the units behind a relay that has got another name follow it; returns how many.
std::size_t FollowRelay(SetupPlan& av_Plan, std::string_view as_Former, std::string_view as_Now);
/// The names of the three lookup tables in their folder.
inline constexpr std::array<std::string_view, 3> kTableNames = {"moisture.lkp", "salinity.lkp", "salcorr.lkp"};
/// The full names of the three tables in a folder, whatever the letter case of the files; empty for one that is not
/// there.
[[nodiscard]] std::array<std::string, 3> TablesIn(const std::string& as_Folder);

/// What the plan comes to, page by page: what a line is about, and what it will be.
[[nodiscard]] std::vector<std::pair<std::string, std::string>> SummaryOf(const SetupPlan& av_Plan,
                                                                         const Phrases& av_Phrases = {});
/// What is not done yet, a sentence each: what is missing, what was not tried or went wrong, and what to do.
[[nodiscard]] std::vector<std::string> NotDone(const SetupPlan& av_Plan, const SetupTried& av_Tried,
                                               const Phrases& av_Phrases = {});

/// What faults, summary and what is not done are told in.
[[nodiscard]] std::vector<Phrase> SetupFaultPhrases();
[[nodiscard]] std::vector<Phrase> SetupSummaryPhrases();

}  // namespace corvane
