#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "history/alert_book.h"
#include "history/alert_message.h"
#include "history/alerts.h"
#include "support/lower.h"

namespace corvane::test {
namespace {

constexpr std::int64_t kHour = 3600;
const DateTime kStart = DateTime::FromCivil(2026, 6, 30, 6);

/// A network of three units in virtual time: A and B behind the relay "Hill", C by the direct path.
///
/// A letter a unit: fine, silent, late, battery, missing readings, lost 5 readings, Lost 9, delivery fails, off, quiet
/// (silent with a note), hand-held and late.
NetworkStatus StatusAt(DateTime local, const std::string& letters, std::int64_t round) {
  NetworkStatus status;
  status.now = Moment::At((local.seconds() - 25569 * kSecondsPerDay) - 2 * kHour, local);
  status.last.key = round;
  status.last.automatic = true;
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

struct Step {
  std::int64_t minutes;     ///< since the last
  std::string letters;      ///< of the units; behind a blank: "n" nobody collects, "e" ended early, "." no round ended,
                            ///< "!" the command fails, "w" the history cannot be written, "u" nor read
  const char* events = "";  ///< that are told
};
struct Story {
  const char* name;
  std::vector<Step> steps;
  std::optional<std::int64_t> digest_at = {};
};

const Story kStories[] = {
    {"all is well", {{0, "fff"}, {60, "fff"}}},
    {"raised once, cleared behind two good rounds",
     {{0, "ffs", "raised silent C"}, {60, "ffs"}, {60, "fff"}, {60, "fff", "cleared silent C"}, {60, "fff"}}},
    {"one good round ends nothing",
     {{0, "ffs", "raised silent C"}, {60, "fff"}, {60, "ffs"}, {60, "fff"}, {60, "fff", "cleared silent C"}}},
    {"repeated a day after it was told, behind a round that is early too",
     {{0, "ffl", "raised late C"},
      {720, "ffl"},
      {715, "ffl", "repeated late C"},
      {1435, "ffl ."},
      {5, "ffl .", "repeated late C"}}},
    {"a command that fails has told nothing",
     {{0, "ffs !", "raised silent C"},
      {60, "ffs", "raised silent C"},
      {60, "fff"},
      {60, "fff !", "cleared silent C"},
      {60, "fff", "cleared silent C"}}},
    {"what nobody was told of ends without a word", {{0, "ffs !", "raised silent C"}, {60, "fff"}, {60, "fff"}}},
    {"all behind a relay are one event",
     {{0, "ssf", "raised silent Hill (12) AB"}, {60, "ssf"}, {60, "fff"}, {60, "fff", "cleared silent Hill (12) AB"}}},
    {"who stays silent behind a relay that is back is told of",
     {{0, "ssf", "raised silent Hill (12) AB"},
      {60, "sff"},
      {60, "sff", "raised silent A; cleared silent Hill (12) AB"}}},
    {"a relay takes over from its units", {{0, "sff", "raised silent A"}, {60, "ssf", "raised silent Hill (12) AB"}}},
    {"one unit behind a relay is no relay", {{0, "osf", "raised silent B"}}},
    {"a unit with a note is silent in peace",
     {{0, "ffq"}, {60, "ffs", "raised silent C"}, {60, "ffq"}, {60, "fff"}, {60, "fff"}}},
    {"a unit that is switched off ends without a word", {{0, "ffs", "raised silent C"}, {60, "ffo"}, {60, "fff"}}},
    {"several causes, the gravest first",
     {{0, "mbs n", "raised nobody collects; raised silent C; raised missing A; raised battery B"}}},
    {"a silent unit's other causes wait",
     {{0, "ffb", "raised battery C"}, {60, "ffs", "raised silent C"}, {60, "ffs"}}},
    {"late and then silent are two things",
     {{0, "ffl", "raised late C"},
      {60, "ffs", "raised silent C"},
      {60, "fff"},
      {60, "fff", "cleared silent C; cleared late C"}}},
    {"a unit that nobody asks is good when it is good",
     {{0, "ffh", "raised late C"}, {60, "fff"}, {60, "fff", "cleared late C"}}},
    {"lost readings are news once, and more of them again",
     {{0, "ffx", "raised lost C"},
      {1500, "ffx"},
      {60, "ffX", "raised lost C"},
      {60, "ffx"},
      {60, "ffX", "raised lost C"},
      {60, "fff"},
      {60, "fff"}}},
    {"a round that ended early, and files that do not arrive",
     {{0, "ffd e", "raised round; raised delivery C"},
      {60, "fff ."},
      {60, "fff"},
      {60, "fff", "cleared round; cleared delivery C"}}},
    {"nobody collects, seen without a round; cleared by rounds only",
     {{0, "fff .n", "raised nobody collects"},
      {60, "fff ."},
      {60, "fff ."},
      {60, "fff"},
      {60, "fff", "cleared nobody collects"}}},
    {"the history",
     {{0, "ffs", "raised silent C"}, {60, "fff wu.", "raised history"}, {60, "ffs"}, {60, "ffs", "cleared history"}}},
    {"a digest a day, whatever is wrong; late when nobody looked in time",
     {{0, "fff ."},
      {60, "fff .", "digest"},
      {60, "fff ."},
      {1320, "fff ."},
      {60, "fff .!", "digest"},
      {10, "fff .", "digest"},
      {1430, "ffs !", "raised silent C; digest C"},
      {10, "ffq .", "digest C"},
      {4320, "fff", "digest"}},
     7 * kHour},
    {"a clock that was ahead holds nothing back",
     {{5'256'000, "ffs", "raised silent C"}, {-5'256'000, "ffs"}, {1500, "ffs", "repeated silent C"}}},
};

TEST(AlertBook, TellsOnceWhatIsWrong) {
  for (const Story& story : kStories) {
    SCOPED_TRACE(story.name);
    std::vector<AlertRecord> standing;
    DateTime now = kStart;
    std::int64_t round = 0;
    for (const Step& step : story.steps) {
      const auto has = [&step](char flag) { return step.letters.find(flag, 4) != std::string::npos; };
      now = now + step.minutes * 60;
      NetworkStatus status = StatusAt(now, step.letters, has('.') ? round : ++round);
      if (has('n')) status.nobody_collects = "no program";
      if (has('e')) status.last.ending = "no port";
      const AlertView view{status, has('w') ? "disk" : "", story.digest_at, !has('u'), !has('.')};
      AlertStep look = LookAtAlerts(standing, view);
      standing = look.standing;
      const auto& events = look.events;
      EXPECT_EQ(Summary(events), step.events) << GeneralDate(now) << " " << step.letters;
      EXPECT_EQ(!events.empty() && events.back().kind == AlertKind::Round, view.round_ended);
      std::vector<AlertRecord> told;
      for (const AlertEvent& event : events) told.insert(told.end(), event.records.begin(), event.records.end());
      if (!has('!')) standing = AfterTelling(standing, told, status.now).standing;
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
