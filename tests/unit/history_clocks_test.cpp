// When a unit's clock was set, and when this computer's was.
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "history/believed_time.h"
#include "history/clock_book.h"
#include "history/own_clock.h"
#include "state/link_state.h"

namespace corvane::test {
namespace {

DateTime At(std::int64_t hour) {
  return DateTime::FromCivil(2010, 3, 12) + hour * 3600;
}

/// A contact `hour` hours behind midnight, where the unit's clock is `offset` seconds ahead.
ContactRecord Contact(std::int64_t hour, std::int64_t offset, std::int16_t command = kDownload,
                      std::int32_t ahead = 3600) {
  ContactRecord contact;
  contact.outcome = Outcome::Answered;
  contact.command = command;
  contact.at = Moment::At(At(hour).seconds() - 25569 * kSecondsPerDay - 3600, At(hour) + (ahead - 3600));
  contact.clock_offset = offset;
  return contact;
}

TEST(ClockBook, TellsStepsOfTheUnitsClockFromThoseOfThisComputers) {
  struct Row {
    const char* name;
    std::vector<ContactRecord> contacts;
    std::string wanted;     ///< "from-to by" in minutes behind midnight
    std::int64_t step = 0;  ///< of this computer's clock, before the last contact
  };
  const std::vector<Row> rows = {
      {"a clock that drifts", {Contact(1, 0), Contact(25, 4), Contact(49, 100)}, ""},
      {"summer time begins here", {Contact(1, 0), Contact(25, -3600, kDownload, 7200)}, ""},
      {"found an hour ahead", {Contact(1, 0), Contact(3, 3600)}, "60-240 3600 "},
      {"found behind", {Contact(1, 600), Contact(3, 0)}, "70-180 -600 "},
      {"set by command", {Contact(1, 600), Contact(3, 0, kSetDate), Contact(5, 20)}, "180-190 -600 "},
      {"set by command, never seen before", {Contact(3, 0, kSetDate)}, "180-180 ? "},
      {"summer time, and set to it", {Contact(1, 0), Contact(3, 0, kSetDate, 7200)}, "180-240 3600 "},
      {"this computer was two hours ahead", {Contact(3, -7200), Contact(3, 0)}, "", 7200},
      {"and the unit was set besides", {Contact(3, -7200), Contact(3, 600)}, "60-190 600 ", 7200},
  };
  for (const Row& row : rows) {
    ClockBook book;
    RoundRecord last;
    last.key = std::ssize(row.contacts);
    last.clock_step = row.step;
    const OwnClock here(std::span(&last, 1));
    std::int64_t round = 0;
    for (ContactRecord contact : row.contacts) {
      contact.round = ++round;
      book.Take(contact, here);
    }
    std::string text;
    for (const ClockStep& step : book.hints().steps) {
      text += std::to_string((step.from - At(0)) / 60) + "-" + std::to_string((step.to - At(0)) / 60) + " " +
              (step.seconds ? std::to_string(*step.seconds) : "?") + " ";
    }
    EXPECT_EQ(text, row.wanted) << row.name;
  }
}

TEST(ClockBook, KnowsWhatAClockShowedThatTellsNothing) {
  ContactRecord set_period = Contact(30 * 24, 0, kSetLogPeriod);
  set_period.clock_offset.reset();
  set_period.period_minutes = 180;
  const auto ahead = [&](std::vector<ContactRecord> contacts) {
    ClockBook book;
    for (const ContactRecord& contact : contacts) book.Take(contact, OwnClock());
    book.Take(set_period, OwnClock());
    return book.hints().periods.back().at - At(30 * 24);
  };
  EXPECT_EQ(ahead({Contact(0, 0), Contact(20 * 24, -100)}), -150) << "it loses five seconds a day";
  EXPECT_EQ(ahead({Contact(0, 0), Contact(2 * 24, -59)}), -59) << "a header tells whole minutes";
  EXPECT_EQ(ahead({Contact(0, 0), Contact(1, 3600), Contact(20 * 24, 3500)}), 3450) << "since it was set forward";
  EXPECT_EQ(ahead({Contact(0, 0), Contact(20 * 24, -200)}), -300) << "a long silence is no jump";
  EXPECT_EQ(ahead({}), 0) << "nothing is known";
  EXPECT_EQ(ahead({Contact(0, 90), Contact(20 * 24, 0, kSetDate)}), 0) << "since it was set by command";
  ClockBook book;
  const auto at = [&](std::size_t i) { return book.hints().periods.at(i).at - At((30 + std::int64_t(i) * 30) * 24); };
  book.Take(set_period, OwnClock());
  book.Take(Contact(35 * 24, 3000, kDownload, 7200), OwnClock());
  EXPECT_EQ(at(0), 3600 + 3000) << "by what is heard first behind it";
  book.Take(Contact(45 * 24, 3100, kDownload, 7200), OwnClock());
  EXPECT_EQ(at(0), 3600 + 3000) << "ten days say little of how it goes";
  book.Take(Contact(55 * 24, 3200, kDownload, 7200), OwnClock());
  EXPECT_EQ(at(0), 3600 + 2950) << "it gains ten seconds a day";
  EXPECT_FALSE(book.hints().periods.at(0).placed);
  set_period.at = Moment{set_period.at.utc + 30 * kSecondsPerDay, 7200};
  book.Take(set_period, OwnClock());
  EXPECT_EQ(at(1), 3600 + 3250);
  EXPECT_FALSE(book.hints().periods.at(1).placed);
  book.Take(Contact(65 * 24, 3220, kDownload, 7200), OwnClock());
  EXPECT_EQ(at(1), 3600 + 3210) << "by what it told before and behind";
  EXPECT_TRUE(book.hints().periods.at(1).placed);
}

TEST(OwnClock, IsTheOneThatWasSetWhereTheUnitsAgree) {
  struct Row {
    const char* name;
    std::vector<std::int64_t> jumps;
    ClockMove move;
    std::int64_t wanted;
    bool set = false;
  };
  const ClockMove kUnknown;
  const std::vector<Row> rows = {
      {"all have jumped", {7200, 7190, 7260}, kUnknown, 7200},
      {"all but one that was set", {7200, 7190, 3}, kUnknown, 7200},
      {"one alone", {7200}, kUnknown, 0},
      {"half of them", {7200, 7200, 0, 1}, kUnknown, 0},
      {"they have drifted", {100, 110, 119}, kUnknown, 0},
      {"all were set by hand, this clock has not moved", {7200, 7200, 7200}, {1, true}, 0},
      {"one alone, and this clock was set back by as much", {7200}, {-7201, true}, 7201},
      {"one alone, and this clock was set back by another time", {600}, {-7201, true}, 0},
      {"and another unit, heard before that, has not jumped", {-78738, 4}, {78738, true}, -78738},
      {"one alone, and this clock was set back by as much since the start", {7200}, {-7201, false}, 7201},
      {"one alone, and since the start it has not moved", {7200}, {0, false}, 0},
      {"this computer was halted, as a virtual one can be", {1, 2}, {30000, true}, 0},
      {"this clock was set back, then the units by command", {155116, 149251, -9000}, {-158636, true}, 158636, true},
      {"this computer was halted, then they were set", {3600, -20, -40}, {30000, true}, 0, true},
      {"they were set, and of this clock nothing is known", {7200, 7200, 7200}, kUnknown, 0, true},
  };
  for (const Row& row : rows) EXPECT_EQ(StepOf(row.jumps, row.move, row.set), row.wanted) << row.name;
}

TEST(ClockSteps, HoldTheJumpsOfARoundAgainstTheClockOfItsBegin) {
  ClockSteps steps;
  steps.Start(1000);
  const auto round = [&steps](std::int64_t base, std::int64_t jump, std::int64_t base_behind) {
    steps.BeginRound(base);
    steps.TakeJump(1, jump, false);
    EXPECT_EQ(steps.IsSteady(base_behind), base == base_behind);
    const std::int64_t so_far = steps.StepSoFar();
    EXPECT_EQ(steps.EndRound(), so_far);
    return so_far;
  };
  EXPECT_EQ(round(1000, 0, 1000), 0);
  // Set back before the round, and right again before its second unit.
  EXPECT_EQ(round(-121000, 122000, 1000), 122000);
  EXPECT_EQ(round(1000, -122000, 1000), -122000);
  RoundRecord ahead;
  ahead.key = 7;
  ahead.clock_step = -157439;
  EXPECT_TRUE(steps.Take({ahead}, 0));
  EXPECT_EQ(round(1000, 157430, 1000), 0) << "this clock has not moved since";
  ClockSteps started;
  started.Start(1000);
  started.Take({ahead}, 0);
  started.BeginRound(1000);
  started.TakeJump(1, 157430, false);
  EXPECT_EQ(started.StepSoFar(), 157439) << "it was set right before the start, by just what it was off";
  started.TakeJump(2, 0, false);
  EXPECT_EQ(started.EndRound(), 0) << "another unit has not jumped";
}

TEST(BelievedTime, IsNotThatOfAClockThatIsAhead) {
  constexpr std::int64_t kDay = kSecondsPerDay;
  constexpr std::int64_t kNow = 15000 * kDay;
  constexpr std::int64_t kAhead = kNow + 3650 * kDay;
  const DateTime reading = Moment{kNow, 0}.Local();
  struct Row {
    const char* name;
    std::vector<std::int64_t> rounds;
    std::vector<DateTime> readings;
    std::int64_t latest;
  };
  const std::vector<Row> rows = {
      {"the clock as it is", {}, {}, kAhead},
      {"one round of the right time is left", {kNow, kAhead, kAhead}, {}, kNow + 33 * kDay},
      {"none is, but the readings", {kAhead, kAhead}, {reading, reading, reading + 9999 * kDay}, kNow + 30 * kDay},
      {"a unit of former years changes nothing", {kNow}, {reading - 5000 * kDay, reading, reading}, kNow + 30 * kDay},
  };
  for (const Row& row : rows) {
    std::vector<RoundRecord> rounds(row.rounds.size());
    for (std::size_t i = 0; i < rounds.size(); ++i) rounds[i].began = Moment{row.rounds[i], 0};
    BelievedTime time;
    time.TakeRounds(rounds);
    EXPECT_EQ(time.Today(Moment{kAhead, 0}, row.readings).utc, row.latest) << row.name;
  }
}

}  // namespace
}  // namespace corvane::test
