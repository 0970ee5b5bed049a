#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "base/format.h"
#include "history/network_status.h"
#include "history/status_headline.h"
#include "history/trend.h"
#include "history/unit_health.h"
#include "history/unit_texts.h"
#include "state/link_state.h"
#include "state/records.h"

namespace corvane {
namespace {

constexpr std::int64_t kHour = 3600;
const DateTime kLocal = DateTime::FromCivil(2026, 6, 30, 12);
const Moment kNow = Moment::At((kLocal.seconds() - 25569 * kSecondsPerDay) - 2 * kHour, kLocal);  // summer, UTC+2

Moment Ago(std::int64_t seconds) {
  return {kNow.utc - seconds, kNow.ahead};
}

/// A network with one unit that is fine, whose last rounds and days can be changed.
struct Fixture {
  HistoryContents history;

  Fixture() {
    NetworkRecord network;
    network.automatic = true;
    network.interval = 3 * kHour;
    network.next_download = kLocal + kHour;
    network.alive = Ago(60);
    network.open = true;
    history.network = network;
    Add("North");
    for (std::int64_t i = 10; i > 0; --i) Contact(1, i, Outcome::Answered);
    for (std::int64_t i = 20; i >= 0; --i) Day(i, 12.5);
  }

  UnitRecord& Add(const std::string& name, const std::string& relay = "") {
    UnitRecord unit;
    unit.key = std::ssize(history.units) + 1;
    unit.unit_id = static_cast<std::int32_t>(unit.key);
    unit.position = unit.unit_id;
    unit.name = name;
    unit.relay = relay;
    unit.active = true;
    unit.get_from = kFromRadio;
    unit.added = Ago(90 * kSecondsPerDay);
    history.units.push_back(unit);
    ScanRecord scan;
    scan.unit = unit.key;
    scan.last = kLocal - kHour;
    scan.period = 900;
    history.scans.push_back(scan);
    return history.units.back();
  }

  /// In the `back`th round from the end, three hours apart.
  ContactRecord& Contact(std::int64_t unit, std::int64_t back, Outcome outcome) {
    ContactRecord contact;
    contact.round = 100 - back;
    contact.unit = unit;
    contact.at = Ago(back * 3 * kHour);
    contact.command = kDownload;
    contact.outcome = outcome;
    history.contacts.push_back(contact);
    return history.contacts.back();
  }

  void Day(std::int64_t back, double battery) {
    DayRecord day;
    day.unit = 1;
    day.day = kLocal.Midnight() - back * kSecondsPerDay;
    day.expected = 96;
    day.stored = 96;
    day.battery = battery;
    history.days.push_back(day);
  }

  void Gap(GapState state, std::int64_t days_ago, std::int64_t missing) {
    const DateTime from = kLocal - days_ago * kSecondsPerDay;
    history.gaps.push_back({1, from, from + kHour, missing, state, 0, {}, {}});
  }

