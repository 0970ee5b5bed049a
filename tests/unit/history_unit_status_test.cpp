#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "base/format.h"
#include "history/network_status.h"
#include "history/trend.h"
#include "history/unit_health.h"
#include "history/unit_texts.h"
#include "support/network_history.h"

namespace corvane {
namespace {

using namespace test;

struct Row {
  const char* name;
  std::function<void(NetworkHistory&)> change;
  UnitState state;
  const char* why;  ///< a part of it
};

TEST(UnitStatus, HasTheFirstLetterThatApplies) {
  using enum UnitState;
  const auto never = [](NetworkHistory& f) {
    f.scan().last = DateTime();
    f.history.contacts.clear();
  };
  const Row rows[] = {
      {"all well", [](NetworkHistory&) {}, Fine, ""},
      {"not active", [](NetworkHistory& f) { f.unit().active = false, f.Silence(); }, Off, "not active"},
      {"from nowhere", [](NetworkHistory& f) { f.unit().get_from = kFromNone; }, Off, "nowhere"},
      {"just added", [&](NetworkHistory& f) { never(f), f.unit().added = Ago(6 * kHour - 1); }, New, "No reading yet"},
      {"added two intervals ago", [&](NetworkHistory& f) { never(f), f.unit().added = Ago(6 * kHour); }, Late,
       "ever come"},
      {"new and silent",
       [&](NetworkHistory& f) {
         never(f), f.unit().added = Ago(60), f.Contact(1, 2, Outcome::Silent);
         f.Contact(1, 1, Outcome::Silent);
       },
       New, "No answer yet, asked so far: 2"},
      {"one round silent", [](NetworkHistory& f) { f.last().outcome = Outcome::Silent; }, Fine, ""},
      {"two rounds silent", [](NetworkHistory& f) { f.Silence(); }, Silent, "in the last 2 rounds; it has never"},
      {"silent, not asked, silent",
       [](NetworkHistory& f) { f.Silence(), f.Contact(1, 0, Outcome::NotAsked), f.Contact(1, 0, Outcome::NoPort); },
       Silent, "2 rounds"},
      {"an error reply is no silence", [](NetworkHistory& f) { f.Silence(), f.last().outcome = Outcome::Failed; }, Fine,
       ""},
      {"silent and late", [](NetworkHistory& f) { f.Silence(), f.scan().last = kLocal - 90 * kSecondsPerDay; }, Silent,
       ""},
      {"read by hand", [](NetworkHistory& f) { f.unit().get_from = kFromHandHeld, f.Silence(); }, Fine, ""},
      {"two intervals old", [](NetworkHistory& f) { f.scan().last = kLocal - 6 * kHour; }, Fine, ""},
      {"older", [](NetworkHistory& f) { f.scan().last = kLocal - 6 * kHour - 1; }, Late, "is 6 hours old"},
      {"older, clock behind",
       [](NetworkHistory& f) { f.scan().last = kLocal - 6 * kHour - 300, f.last().clock_offset = -300; }, Fine, ""},
      {"older, clock ahead",
       [](NetworkHistory& f) { f.scan().last = kLocal - 6 * kHour + 300, f.last().clock_offset = 301; }, Late, ""},
      {"older, clock far behind",
       [](NetworkHistory& f) { f.scan().last = kLocal - 9 * kHour, f.last().clock_offset = -2 * kHour; }, Late,
       "03:00 by its own clock, is 7 hours old"},
      {"older, clock behind by a contact from the future",
       [](NetworkHistory& f) {
         f.scan().last = kLocal - 6 * kHour - 1, f.last().clock_offset = -300, f.last().at = Ago(-kHour);
       },
       Late, ""},
      {"a later reading was taken out of the file",
       [](NetworkHistory& f) { f.scan().last = kLocal - 9 * kHour, f.before().last_reading = kLocal + kHour; }, Late,
       ""},
      {"a setting of four intervals",
       [](NetworkHistory& f) { f.scan().last = kLocal - 12 * kHour, f.network().late_after = 4; }, Fine, ""},
      {"a reading a day", [](NetworkHistory& f) { f.scan().last = kLocal - 48 * kHour, f.scan().period = 86400; }, Fine,
       ""},
      {"no interval", [](NetworkHistory& f) { f.scan().last = kLocal - 24 * kHour, f.network().interval.reset(); },
       Fine, ""},
      {"no interval, older",
       [](NetworkHistory& f) { f.scan().last = kLocal - 24 * kHour - 1, f.network().interval.reset(); }, Late, ""},
      {"late behind an error",
       [](NetworkHistory& f) {
         f.scan().last = kLocal - 9 * kHour, f.last().outcome = Outcome::Failed, f.last().error = "checksum";
       },
       Late, "its last answer: checksum"},
      {"readings missing",
       [](NetworkHistory& f) {
         f.Gap(GapState::Asked, 400, 7);
         f.Gap(GapState::Found, 2, 5);
         f.history.network->repair_limit = 100'000;
       },
       Trouble, "12 readings are missing in 2 gaps since 26 May 2025"},
      {"missing long ago, more than a repair takes", [](NetworkHistory& f) { f.Gap(GapState::Asked, 400, 7); }, Fine,
       ""},
      {"lost lately", [](NetworkHistory& f) { f.Gap(GapState::Lost, 2, 1); }, Trouble,
       "1 reading is lost for ever in 1 gap"},
      {"not asked for again lately",
       [](NetworkHistory& f) { f.Gap(GapState::Asked, 2, 5), f.history.gaps[0].tries = 3; }, Trouble,
       "5 readings are missing in 1 gap"},
      {"not asked for again", [](NetworkHistory& f) { f.Gap(GapState::Asked, 31, 5), f.history.gaps[0].tries = 3; },
       Fine, ""},
      {"missing long ago, by FTP",
       [](NetworkHistory& f) { f.Gap(GapState::Found, 31, 5), f.unit().get_from = kFromFtp; }, Fine, ""},
      {"lost long ago", [](NetworkHistory& f) { f.Gap(GapState::Lost, 31, 5); }, Fine, ""},
      {"clock set, filled",
       [](NetworkHistory& f) {
         f.Gap(GapState::Clock, 3, 5);
         f.Gap(GapState::Filled, 2, 5);
       },
       Fine, ""},
      {"lines rejected", [](NetworkHistory& f) { f.last().rejected = 3; }, Trouble, "3 lines were rejected"},
      {"rejected in a round before", [](NetworkHistory& f) { f.before().rejected = 3; }, Fine, ""},
      {"clock ten minutes ahead", [](NetworkHistory& f) { f.last().clock_offset = 600; }, Fine, ""},
      {"clock more behind", [](NetworkHistory& f) { f.last().clock_offset = -1500; }, Trouble,
       "clock is 25 minutes behind"},
      {"clock of the winter",
       [](NetworkHistory& f) { f.last().clock_offset = -kHour - 60, f.unit().added.ahead = kHour; }, Fine, ""},
      {"clock an hour ahead of it",
       [](NetworkHistory& f) { f.last().clock_offset = kHour, f.unit().added.ahead = kHour; }, Trouble, "ahead"},
      {"clock set since", [](NetworkHistory& f) { f.before().clock_offset = -1500, f.last().command = kSetDate; }, Fine,
       ""},
      {"reading in the future", [](NetworkHistory& f) { f.scan().last = kLocal + 3 * kHour; }, Trouble,
       "3 hours in the future"},
      {"ahead as its clock is", [](NetworkHistory& f) { f.scan().last = kLocal + 500, f.last().clock_offset = 500; },
       Fine, ""},
      {"battery at the limit", [](NetworkHistory& f) { f.last().battery = 11.5; }, Fine, ""},
      {"battery below", [](NetworkHistory& f) { f.last().battery = 11.49; }, Trouble, "11.49 V, below 11.50 V"},
      {"a channel still",
       [](NetworkHistory& f) { f.scan().still_channel = 4, f.scan().still_since = f.scan().last - 48 * kHour; },
       Trouble, "Item 4 of its readings has not changed"},
      {"still for less",
       [](NetworkHistory& f) { f.scan().still_channel = 4, f.scan().still_since = f.scan().last - 47 * kHour; }, Fine,
       ""},
      {"a tenth outside",
       [](NetworkHistory& f) { f.history.days.back().outside = 9, f.history.days.back().outside_channel = 5; }, Fine,
       ""},
      {"more outside",
       [](NetworkHistory& f) { f.history.days.back().outside = 10, f.history.days.back().outside_channel = 5; },
       Trouble, "Item 5 lay outside"},
      {"the only reading of today outside",
       [](NetworkHistory& f) {
         f.history.days.back().outside = f.history.days.back().stored = 1, f.history.days.back().outside_channel = 5;
       },
       Fine, ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    NetworkHistory fixture;
    row.change(fixture);
    const UnitStatus unit = fixture.Status().units.at(0);
    EXPECT_EQ(NameOf(unit.state), NameOf(row.state)) << unit.why;
    EXPECT_NE(unit.why.find(row.why), std::string::npos) << unit.why;
    EXPECT_EQ(unit.why.empty(), row.state == Fine);
  }
}

TEST(UnitStatus, TellsWhatTheHistoryHolds) {
  NetworkHistory f;
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
  const std::vector<TrendPoint> cold_night = {{1, 12.6}, {2, 12.6}, {3, 12.6}, {4, 12.6}, {5, 12.0}};
  EXPECT_DOUBLE_EQ(RobustTrend(cold_night, 5).value_or(Trend()).slope, 0);
  std::vector<TrendPoint> long_line;
  for (int day = 0; day < 20; ++day) long_line.push_back({double(day), day == 19 ? 1000.0 : 3.0 * day});
  EXPECT_DOUBLE_EQ(RobustTrend(long_line, 5).value_or(Trend()).slope, 3);
}

TEST(UnitTexts, SayWhatAColumnHolds) {
  NetworkHistory f;
  f.last().stored = 4;
  f.Gap(GapState::Found, 3, 12);
  f.Gap(GapState::Lost, 2, 4);
  f.history.deliveries.push_back({1, Target::Server, "", {}, Ago(7200), "12007", 0, {}});
  UnitStatus unit = f.Status().units.at(0);
  EXPECT_EQ(LastReadingText(unit), "30 Jun 11:00 (60 min)");
  UnitStatus old = unit;
  old.reading_age = 300 * kSecondsPerDay;
  EXPECT_EQ(LastReadingText(old), "30 Jun 2026 11:00 (300 d)") << "another year is told";
  old.clock_offset = 300 * kSecondsPerDay;
  EXPECT_EQ(LastReadingText(old), "30 Jun 2026 11:00 (300 d) by its own clock");
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
    std::function<void(NetworkHistory&)> change;
    const char* things;  ///< all of them
  };
  const char* const memory = "a hand-held unit or a cable, and a computer; ";
  const auto neighbour = [](NetworkHistory& f, const char* relay, Outcome outcome) {
    f.unit().relay = relay;
    f.Add("Other", relay);
    f.Contact(2, 1, outcome);
  };
  const TakeRow rows[] = {
      {"fine", [](NetworkHistory&) {}, ""},
      {"off", [](NetworkHistory& f) { f.last().battery = 10, f.unit().active = false; }, ""},
      {"battery low", [](NetworkHistory& f) { f.last().battery = 11; }, "a charged battery; "},
      {"battery low soon",
       [](NetworkHistory& f) {
         for (auto& day : f.history.days) day.battery = 12.2 - 0.03 * (day.day.days() - f.history.days[0].day.days());
       },
       "a charged battery; "},
      {"silent, others answer", [&](NetworkHistory& f) { f.Silence(), neighbour(f, "", Outcome::Answered); },
       "an antenna and its cable; a hand-held unit or a cable, and a computer; "},
      {"silent relay", [&](NetworkHistory& f) { f.Silence(), neighbour(f, "Hill", Outcome::Silent); },
       "a battery and an antenna for the relay; a hand-held unit or a cable, and a computer; "},
      {"silent alone", [](NetworkHistory& f) { f.Silence(); }, memory},
      {"many tries",
       [](NetworkHistory& f) {
         for (auto& contact : f.history.contacts) contact.tries = 3;
       },
       "an antenna and its cable; "},
      {"readings missing", [](NetworkHistory& f) { f.Gap(GapState::Found, 2, 5); }, memory},
      {"readings lost", [](NetworkHistory& f) { f.Gap(GapState::Lost, 2, 5); }, ""},
      {"late, answers", [](NetworkHistory& f) { f.scan().last = kLocal - 9 * kHour; }, memory},
      {"clock", [](NetworkHistory& f) { f.last().clock_offset = 5000; }, "a clock to set it by; "},
      {"a channel still",
       [](NetworkHistory& f) { f.scan().still_channel = 4, f.scan().still_since = kLocal - 90 * kHour; },
       "a sensor and its cable; "},
  };
  for (const TakeRow& row : rows) {
    SCOPED_TRACE(row.name);
    NetworkHistory fixture;
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