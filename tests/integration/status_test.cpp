// Drives corvanectl status, health and note over histories, and hands what they print to the programs that read it.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <regex>
#include <string>

#include "posix/local_clock.h"
#include "sqlite/sqlite_history_store.h"
#include "state/link_state.h"
#include "support/child.h"

namespace corvane::test {
namespace {

const std::string kHostile = "a\"b\\c\x01\x1b[2J|{}\n\xff\xe2\x80\xa8\xc2\x9b";

class StatusTest : public testing::Test {
 protected:
  void Save(const HistoryContents& contents) const {
    SqliteHistoryStore store;
    std::string set_aside;
    ASSERT_TRUE(store.OpenToWrite(home_.Name("history.db"), set_aside).ok());
    const Status written = store.Write(contents);
    ASSERT_TRUE(written.ok()) << written.text();
  }
  int Run(Words arguments) {
    arguments.insert(arguments.begin(), {CORVANECTL_PATH, "--home", home_.path()});
    Child program(arguments);
    const int status = program.Wait();
    output_ = program.output();
    return status;
  }
  /// What a program says of the status in one of its forms; it must end well.
  std::string Says(const std::string& form, const std::string& reader) {
    Child program({"bash", "-c",
                   "set -o pipefail; " CORVANECTL_PATH " --home " + home_.path() + " status " + form + " | " + reader});
    EXPECT_EQ(program.Wait(), 0) << reader << "\n" << program.output();
    return program.output();
  }
  [[nodiscard]] bool Printed(const std::string& text) const { return output_.find(text) != std::string::npos; }

