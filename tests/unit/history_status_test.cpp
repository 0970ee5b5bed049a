#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>

#include "history/network_status.h"
#include "history/status_headline.h"
#include "support/network_history.h"

namespace corvane {
namespace {

using namespace test;

struct NetworkRow {
  const char* name;
  std::function<void(NetworkHistory&)> change;
  Holder holder;
  NetworkLetter letter;
  const char* says;  ///< a part of the sentence
};

TEST(NetworkStatus, SaysWhetherAnybodyCollects) {
  using enum NetworkLetter;
  using enum Holder;
  const auto missed = [](NetworkHistory& f) { f.network().next_download = kLocal - 181; };
  const auto round = [](NetworkHistory& f, std::int64_t ago, bool ended) {
    f.history.rounds.push_back(
        {7, RoundKind::Download, RoundStart::BySchedule, true, Ago(ago), ended ? Ago(1) : Moment(), 1, 1, 4, 0, ""});
  };
  const NetworkRow rows[] = {
      {"all well", [](NetworkHistory&) {}, Somebody, Well, "1 unit: 1 fine"},
      {"no units", [](NetworkHistory& f) { f.history.units.clear(); }, Somebody, Empty, "no units"},
      {"nobody holds the folder", [](NetworkHistory&) {}, Nobody, NobodyCollects, "no program is running"},
      {"by hand", [](NetworkHistory& f) { f.network().automatic = false, f.network().open = false; }, Nobody, Well, ""},
      {"the round is due", [](NetworkHistory& f) { f.network().next_download = kLocal - 180; }, Somebody, Well, ""},
      {"the round was missed", missed, Somebody, NobodyCollects, "The round of 30 Jun 2026 11:56 has not begun"},
      {"a round began", [&](NetworkHistory& f) { missed(f), round(f, 100, true); }, Somebody, Well, ""},
      {"one of the future began", [&](NetworkHistory& f) { missed(f), round(f, -9000, true); }, Somebody,
       NobodyCollects, ""},
      {"one before is under way", [&](NetworkHistory& f) { missed(f), round(f, 9000, false); }, Somebody, Well, ""},
      {"one was killed days ago", [&](NetworkHistory& f) { missed(f), round(f, 90'000, false); }, Somebody,
       NobodyCollects, ""},
      {"one was killed", [&](NetworkHistory& f) { missed(f), round(f, 9000, false), f.network().alive = Ago(1801); },
       Unknown, NobodyCollects, "not been heard of"},
      {"not known, alive", [](NetworkHistory&) {}, Unknown, Well, ""},
      {"not known, ended in order", [](NetworkHistory& f) { f.network().open = false; }, Unknown, NobodyCollects, ""},
      {"no interval", [](NetworkHistory& f) { f.network().interval.reset(); }, Somebody, NobodyCollects, "interval"},
      {"a unit silent", [](NetworkHistory& f) { f.Silence(); }, Somebody, Critical, "1 unit: 1 silent"},
      {"silent, with a note",
       [](NetworkHistory& f) {
         f.Silence(), f.history.notes.push_back({1, "in repair", Ago(9), {}});
       },
       Somebody, Well, ""},
      {"the note is over",
       [](NetworkHistory& f) {
         f.Silence(), f.history.notes.push_back({1, "in repair", Ago(9), kLocal - 1});
       },
       Somebody, Critical, ""},
      {"trouble", [](NetworkHistory& f) { f.last().rejected = 1; }, Somebody, Warning, "1 trouble"},
      {"no port", [&](NetworkHistory& f) { round(f, 9000, true), f.Contact(1, 0, Outcome::NoPort).round = 7; },
       Somebody, Warning, "port"},
      {"a file not sent",
       [](NetworkHistory& f) {
         f.history.deliveries.push_back({1, Target::Server, "", {}, {}, "12007", 0, {}});
       },
       Somebody, Warning, "1 file has not got"},
  };
  for (const NetworkRow& row : rows) {
    SCOPED_TRACE(row.name);
    NetworkHistory fixture;
    row.change(fixture);
    const NetworkStatus status = fixture.Status(row.holder);
    EXPECT_EQ(NameOf(status.letter), NameOf(row.letter)) << status.sentence;
    EXPECT_NE(status.sentence.find(row.says), std::string::npos) << status.sentence;
  }
}

TEST(NetworkStatus, PutsTheWorstFirstAndNamesTheirRelay) {
  NetworkHistory f;
  f.Add("Gone", "Hill").position = 0;
  const char* const relays[] = {"Hill", "Hill", "", "", "", "Dale"};
  for (std::int64_t unit = 3; unit <= 8; ++unit) {
    f.Add("U" + std::to_string(unit), relays[unit - 3]);
    f.Contact(unit, 2, Outcome::Silent);
    f.Contact(unit, 1, Outcome::Silent);
  }
  f.Add("Late");
  f.history.scans.back().last = kLocal - 9 * kHour;
  const NetworkStatus status = f.Status();
  EXPECT_EQ(status.worst_relay, "Hill");
  EXPECT_EQ(status.sentence, "8 units: 6 silent, 1 late, 1 fine; 2 of the silent ones behind relay Hill");
  EXPECT_EQ(HeadlineOf(status),
            "1 of 8 units is fine, 6 are silent, 1 is late; 2 of the silent ones behind relay Hill; next round at "
            "13:00");
  EXPECT_EQ(status.counts, (std::vector<std::int64_t>{0, 0, 6, 1, 0, 1}));
  EXPECT_EQ(status.units.at(0).name, "U3");
  EXPECT_EQ(status.units.back().name, "North");
}

TEST(NetworkStatus, IsToldInOneSentence) {
  const auto add = [](NetworkHistory& f, const char* name, bool fine) {
    UnitRecord& unit = f.Add(name);
    unit.last_answered = Ago(3 * kSecondsPerDay);
    const Outcome outcome = fine ? Outcome::Answered : Outcome::Silent;
    for (std::int64_t back = 2; back > 0; --back) f.Contact(unit.key, back, outcome);
  };
  const std::pair<std::function<void(NetworkHistory&)>, const char*> rows[] = {
      {[](NetworkHistory&) {}, "The unit is fine; next round at 13:00"},
      {[&](NetworkHistory& f) { add(f, "South", true), f.network().next_download = kLocal + kSecondsPerDay; },
       "All 2 units are fine; next round 1 Jul 2026 12:00"},
      {[](NetworkHistory& f) { f.history.units.clear(); }, "There are no units"},
      {[](NetworkHistory& f) { f.unit().active = false, f.network().automatic = false; },
       "No unit is active; no round is planned"},
      {[&](NetworkHistory& f) {
         f.scan().last = kLocal - 11 * kHour;
         add(f, "River", false);
         add(f, "Hill", true);
         f.network().next_download = kLocal - 60;
       },
       "1 of 3 units is fine, River is silent for 3 days, North is late (11 hours); the next round is due"},
      {[](NetworkHistory& f) { f.network().interval.reset(); },
       "Nobody collects. Automatic download is on, and its interval in the settings is none"},
  };
  for (const auto& [change, says] : rows) {
    NetworkHistory fixture;
    change(fixture);
    EXPECT_EQ(HeadlineOf(fixture.Status()), says);
  }
}

}  // namespace
}  // namespace corvane