  UnitRecord& unit() { return history.units[0]; }
  ScanRecord& scan() { return history.scans[0]; }
  NetworkRecord& network() { return *history.network; }
  ContactRecord& last() { return history.contacts.back(); }
  ContactRecord& before() { return history.contacts[history.contacts.size() - 2]; }
  void Silence() { last().outcome = before().outcome = Outcome::Silent; }
  [[nodiscard]] NetworkStatus Status(Holder holder = Holder::Somebody) const {
    return WorkOutStatus(history, kNow, holder);
  }
};

struct Row {
  const char* name;
  std::function<void(Fixture&)> change;
  UnitState state;
  const char* why;  ///< a part of it
};

TEST(UnitStatus, HasTheFirstLetterThatApplies) {
  using enum UnitState;
  const auto never = [](Fixture& f) {
    f.scan().last = DateTime();
    f.history.contacts.clear();
  };
  const Row rows[] = {
      {"all well", [](Fixture&) {}, Fine, ""},
      {"not active", [](Fixture& f) { f.unit().active = false, f.Silence(); }, Off, "not active"},
      {"from nowhere", [](Fixture& f) { f.unit().get_from = kFromNone; }, Off, "nowhere"},
      {"just added", [&](Fixture& f) { never(f), f.unit().added = Ago(6 * kHour - 1); }, New, "No reading yet"},
      {"added two intervals ago", [&](Fixture& f) { never(f), f.unit().added = Ago(6 * kHour); }, Late, "ever come"},
      {"new and silent",
       [&](Fixture& f) {
         never(f), f.unit().added = Ago(60), f.Contact(1, 2, Outcome::Silent);
         f.Contact(1, 1, Outcome::Silent);
       },
       New, ""},
      {"one round silent", [](Fixture& f) { f.last().outcome = Outcome::Silent; }, Fine, ""},
      {"two rounds silent", [](Fixture& f) { f.Silence(); }, Silent, "in the last 2 rounds; it has never"},
      {"silent, not asked, silent",
       [](Fixture& f) { f.Silence(), f.Contact(1, 0, Outcome::NotAsked), f.Contact(1, 0, Outcome::NoPort); }, Silent,
       "2 rounds"},
      {"an error reply is no silence", [](Fixture& f) { f.Silence(), f.last().outcome = Outcome::Failed; }, Fine, ""},
      {"silent and late", [](Fixture& f) { f.Silence(), f.scan().last = kLocal - 90 * kSecondsPerDay; }, Silent, ""},
      {"read by hand", [](Fixture& f) { f.unit().get_from = kFromHandHeld, f.Silence(); }, Fine, ""},
      {"two intervals old", [](Fixture& f) { f.scan().last = kLocal - 6 * kHour; }, Fine, ""},
      {"older", [](Fixture& f) { f.scan().last = kLocal - 6 * kHour - 1; }, Late, "is 6 hours old"},
      {"older, clock behind",
       [](Fixture& f) { f.scan().last = kLocal - 6 * kHour - 300, f.last().clock_offset = -300; }, Fine, ""},
      {"older, clock ahead", [](Fixture& f) { f.scan().last = kLocal - 6 * kHour + 300, f.last().clock_offset = 301; },
       Late, ""},
      {"older, clock behind by a contact from the future",
       [](Fixture& f) {
         f.scan().last = kLocal - 6 * kHour - 1, f.last().clock_offset = -300, f.last().at = Ago(-kHour);
       },
       Late, ""},
      {"a later reading was taken out of the file",
       [](Fixture& f) { f.scan().last = kLocal - 9 * kHour, f.before().last_reading = kLocal + kHour; }, Late, ""},
      {"a setting of four intervals",
       [](Fixture& f) { f.scan().last = kLocal - 12 * kHour, f.network().late_after = 4; }, Fine, ""},
      {"a reading a day", [](Fixture& f) { f.scan().last = kLocal - 48 * kHour, f.scan().period = 86400; }, Fine, ""},
      {"no interval", [](Fixture& f) { f.scan().last = kLocal - 24 * kHour, f.network().interval.reset(); }, Fine, ""},
      {"no interval, older", [](Fixture& f) { f.scan().last = kLocal - 24 * kHour - 1, f.network().interval.reset(); },
       Late, ""},
      {"late behind an error",
       [](Fixture& f) {
         f.scan().last = kLocal - 9 * kHour, f.last().outcome = Outcome::Failed, f.last().error = "checksum";
       },
       Late, "its last answer: checksum"},
      {"readings missing",
       [](Fixture& f) {
         f.Gap(GapState::Asked, 400, 7);
         f.Gap(GapState::Found, 2, 5);
       },
       Trouble, "12 readings are missing in 2 gaps since 26 May 2025"},
      {"lost lately", [](Fixture& f) { f.Gap(GapState::Lost, 2, 1); }, Trouble, "1 reading is lost for ever in 1 gap"},
      {"not asked for again lately", [](Fixture& f) { f.Gap(GapState::Asked, 2, 5), f.history.gaps[0].tries = 3; },
       Trouble, "5 readings are missing in 1 gap"},
      {"not asked for again", [](Fixture& f) { f.Gap(GapState::Asked, 31, 5), f.history.gaps[0].tries = 3; }, Fine, ""},
      {"missing long ago, by FTP", [](Fixture& f) { f.Gap(GapState::Found, 31, 5), f.unit().get_from = kFromFtp; },
       Fine, ""},
      {"lost long ago", [](Fixture& f) { f.Gap(GapState::Lost, 31, 5); }, Fine, ""},
      {"clock set, filled",
       [](Fixture& f) {
         f.Gap(GapState::Clock, 3, 5);
         f.Gap(GapState::Filled, 2, 5);
       },
       Fine, ""},
      {"lines rejected", [](Fixture& f) { f.last().rejected = 3; }, Trouble, "3 lines were rejected"},
      {"rejected in a round before", [](Fixture& f) { f.before().rejected = 3; }, Fine, ""},
      {"clock ten minutes ahead", [](Fixture& f) { f.last().clock_offset = 600; }, Fine, ""},
      {"clock more behind", [](Fixture& f) { f.last().clock_offset = -1500; }, Trouble, "clock is 25 minutes behind"},
      {"clock of the winter", [](Fixture& f) { f.last().clock_offset = -kHour - 60, f.unit().added.ahead = kHour; },
       Fine, ""},
      {"clock an hour ahead of it", [](Fixture& f) { f.last().clock_offset = kHour, f.unit().added.ahead = kHour; },
       Trouble, "ahead"},
      {"clock set since", [](Fixture& f) { f.before().clock_offset = -1500, f.last().command = kSetDate; }, Fine, ""},
      {"reading in the future", [](Fixture& f) { f.scan().last = kLocal + 3 * kHour; }, Trouble,
       "3 hours in the future"},
      {"ahead as its clock is", [](Fixture& f) { f.scan().last = kLocal + 500, f.last().clock_offset = 500; }, Fine,
       ""},
      {"battery at the limit", [](Fixture& f) { f.last().battery = 11.5; }, Fine, ""},
      {"battery below", [](Fixture& f) { f.last().battery = 11.49; }, Trouble, "11.49 V, below 11.50 V"},
      {"a channel still",
       [](Fixture& f) { f.scan().still_channel = 4, f.scan().still_since = f.scan().last - 48 * kHour; }, Trouble,
       "Item 4 of its readings has not changed"},
      {"still for less",
       [](Fixture& f) { f.scan().still_channel = 4, f.scan().still_since = f.scan().last - 47 * kHour; }, Fine, ""},
      {"a tenth outside",
       [](Fixture& f) { f.history.days.back().outside = 9, f.history.days.back().outside_channel = 5; }, Fine, ""},
      {"more outside",
       [](Fixture& f) { f.history.days.back().outside = 10, f.history.days.back().outside_channel = 5; }, Trouble,
       "Item 5 lay outside"},
      {"the only reading of today outside",
       [](Fixture& f) {
         f.history.days.back().outside = f.history.days.back().stored = 1, f.history.days.back().outside_channel = 5;
       },
       Fine, ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    Fixture fixture;
    row.change(fixture);
    const UnitStatus unit = fixture.Status().units.at(0);
    EXPECT_EQ(NameOf(unit.state), NameOf(row.state)) << unit.why;
    EXPECT_NE(unit.why.find(row.why), std::string::npos) << unit.why;
    EXPECT_EQ(unit.why.empty(), row.state == Fine);
  }
}

TEST(UnitStatus, TellsWhatTheHistoryHolds) {
  Fixture f;
  f.history.contacts.clear();
  for (std::int64_t i = 160; i > 0; --i) {
    ContactRecord& contact = f.Contact(1, i, i % 4 == 0 ? Outcome::Silent : Outcome::Answered);
    // Slow by 10 s a day, set 15 days ago in the winter; before that it was 1400 s ahead.
    const double slow = 1.25 * static_cast<double>(120 - i);
    if (i == 120) contact.command = kSetDate;
    if (i != 120) contact.clock_offset = std::llround((i > 120 ? 1400 : 0) - slow - (i > 80 ? 0 : kHour));
    if (i > 80) contact.at.ahead = kHour;
  }
  f.history.days.clear();
  for (std::int64_t i = 40; i >= 0; --i) f.Day(i, i > 20 ? 10 : i == 8 ? 14.0 : 12.5 + 0.02 * static_cast<double>(i));
  f.history.days.back().stored = 48;
  f.history.days[f.history.days.size() - 2].stored = 100;
  const UnitStatus unit = f.Status().units.at(0);
  EXPECT_EQ(unit.asked, 20);
  EXPECT_EQ(unit.answered, 15);
  EXPECT_FALSE(unit.answers.at(0));
  EXPECT_NEAR(unit.clock_drift.value_or(0), -10, 0.5);
  EXPECT_EQ(unit.clock_offset, -3749);
  EXPECT_NEAR(unit.battery_slope.value_or(0), -0.02, 0.001);
  EXPECT_NEAR(unit.battery_days.value_or(0), 50, 3);
  EXPECT_NEAR(unit.complete.value_or(0), 1 - 48.0 / (30 * 96), 1e-9);
}

TEST(UnitStatus, HasNoTrendFromFewPoints) {
  const std::vector<TrendPoint> line = {{1, 3}, {2, 5}, {3, 7}, {4, 90}, {5, 11}};
  EXPECT_FALSE(RobustTrend({line.begin(), line.end() - 1}, 5));
  EXPECT_FALSE(RobustTrend(std::vector<TrendPoint>(5, TrendPoint{1, 2}), 5));
  EXPECT_DOUBLE_EQ(RobustTrend(line, 5).value_or(Trend()).slope, 2);
}

struct NetworkRow {
  const char* name;
  std::function<void(Fixture&)> change;
  Holder holder;
  NetworkLetter letter;
  const char* says;  ///< a part of the sentence
};

TEST(NetworkStatus, SaysWhetherAnybodyCollects) {
  using enum NetworkLetter;
  using enum Holder;
  const auto missed = [](Fixture& f) { f.network().next_download = kLocal - 181; };
  const auto round = [](Fixture& f, std::int64_t ago, bool ended) {
    f.history.rounds.push_back(
        {7, RoundKind::Download, true, true, Ago(ago), ended ? Ago(1) : Moment(), 1, 1, 4, 0, ""});
  };
  const NetworkRow rows[] = {
      {"all well", [](Fixture&) {}, Somebody, Well, "1 unit: 1 fine"},
      {"no units", [](Fixture& f) { f.history.units.clear(); }, Somebody, Empty, "no units"},
      {"nobody holds the folder", [](Fixture&) {}, Nobody, NobodyCollects, "no program is running"},
      {"by hand", [](Fixture& f) { f.network().automatic = false, f.network().open = false; }, Nobody, Well, ""},
      {"the round is due", [](Fixture& f) { f.network().next_download = kLocal - 180; }, Somebody, Well, ""},
      {"the round was missed", missed, Somebody, NobodyCollects, "The round of 30 Jun 2026 11:56 has not begun"},
      {"a round began", [&](Fixture& f) { missed(f), round(f, 100, true); }, Somebody, Well, ""},
      {"one of the future began", [&](Fixture& f) { missed(f), round(f, -9000, true); }, Somebody, NobodyCollects, ""},
      {"one before is under way", [&](Fixture& f) { missed(f), round(f, 9000, false); }, Somebody, Well, ""},
      {"one was killed days ago", [&](Fixture& f) { missed(f), round(f, 90'000, false); }, Somebody, NobodyCollects,
       ""},
      {"one was killed", [&](Fixture& f) { missed(f), round(f, 9000, false), f.network().alive = Ago(1801); }, Unknown,
       NobodyCollects, "not been heard of"},
      {"not known, alive", [](Fixture&) {}, Unknown, Well, ""},
      {"not known, ended in order", [](Fixture& f) { f.network().open = false; }, Unknown, NobodyCollects, ""},
      {"no interval", [](Fixture& f) { f.network().interval.reset(); }, Somebody, NobodyCollects, "interval"},
      {"a unit silent", [](Fixture& f) { f.Silence(); }, Somebody, Critical, "1 unit: 1 silent"},
      {"silent, with a note",
       [](Fixture& f) {
         f.Silence(), f.history.notes.push_back({1, "in repair", Ago(9), {}});
       },
       Somebody, Well, ""},
      {"the note is over",
       [](Fixture& f) {
         f.Silence(), f.history.notes.push_back({1, "in repair", Ago(9), kLocal - 1});
       },
       Somebody, Critical, ""},
      {"trouble", [](Fixture& f) { f.last().rejected = 1; }, Somebody, Warning, "1 trouble"},
      {"no port", [&](Fixture& f) { round(f, 9000, true), f.Contact(1, 0, Outcome::NoPort).round = 7; }, Somebody,
       Warning, "port"},
      {"a file not sent",
       [](Fixture& f) {
         f.history.deliveries.push_back({1, Target::Server, "", {}, {}, "12007", 0, {}});
       },
       Somebody, Warning, "1 file has not got"},
  };
  for (const NetworkRow& row : rows) {
    SCOPED_TRACE(row.name);
    Fixture fixture;
    row.change(fixture);
    const NetworkStatus status = fixture.Status(row.holder);
    EXPECT_EQ(NameOf(status.letter), NameOf(row.letter)) << status.sentence;
    EXPECT_NE(status.sentence.find(row.says), std::string::npos) << status.sentence;
  }
}

TEST(NetworkStatus, PutsTheWorstFirstAndNamesTheirRelay) {
  Fixture f;
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
  const auto add = [](Fixture& f, const char* name, bool fine) {
    UnitRecord& unit = f.Add(name);
    unit.last_answered = Ago(3 * kSecondsPerDay);
    const Outcome outcome = fine ? Outcome::Answered : Outcome::Silent;
    for (std::int64_t back = 2; back > 0; --back) f.Contact(unit.key, back, outcome);
  };
  const std::pair<std::function<void(Fixture&)>, const char*> rows[] = {
      {[](Fixture&) {}, "The unit is fine; next round at 13:00"},
      {[&](Fixture& f) { add(f, "South", true), f.network().next_download = kLocal + kSecondsPerDay; },
       "All 2 units are fine; next round 1 Jul 2026 12:00"},
      {[](Fixture& f) { f.history.units.clear(); }, "There are no units"},
      {[](Fixture& f) { f.unit().active = false, f.network().automatic = false; },
       "No unit is active; no round is planned"},
      {[&](Fixture& f) {
         f.scan().last = kLocal - 11 * kHour;
         add(f, "River", false);
         add(f, "Hill", true);
         f.network().next_download = kLocal - 60;
       },
       "1 of 3 units is fine, River is silent for 3 days, North is late (11 hours); the next round is due"},
      {[](Fixture& f) { f.network().interval.reset(); },
       "Nobody collects. Automatic download is on, and its interval in the settings is none"},
  };
  for (const auto& [change, says] : rows) {
    Fixture fixture;
    change(fixture);
    EXPECT_EQ(HeadlineOf(fixture.Status()), says);
  }
}

TEST(UnitTexts, SayWhatAColumnHolds) {
  Fixture f;
  f.last().stored = 4;
  f.Gap(GapState::Found, 3, 12);
  f.Gap(GapState::Lost, 2, 4);
  f.history.deliveries.push_back({1, Target::Server, "", {}, Ago(7200), "12007", 0, {}});
  UnitStatus unit = f.Status().units.at(0);
  EXPECT_EQ(LastReadingText(unit), "30 Jun 11:00 (60 min)");
  UnitStatus old = unit;
  old.reading_age = 300 * kSecondsPerDay;
  EXPECT_EQ(LastReadingText(old), "30 Jun 2026 11:00 (300 d)") << "another year is told";
  EXPECT_EQ(LastContactText(unit, kNow), "answered, 4 readings, 3 hours ago");
  EXPECT_EQ(GapsText(unit), "2: 16 readings, 4 lost");
  EXPECT_EQ(DeliveredText(unit, kNow), "2 hours ago, then: 12007");
  unit.complete = 0.99999;
  EXPECT_EQ(CompleteText(unit), "99.9") << "100 is said of nothing that lacks a reading";
  EXPECT_EQ(BatteryText(unit), "12.50 V");
  unit.battery_slope = -0.02;
  EXPECT_EQ(BatteryText(unit), "12.50 V, -0.02 V a day");
  unit.battery_days = 45.9;
  EXPECT_EQ(BatteryText(unit), "12.50 V, 45 days left");
  EXPECT_EQ(LastContactText(UnitStatus(), kNow) + GapsText(UnitStatus()) + BatteryText(UnitStatus()), "");
}

TEST(UnitHealth, SaysWhatToTakeAlong) {
  struct TakeRow {
    const char* name;
    std::function<void(Fixture&)> change;
    const char* things;  ///< all of them
  };
  const char* const memory = "a hand-held unit or a cable, and a computer; ";
  const auto neighbour = [](Fixture& f, const char* relay, Outcome outcome) {
    f.unit().relay = relay;
    f.Add("Other", relay);
    f.Contact(2, 1, outcome);
  };
  const TakeRow rows[] = {
      {"fine", [](Fixture&) {}, ""},
      {"off", [](Fixture& f) { f.last().battery = 10, f.unit().active = false; }, ""},
      {"battery low", [](Fixture& f) { f.last().battery = 11; }, "a charged battery; "},
      {"battery low soon",
       [](Fixture& f) {
         for (auto& day : f.history.days) day.battery = 12.2 - 0.03 * (day.day.days() - f.history.days[0].day.days());
       },
       "a charged battery; "},
      {"silent, others answer", [&](Fixture& f) { f.Silence(), neighbour(f, "", Outcome::Answered); },
       "an antenna and its cable; a hand-held unit or a cable, and a computer; "},
      {"silent relay", [&](Fixture& f) { f.Silence(), neighbour(f, "Hill", Outcome::Silent); },
       "a battery and an antenna for the relay; a hand-held unit or a cable, and a computer; "},
      {"silent alone", [](Fixture& f) { f.Silence(); }, memory},
      {"many tries",
       [](Fixture& f) {
         for (auto& contact : f.history.contacts) contact.tries = 3;
       },
       "an antenna and its cable; "},
      {"readings missing", [](Fixture& f) { f.Gap(GapState::Found, 2, 5); }, memory},
      {"readings lost", [](Fixture& f) { f.Gap(GapState::Lost, 2, 5); }, ""},
      {"late, answers", [](Fixture& f) { f.scan().last = kLocal - 9 * kHour; }, memory},
      {"clock", [](Fixture& f) { f.last().clock_offset = 5000; }, "a clock to set it by; "},
      {"a channel still", [](Fixture& f) { f.scan().still_channel = 4, f.scan().still_since = kLocal - 90 * kHour; },
       "a sensor and its cable; "},
  };
  for (const TakeRow& row : rows) {
    SCOPED_TRACE(row.name);
    Fixture fixture;
    row.change(fixture);
    const NetworkStatus network = fixture.Status();
    const auto unit =
        std::find_if(network.units.begin(), network.units.end(), [](const auto& each) { return each.key == 1; });
    std::string things;
    for (const HealthLine& thing : HealthOf(*unit, network, fixture.history).take_along) things += thing.about + "; ";
    EXPECT_EQ(things, row.things);
  }
}

}  // namespace
}  // namespace corvane
