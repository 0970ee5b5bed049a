#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "base/text.h"
#include "history/alert_book.h"
#include "history/alert_message.h"
#include "history/alerts.h"
#include "support/lower.h"

namespace corvane::test {
namespace {

constexpr std::int64_t kHour = 3600;
const DateTime kStart = DateTime::FromCivil(2026, 6, 30, 6);

/// A network of three units in virtual time: A and B behind the relay "Hill", C by the direct path.
/// The letters: tests/data/alert_stories.txt.
NetworkStatus StatusAt(DateTime local, const std::string& letters, std::int64_t round) {
  NetworkStatus status;
  status.now = Moment::At((local.seconds() - 25569 * kSecondsPerDay) - 2 * kHour, local);
  status.last.key = round;
  status.last.start = RoundStart::BySchedule;
  status.last.began = {status.now.utc - 600, status.now.ahead};
  status.last.ended = {status.now.utc - 1, status.now.ahead};
  status.sentence = "as it is";
  status.counts.assign(6, 0);
  for (std::size_t i = 0; i < 3; ++i) {
    const char letter = letters[i];
    UnitStatus unit;
    unit.key = static_cast<std::int64_t>(i) + 1;
    unit.name = std::string(1, static_cast<char>('A' + i));
    if (i < 2) unit.relay = "Hill";
    unit.relay_id = 12;
    unit.state = letter == 'f' ? UnitState::Fine : UnitState::Trouble;
    if (letter == 's' || letter == 'q') unit.state = UnitState::Silent;
    if (letter == 'l' || letter == 'h') unit.state = UnitState::Late;
    if (letter == 'o') unit.state = UnitState::Off;
    if (unit.state != UnitState::Fine) unit.why = "because";
    if (letter == 'b') unit.troubles = {{TroubleKind::Battery, "10 V"}};
    unit.missing = letter == 'm' || letter == 'x' ? 5 : letter == 'X' ? 9 : 0;
    unit.lost = letter == 'x' || letter == 'X' ? unit.missing : 0;
    if (letter == 'g' || letter == 'G') unit.missing = unit.given_up = 5;
    if (letter == 'g') unit.given_up_lately = 5;
    if (letter == 'd') unit.delivery_problem = "no server";
    unit.silenced = letter == 'q';
    unit.asked = letter == 'h' ? 0 : 20;
    if (unit.state != UnitState::Silent && letter != 'h') unit.last_answered = status.last.began;
    status.units.push_back(unit);
  }
  return status;
}

std::string Summary(const std::vector<AlertEvent>& events) {
  std::string text;
  for (const AlertEvent& event : events) {
    if (event.kind == AlertKind::Round) continue;
    text += (text.empty() ? "" : "; ") + std::string(NameOf(event.kind));
    if (!event.cause.empty()) text += " " + event.cause;
    if (!event.relay.empty()) text += " " + event.relay;
    text += event.units.empty() ? "" : " ";
    for (const AlertUnit& unit : event.units) text += unit.status->name;
  }
  return text;
}

/// The stories of the data file: their lines, by name.
std::vector<std::pair<std::string, std::vector<std::string>>> Stories() {
  std::vector<std::pair<std::string, std::vector<std::string>>> stories;
  std::ifstream file(TEST_DATA_DIR "/alert_stories.txt");
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("== ")) {
      stories.push_back({line, {}});
    } else if (!line.empty() && line[0] != '#') {
      stories.back().second.push_back(line);
    }
  }
  return stories;
}

TEST(AlertBook, TellsOnceWhatIsWrong) {
  const auto stories = Stories();
  EXPECT_GT(stories.size(), 20U);
  for (const auto& [name, lines] : stories) {
    std::vector<AlertRecord> standing;
    DateTime now = kStart;
    std::int64_t round = 0;
    std::set<AlertKey> doubtful;
    for (const std::string& line : lines) {
      SCOPED_TRACE(name + "\n" + line);
      std::istringstream words(line.substr(0, line.find(':')));
      std::int64_t minutes = 0;
      std::string letters;
      std::string flags;
      words >> minutes >> letters >> flags;
      const auto has = [&flags](char flag) { return flags.find(flag) != std::string::npos; };
      now = now + minutes * 60;
      NetworkStatus status = StatusAt(now, letters, has('.') ? round : ++round);
      if (has('n')) status.nobody_collects = "no program";
      if (has('e')) status.last.ending = "no port";
      const AlertView view{status,
                           has('w') ? "disk" : "",
                           name.ends_with("(digest)") ? std::optional(7 * kHour) : std::nullopt,
                           !has('u'),
                           !has('.'),
                           doubtful};
      const AlertStep look = LookAtAlerts(standing, view);
      standing = look.standing;
      EXPECT_EQ(Summary(look.events), Trim(line.substr(line.find(':') + 1)));
      EXPECT_EQ(!look.events.empty() && look.events.back().kind == AlertKind::Round, view.round_ended);
      std::vector<AlertRecord> told;
      for (const AlertEvent& event : look.events) told.insert(told.end(), event.records.begin(), event.records.end());
      if (has('k')) std::ranges::transform(told, std::inserter(doubtful, doubtful.end()), KeyOf);
      if (!has('!') && !has('k')) standing = AfterTelling(standing, told, status.now).standing;
    }
  }
}