  TempFolder home_;
  Moment now_ = LocalClock().NowUtc();
  std::string output_;
};

std::string Contents(const std::filesystem::path& file) {
  std::ifstream stream(file);
  return {std::istreambuf_iterator<char>(stream), {}};
}

/// One unit of each state, with all that can be said of a unit.
HistoryContents FullHistory(Moment now, const std::string& text) {
  HistoryContents history;
  const auto ago = [now](std::int64_t seconds) { return Moment{now.utc - seconds, now.ahead}; };
  NetworkRecord network;
  network.version = text;
  network.interval = 10800;
  history.network = network;
  history.rounds = {{1, RoundKind::Download, RoundStart::BySchedule, true, ago(9000), ago(8000), 5, 3, 40, 2, text}};
  for (std::int32_t i = 1; i <= 5; ++i) {
    UnitRecord unit{i, 1, i, text, i, text, text, i < 4 ? text : "", 7, i != 5, 0, true, ago(9'000'000), ago(9000), {}};
    if (i == 4) unit.added = ago(60);
    history.units.push_back(unit);
    for (std::int64_t round = 6; i != 4 && round > 0; --round) {
      ContactRecord contact;
      contact.unit = i;
      contact.round = 10 - round;
      contact.at = ago(round * 10800);
      contact.command = kDownload;
      contact.tries = 2;
      contact.outcome = i == 1 ? Outcome::Silent : Outcome::Answered;
      contact.error = text;
      contact.last_reading = now.Local() - (i == 2 ? 864'000 : 600);
      contact.battery = 12.25;
      contact.clock_offset = 5000;
      contact.rejected = 1;
      history.contacts.push_back(contact);
    }
    for (std::int64_t day = 9; i != 4 && day >= 0; --day) {
      DayRecord record;
      record.unit = i;
      record.day = now.Local().Midnight() - day * kSecondsPerDay;
      record.expected = 96;
      record.stored = 95;
      record.battery = 12 + 0.01 * static_cast<double>(day);
      history.days.push_back(record);
    }
    history.deliveries.push_back({i, Target::Server, text, ago(90), ago(90000), text, 5, now.Local() - 90000});
  }
  history.gaps = {{1, now.Local() - 90000, now.Local() - 86400, 3, GapState::Found, 1, ago(9), ago(9)}};
  history.notes = {{2, text, ago(9), {}}};
  return history;
}

TEST_F(StatusTest, IsReadByTheProgramsItIsMeantFor) {
  const auto empty = [](HistoryContents&) {};
  struct Row {
    const char* name;
    std::function<void(HistoryContents&)> fill;
    int check;
    const char* states;  ///< of the network and the units, as jq reads them
  };
  const Row rows[] = {
      {"no units", empty, 3, "empty"},
      {"all states", [this](HistoryContents& history) { history = FullHistory(now_, kHostile); }, 2,
       "critical silent late trouble new off"},
      {"nobody collects",
       [this](HistoryContents& history) {
         history = FullHistory(now_, "x");
         history.network->automatic = true;
         history.network->next_download = now_.Local() - 4000;
       },
       2, "nobody collects silent late trouble new off"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    std::filesystem::remove(home_.Name("history.db"));
    HistoryContents history;
    row.fill(history);
    Save(history);
    EXPECT_EQ(Says("--json", "python3 " CHECK_STATUS " " STATUS_SCHEMA), "");
    EXPECT_EQ(Says("--json", "jq -j '[.state, .units[].state] | join(\" \")'"), row.states);
    EXPECT_EQ(Says("--metrics", "promtool check metrics"), "");
    EXPECT_EQ(Run({"status", "--check"}), row.check);
    EXPECT_EQ(std::count(output_.begin(), output_.end(), '\n'), 1) << output_;
    for (const char* form : {"--check", "--metrics", "--quiet"}) {
      static_cast<void>(Run({"status", form}));
      EXPECT_FALSE(Printed("\x1b") || Printed("\x01") || Printed("\xff")) << output_;
    }
  }
}

TEST_F(StatusTest, PrintsTheMetricsThatTheGuideNames) {
  Save(FullHistory(now_, "x"));
  static_cast<void>(Run({"status", "--metrics"}));
  const auto docs = std::filesystem::path(STATUS_SCHEMA).parent_path().parent_path();
  for (const char* page : {"guide/administration.md", "guide/de/administration.md"}) {
    const std::string text = Contents(docs / page);
    const std::regex metric("expr:.*?(corvane_[a-z_]+)");
    int named = 0;
    for (auto match = std::sregex_iterator(text.begin(), text.end(), metric); match != std::sregex_iterator();
         ++match) {
      EXPECT_TRUE(Printed("# TYPE " + (*match)[1].str() + " ")) << page << ": " << (*match)[1];
      ++named;
    }
    EXPECT_GE(named, 4) << page;
  }
}

TEST_F(StatusTest, TellsOfOneUnitAndKeepsNotes) {
  Save(FullHistory(now_, "x"));
  EXPECT_EQ(Run({"status", "--check", "--unit", "5"}), 0) << output_;
  EXPECT_EQ(Run({"status", "--check", "--unit", "77"}), 3) << output_;
  EXPECT_EQ(Run({"status", "--unit", "77"}), 2) << output_;
  EXPECT_EQ(Run({"health", "1"}), 0) << output_;
  for (const char* part :
       {"No answer in the last 6 rounds", "through relay x; of 2 other units reached so 2 answered",
        "12.25 V, falling by 10.0 mV a day", "an antenna and its cable: the unit is silent", "3 between"}) {
    EXPECT_TRUE(Printed(part)) << part << "\n" << output_;
  }
  EXPECT_EQ(Run({"note", "1", " on loan ", "--until", "2999-12-31"}), 0) << output_;
  EXPECT_EQ(Run({"status"}), 0);
  EXPECT_TRUE(Printed("x: Note: on loan\n")) << output_;
  EXPECT_EQ(Run({"note", "1", "over", "--until", "2001-01-01"}), 2);
  EXPECT_EQ(Run({"note", "1", ""}), 0);
  static_cast<void>(Run({"status"}));
  EXPECT_FALSE(Printed("on loan") || Printed("over")) << output_;
}

TEST_F(StatusTest, SaysWhatIsWrongWithAHistory) {
  const auto refuses = [this](const char* says) {
    for (const Words& command :
         {Words{"status"}, Words{"status", "--json"}, Words{"health", "1"}, Words{"note", "1", "x"}}) {
      EXPECT_EQ(Run(command), 3) << output_;
      EXPECT_TRUE(Printed(says)) << output_;
    }
    EXPECT_EQ(Run({"status", "--check"}), 3);
    EXPECT_EQ(output_.find("UNKNOWN - the history "), 0U) << output_;
  };
  refuses("is not there yet");
  EXPECT_FALSE(std::filesystem::exists(home_.Name("history.db")));
  home_.Write("history.db", std::string(9000, 'x'));
  refuses("is damaged");
  EXPECT_EQ(home_.Read("history.db").size(), 9000U);
}

TEST_F(StatusTest, KnowsWhoHoldsTheFolder) {
  HistoryContents history = FullHistory(now_, "x");
  history.network->automatic = true;
  history.network->open = true;
  history.network->alive = Moment{now_.utc - 3600, 0};
  history.network->next_download = now_.Local() + 4000;
  Save(history);
  const std::string lock = home_.Write("corvane.lock", "");
  EXPECT_EQ(Run({"status", "--check"}), 2);
  EXPECT_TRUE(Printed("Nobody collects")) << output_;
  EXPECT_EQ(Run({"status"}), 0);
  EXPECT_TRUE(Printed(" would do it\n5 units: 1 silent, ")) << output_;
  Child holder({"flock", lock, "sh", "-c", "echo held; exec sleep 60"});
  ASSERT_TRUE(holder.Shows("held"));
  EXPECT_EQ(Run({"status", "--check"}), 2);
  EXPECT_FALSE(Printed("Nobody collects")) << output_;
}

}  // namespace
}  // namespace corvane::test
