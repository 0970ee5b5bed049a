#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/text.h"
#include "history/status_texts.h"
#include "setup/setup_plan.h"
#include "setup/stations_phrases.h"

namespace corvane {
namespace {

constexpr struct {
  Phrase some_active{1542, "%1 (%2 active)"};
  Phrase every{1543, "every %1"};
  Phrase when_asked{1544, "only when asked for"};
  Phrase at_log_on{1545, "starts at log-on"};
  Phrase goes_on{1546, "goes on past failures"};
  Phrase tables_as_set{1547, "as the settings name them"};
  Phrase no_tables{1548, "none: raw files only"};
  Phrase none{1549, "none"};
  Phrase encrypted{1550, "encrypted"};
  Phrase not_encrypted{1551, "not encrypted"};
  Phrase raw_files{1552, "raw files of %1"};
  Phrase calibrated_files{1553, "calibrated files of %1"};
} kValues;

constexpr struct {
  Phrase base_station{1554, "Base station"};
  Phrase stations{1555, "Stations"};
  Phrase data_folder{1556, "Data folder"};
  Phrase tables{1557, "Tables"};
  Phrase download{1558, "Download"};
  Phrase server{1559, "Server"};
  Phrase backup{1560, "Backup"};
} kHeads;

constexpr struct {
  Phrase no_device{1561, "No device is chosen for the base station: no unit is asked until there is one."};
  Phrase port_not_tested{1562, "The port was not tested: whether the base station answers is not known."};
  Phrase no_unit{1563, "No unit is entered: there is nothing to collect."};
  Phrase none_active{1564, "No unit is active: nothing is collected until one is ticked."};
  Phrase clock_not_asked{1565, "No unit was asked for its clock: readings bear the unit's own date, right or wrong."};
  Phrase other_clocks{
      1702,
      "Only the unit %1 was asked for its clock, not %2: see the clocks with corvanectl get-date and set "
      "them with corvanectl set-date, or with the commands \"Get date\" and \"Set date\" of the window."};
  Phrase of_unit{1780, "Unit %1: %2"};
  Phrase no_tables{1566,
                   "The tables are missing: readings are stored raw, and converted once you name the folder that holds "
                   "moisture.lkp, salinity.lkp and salcorr.lkp. Until then each round says that a table is missing."};
  Phrase not_automatic{1567, "Nothing is downloaded by itself: the automatic download is off."};
  Phrase not_started{1568,
                     "Nothing starts the program when the computer was started anew: let it start at log-on, or as a "
                     "service."};
  Phrase stops{1569, "A unit that does not answer ends a round for all that follow."};
  Phrase server_not_tried{1570, "The server was not tried."};
  Phrase none_sent{1571, "No unit's file is sent to the server: choose those that are."};
  Phrase in_the_clear{1572, "The password for the server goes over the net in the clear: it is not encrypted."};
  Phrase none_calibrated{1573, "Calibrated files are to be sent, but without tables there are none."};
  Phrase no_backup{1574, "There is no backup: choose a folder on another disk."};
  Phrase backup_not_tried{1575, "The backup folder was not tried."};
} kOpen;

std::size_t ActiveUnits(const SetupPlan& av_Plan) {
  return static_cast<std::size_t>(
      std::count_if(av_Plan.units.begin(), av_Plan.units.end(), [](const SetupUnit& unit) { return unit.active; }));
}

std::size_t SentUnits(const SetupPlan& av_Plan) {
  return static_cast<std::size_t>(std::count_if(av_Plan.units.begin(), av_Plan.units.end(),
                                                [](const SetupUnit& unit) { return unit.active && unit.sent; }));
}

std::string StationsText(const SetupPlan& av_Plan, const Phrases& av_Say) {
  std::string text = CountText(std::ssize(av_Plan.units), kCommonPhrases.units, av_Say);
  const std::size_t active = ActiveUnits(av_Plan);
  if (active < av_Plan.units.size()) text = av_Say.Text(kValues.some_active, {text, std::to_string(active)});
  return text + ", " + CountText(std::ssize(av_Plan.relays), kStationsSays.relays, av_Say);
}

std::string ScheduleText(const SetupPlan& av_Plan, const Phrases& av_Say) {
  std::string text =
      av_Plan.automatic ? av_Say.Text(kValues.every, {av_Plan.interval}) : av_Say.Text(kValues.when_asked);
  if (av_Plan.at_log_on) text += ", " + av_Say.Text(kValues.at_log_on);
  if (av_Plan.goes_on) text += ", " + av_Say.Text(kValues.goes_on);
  return text;
}

std::string TablesText(const SetupPlan& av_Plan, const Phrases& av_Say) {
  if (!av_Plan.tables_folder.empty()) return av_Plan.tables_folder;
  return av_Say.Text(av_Plan.tables_are_set ? kValues.tables_as_set : kValues.no_tables);
}

std::string ServerText(const SetupPlan& av_Plan, const Phrases& av_Say) {
  if (av_Plan.server.empty()) return av_Say.Text(kValues.none);
  const std::string units = CountText(static_cast<std::int64_t>(SentUnits(av_Plan)), kCommonPhrases.units, av_Say);
  return av_Plan.server + ", " + av_Say.Text(av_Plan.encrypted ? kValues.encrypted : kValues.not_encrypted) + ", " +
         av_Say.Text(av_Plan.sends_calibrated ? kValues.calibrated_files : kValues.raw_files, {units});
}

/// The sentences of what is not done, as they are found.
class Sentences {
 public:
  explicit Sentences(const Phrases& say) : say_(say) {}