struct FakeRunner : CommandRunner {
  [[nodiscard]] bool Running() const override { return on_end != nullptr; }
  void Start(const std::string& command, const std::string& input, std::int64_t seconds,
             std::function<void(const CommandEnding&)> on_ended) override {
    EXPECT_EQ(command + " " + std::to_string(seconds), "tell 60");
    const auto begin = input.find("\"subject\": \"") + 12;
    told += "[" + input.substr(begin, input.find("\",\n", begin) - begin) + "]";
    on_end = std::move(on_ended);
  }
  void Stop() override { on_end = nullptr; }
  void End(const CommandEnding& ending) { std::exchange(on_end, nullptr)(ending); }
  [[nodiscard]] std::string Told() { return std::exchange(told, {}); }

  std::function<void(const CommandEnding&)> on_end;
  std::string told;
};

struct AlertsTest : testing::Test {
  AlertsTest() {
    lower.form.Txt_AlertCommand.SetText("tell");
    lower.form.Txt_DigestAt.SetText("7:00");
    lower.loop.SetNow(kStart);
    alerts.read_records = [this] { return kept; };
    alerts.write_records = [this](const std::vector<AlertRecord>& records) { written = records; };
    alerts.work_out_status = [this] { return std::optional(Now("fff")); };
    alerts.history_problem = [] { return ""; };
  }
  NetworkStatus Now(const std::string& letters, std::int64_t round = 1) {
    NetworkStatus status = StatusAt(lower.loop.Now(), letters, round);
    status.nobody_collects = nobody_collects;
    status.last_round = "went well";
    return status;
  }

  Lower lower;
  FakeRunner runner;
  std::vector<AlertRecord> kept, written;
  std::string nobody_collects;
  Alerts alerts{{&runner, lower.form, lower.loop, lower.trace}};
};

TEST_F(AlertsTest, OneCommandAtATimeAndTheRestIsMerged) {
  alerts.AfterRound(Now("fff", 1));
  EXPECT_EQ(runner.Told(), "[Round: went well]");
  alerts.AfterRound(Now("ffs", 2));
  alerts.AfterRound(Now("bfs", 3));
  alerts.OnHeartbeat();
  EXPECT_EQ(runner.Told(), "");
  runner.End({});
  EXPECT_EQ(runner.Told(), "[C is silent (and 1 more)]");
  runner.End({});
  EXPECT_EQ(written.size(), 2);
  EXPECT_FALSE(written[0].told.IsNone());
  alerts.AfterRound(Now("bfs", 3));
  EXPECT_EQ(runner.Told(), "") << "that round was told";
  lower.form.Txt_AlertCommand.SetText("");
  alerts.AfterRound(Now("sss", 4));
  alerts.OnHeartbeat();
  EXPECT_EQ(runner.Told(), "");
}

TEST_F(AlertsTest, AFailureIsSaidAndWhatItHadToTellIsToldBehindTheNextRound) {
  alerts.AfterRound(Now("ffs", 1));
  runner.End({Status(), 3, "no\nserver\n"});
  EXPECT_EQ(lower.form.Lbl_Status.text(),
            "The alert command failed: exit status 3. What it had to tell is told again behind the next round");
  EXPECT_NE(lower.Log().find("Alert> server"), std::string::npos);
  alerts.OnHeartbeat();
  lower.loop.Advance(59 * 60'000);
  alerts.OnHeartbeat();
  EXPECT_EQ(runner.Told(), "[C is silent]");
  lower.loop.Advance(60'000);
  alerts.OnHeartbeat();
  EXPECT_EQ(runner.Told(), "[as it is]") << "without a round, an hour later; C is fine by now";
  runner.End({Status(ETIMEDOUT, "too slow"), 143, ""});
  alerts.AfterRound(Now("fff", 2));
  EXPECT_EQ(runner.Told(), "[as it is]") << "the digest, again";
}

TEST_F(AlertsTest, AProgramThatStartsLateSaysSoAndKnowsWhatItHasTold) {
  nobody_collects = "The round of 6:00 has not begun";
  kept.push_back({"silent", 3, "", Now("ffs").now, Now("ffs").now, {}, 0});
  alerts.work_out_status = [this] { return std::optional(Now("ffs")); };
  alerts.OnHeartbeat();
  EXPECT_EQ(runner.Told(), "[Nobody collects. The round of 6:00 has not begun]") << "and nothing of C, nor of a round";
  runner.End({});
  lower.loop.Advance(3600'000);
  alerts.OnHeartbeat();
  EXPECT_EQ(runner.Told(), "[as it is]") << "the digest";
}

}  // namespace
}  // namespace corvane::test
