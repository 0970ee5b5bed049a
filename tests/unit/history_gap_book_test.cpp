// What becomes of known gaps when a raw file was scanned again.
#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "history/believed_time.h"
#include "history/clock_book.h"
#include "history/gap_book.h"
#include "history/waiting_records.h"
#include "state/link_state.h"

namespace corvane::test {
namespace {

DateTime At(std::int64_t hour) {
  return DateTime::FromCivil(2010, 3, 12) + hour * 3600;
}

GapRecord Gap(std::int64_t from, std::int64_t to, GapState state = GapState::Found, std::int64_t tries = 0) {
  GapRecord gap;
  gap.from = At(from);
  gap.to = At(to);
  gap.state = state;
  gap.tries = tries;
  gap.found = Moment{100, 0};
  gap.changed = Moment{100, 0};
  return gap;
}

/// "FROM-TO STATE TRIES FOUND", in hours; found "then" or "now".
std::string TextOf(const GapRecord& gap) {
  const std::vector<std::string> states = {"found", "asked", "filled", "lost", "clock", "dropped"};
  return std::to_string((gap.from - At(0)) / 3600) + "-" + std::to_string((gap.to - At(0)) / 3600) + " " +
         states.at(static_cast<std::size_t>(gap.state)) + " " + std::to_string(gap.tries) +
         (gap.found.utc == 100 ? " then" : " now") + (gap.changed.utc == 100 ? "" : " changed");
}

TEST(GapBook, MergesWhatWasFoundWithWhatIsKnown) {
  struct Row {
    const char* name;
    std::vector<GapRecord> known;
    std::vector<GapRecord> found;
    bool filled;  ///< readings stand where the known ones were
    std::vector<std::string> wanted;
    std::int64_t changed_from = 0;
  };
  const std::vector<Row> rows = {
      {"a new one", {}, {Gap(2, 6)}, false, {"2-6 found 0 now changed"}},
      {"the same keeps state and tries", {Gap(2, 6, GapState::Asked, 2)}, {Gap(2, 6)}, true, {"2-6 asked 2 then"}},
      {"parts inherit, the whole goes",
       {Gap(2, 9, GapState::Asked, 2)},
       {Gap(3, 5), Gap(6, 9)},
       true,
       {"3-5 asked 2 then changed", "6-9 asked 2 then changed", "2-9 dropped 2 then changed"}},
      {"a part that begins where the whole did replaces it",
       {Gap(2, 9, GapState::Lost, 1)},
       {Gap(2, 5)},
       true,
       {"2-5 lost 1 then changed"}},
      {"gone, readings stand there", {Gap(2, 6)}, {}, true, {"2-6 filled 0 then changed"}},
      {"gone, and nothing stands there", {Gap(2, 6)}, {}, false, {"2-6 dropped 0 then changed"}},
      {"before what was scanned", {Gap(2, 6)}, {}, true, {}, 6},
      {"across where the scan began", {Gap(2, 7)}, {}, false, {"2-7 dropped 0 then changed"}, 6},
      {"turns out to be the clock", {Gap(2, 6)}, {Gap(2, 6, GapState::Clock)}, true, {"2-6 clock 0 then changed"}},
      {"opens again behind a restored file",
       {Gap(2, 6, GapState::Filled, 1)},
       {Gap(2, 6)},
       true,
       {"2-6 found 0 now changed"}},
      {"what was filled stays so", {Gap(2, 6, GapState::Filled, 1)}, {}, true, {"2-6 filled 1 then"}},
      {"grows as a reading inside it is taken out",
       {Gap(2, 4), Gap(4, 6)},
       {Gap(2, 6)},
       true,
       {"2-6 found 0 now changed", "4-6 dropped 0 then changed"}},
  };
  for (const Row& row : rows) {
    RawScan scan;
    scan.gaps = row.found;
    scan.whole = true;
    for (const GapRecord& gap : row.known) {
      if (row.filled) scan.filled.push_back(gap.from);
    }
    scan.changed_from = At(row.changed_from);
    std::vector<std::string> texts;
    for (const GapRecord& gap : MergeGaps(row.known, scan, Moment{200, 0})) texts.push_back(TextOf(gap));
    EXPECT_EQ(texts, row.wanted) << row.name;
  }
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
      {"one alone, and this clock was set back by as much", {7200}, {-7201, true}, 7200},
      {"one alone, and this clock was set back by another time", {600}, {-7201, true}, 0},
      {"and another unit, heard before that, has not jumped", {-78738, 4}, {78738, true}, -78738},
      {"one alone, and this clock was set back by as much since the start", {7200}, {-7201, false}, 7200},
      {"one alone, and since the start it has not moved", {7200}, {0, false}, 0},
      {"this computer has slept", {1, 2}, {30000, true}, 0},
      {"this clock was set back, then the units by command", {155116, 149251, -9000}, {-158636, true}, 158636, true},
      {"this computer has slept, then they were set", {3600, -20, -40}, {30000, true}, 0, true},
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
  EXPECT_EQ(started.EndRound(), 157430) << "it was set right before the start";
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

TEST(WaitingRecords, KeepTheNewestOfAllKinds) {
  HistoryContents waiting;
  for (std::int64_t i = 1; i <= 6000; ++i) {
    waiting.gaps.push_back(Gap(2, 6, GapState::Asked, i));
    waiting.contacts.emplace_back().round = i;
  }
  EXPECT_FALSE(KeepNewest(waiting)) << "one gap, said again and again";
  EXPECT_EQ(waiting.gaps.size(), 1U);
  EXPECT_EQ(waiting.gaps[0].tries, 6000);
  for (std::int64_t i = 6001; i <= 11'000; ++i) waiting.contacts.emplace_back().round = i;
  EXPECT_TRUE(KeepNewest(waiting));
  EXPECT_EQ(CountOf(waiting), kMostWaiting);
  EXPECT_EQ(waiting.contacts.back().round, 11'000);
}

}  // namespace
}  // namespace corvane::test