  void Add(const Phrase& phrase) { found.push_back(say_.Text(phrase)); }
  void Add(const Phrase& phrase, std::initializer_list<std::string_view> values) {
    found.push_back(say_.Text(phrase, values));
  }
  /// Adds what was not tried, or went wrong.
  void AddTried(const std::optional<SetupAnswer>& answer, const Phrase& not_tried) {
    if (!answer) {
      Add(not_tried);
    } else if (!answer->well) {
      found.push_back(answer->text);
    }
  }

  std::vector<std::string> found;

 private:
  const Phrases& say_;
};

/// The active units whose clocks nobody looked at, where one was looked at; the first few by name.
std::string OthersThanAsked(const SetupPlan& av_Plan, const SetupTried& av_Tried) {
  constexpr std::size_t kMostNamed = 5;
  std::string names;
  std::size_t count = 0;
  for (std::size_t row = 1; av_Tried.clock && row <= av_Plan.units.size(); ++row) {
    const SetupUnit& unit = av_Plan.units[row - 1];
    if (row == av_Tried.clock->unit || !unit.active || unit.get_from != kFromRadio) continue;
    if (++count <= kMostNamed) names += (names.empty() ? "" : ", ") + unit.name;
  }
  return count > kMostNamed ? names + ", ..." : names;
}

/// The name of the unit that was asked for its clock.
std::string AskedIn(const SetupPlan& av_Plan, const SetupTried& av_Tried) {
  const std::size_t row = av_Tried.clock ? av_Tried.clock->unit : 0;
  return row >= 1 && row <= av_Plan.units.size() ? std::string(Trim(av_Plan.units[row - 1].name)) : std::string();
}

/// What a unit's clock shows is told with the unit's name.
void AddClock(Sentences& av_Sentences, const SetupPlan& av_Plan, const SetupTried& av_Tried) {
  const std::string asked = AskedIn(av_Plan, av_Tried);
  if (asked.empty() || av_Tried.clock->well) {
    av_Sentences.AddTried(av_Tried.clock, kOpen.clock_not_asked);
  } else {
    av_Sentences.Add(kOpen.of_unit, {asked, av_Tried.clock->text});
  }
  const std::string others = OthersThanAsked(av_Plan, av_Tried);
  if (!others.empty()) av_Sentences.Add(kOpen.other_clocks, {asked, others});
}

void AddCollecting(Sentences& av_Sentences, const SetupPlan& av_Plan, const SetupTried& av_Tried) {
  if (av_Plan.device.empty()) {
    av_Sentences.Add(kOpen.no_device);
  } else {
    av_Sentences.AddTried(av_Tried.port, kOpen.port_not_tested);
  }
  if (av_Plan.units.empty()) {
    av_Sentences.Add(kOpen.no_unit);
  } else if (ActiveUnits(av_Plan) == 0) {
    av_Sentences.Add(kOpen.none_active);
  } else if (!av_Plan.device.empty()) {
    AddClock(av_Sentences, av_Plan, av_Tried);
  }
  if (av_Plan.tables_folder.empty() && !av_Plan.tables_are_set) av_Sentences.Add(kOpen.no_tables);
}

void AddUnattended(Sentences& av_Sentences, const SetupPlan& av_Plan) {
  if (!av_Plan.automatic) {
    av_Sentences.Add(kOpen.not_automatic);
  } else if (!av_Plan.at_log_on) {
    av_Sentences.Add(kOpen.not_started);
  }
  if (!av_Plan.goes_on) av_Sentences.Add(kOpen.stops);
}

void AddDelivery(Sentences& av_Sentences, const SetupPlan& av_Plan, const SetupTried& av_Tried) {
  if (!av_Plan.server.empty()) {
    av_Sentences.AddTried(av_Tried.server, kOpen.server_not_tried);
    if (SentUnits(av_Plan) == 0) av_Sentences.Add(kOpen.none_sent);
    if (!av_Plan.encrypted && !av_Plan.anonymous) av_Sentences.Add(kOpen.in_the_clear);
    const bool has_tables = !av_Plan.tables_folder.empty() || av_Plan.tables_are_set;
    if (av_Plan.sends_calibrated && !has_tables) av_Sentences.Add(kOpen.none_calibrated);
  }
  if (av_Plan.backup_folder.empty()) {
    av_Sentences.Add(kOpen.no_backup);
  } else {
    av_Sentences.AddTried(av_Tried.backup, kOpen.backup_not_tried);
  }
}

}  // namespace

std::vector<std::pair<std::string, std::string>> SummaryOf(const SetupPlan& av_Plan, const Phrases& av_Phrases) {
  const std::string none = av_Phrases.Text(kValues.none);
  const std::string port = " (COM" + std::to_string(av_Plan.port) + ")";
  return {{av_Phrases.Text(kHeads.base_station), av_Plan.device.empty() ? none : av_Plan.device + port},
          {av_Phrases.Text(kHeads.stations), StationsText(av_Plan, av_Phrases)},
          {av_Phrases.Text(kHeads.data_folder), av_Plan.data_folder},
          {av_Phrases.Text(kHeads.tables), TablesText(av_Plan, av_Phrases)},
          {av_Phrases.Text(kHeads.download), ScheduleText(av_Plan, av_Phrases)},
          {av_Phrases.Text(kHeads.server), ServerText(av_Plan, av_Phrases)},
          {av_Phrases.Text(kHeads.backup), av_Plan.backup_folder.empty() ? none : av_Plan.backup_folder}};
}

std::vector<std::string> NotDone(const SetupPlan& av_Plan, const SetupTried& av_Tried, const Phrases& av_Phrases) {
  Sentences sentences(av_Phrases);
  AddCollecting(sentences, av_Plan, av_Tried);
  AddUnattended(sentences, av_Plan);
  AddDelivery(sentences, av_Plan, av_Tried);
  return std::move(sentences.found);
}

std::vector<Phrase> SetupSummaryPhrases() {
  std::vector<Phrase> all = PhrasesIn(kValues);
  for (const auto& more : {PhrasesIn(kHeads), PhrasesIn(kOpen)}) all.insert(all.end(), more.begin(), more.end());
  return all;
}

}  // namespace corvane
