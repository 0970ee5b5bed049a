#include "history/day_map.h"

#include <gtest/gtest.h>

#include <functional>

#include "state/records.h"

namespace corvane {
namespace {

const DateTime kToday = DateTime::FromCivil(2026, 10, 3);
const Moment kNow = Moment::At((kToday.seconds() - 25569 * kSecondsPerDay) + 8 * 3600, kToday + 10 * 3600);

/// One radio unit that logs every half hour; its days can be changed.
struct Network {
  HistoryContents history;

  Network() {
    history.network.emplace();
    history.network->repairs_gaps = true;
    for (const std::int64_t key : {4, 7}) {
      UnitRecord unit;
      unit.key = key;
      unit.position = key == 4 ? 2 : 1;
      unit.active = true;
      unit.get_from = kFromRadio;
      history.units.push_back(unit);
    }
  }

  Network& Day(std::int64_t back, std::int64_t stored, std::int64_t expected = 48) {
    DayRecord day;
    day.unit = 4;
    day.day = kToday - back * kSecondsPerDay;
    day.expected = expected;
    day.stored = stored;
    history.days.push_back(day);
    return *this;
  }

  Network& Gap(GapState state, DateTime from, std::int64_t missing, std::int64_t tries = 0) {
    history.gaps.push_back({4, from, from + (missing + 1) * 1800, missing, state, tries, {}, {}});
    return *this;
  }

  Network& Heard(std::int64_t hours_ago) {
    history.units[0].last_answered = Moment{kNow.utc - hours_ago * 3600, kNow.ahead};
    return *this;
  }

  [[nodiscard]] DayCell Cell(std::int64_t back) const {
    return MakeDayMap(history, kNow).Find(4)->cells[static_cast<std::size_t>(kMapDays - 1 - back)];
  }
};

struct Row {
  const char* name;
  std::function<void(Network&)> change;
  DayGrade grade;
  const char* text;
};

TEST(DayMap, SaysOfEachDayWhatIsThereAndWhatIsToBecomeOfTheRest) {
  using enum DayGrade;
  using enum GapState;
  const DateTime noon = kToday + 12 * 3600;
  const Row rows[] = {
      {"unknown", [](Network&) {}, NotDue, "3 October: no readings were due"},
      {"never heard of", [](Network& n) { n.history.units[0].added = kNow; }, Unheard,
       "3 October: nothing is known of this day yet"},
      {"whole", [](Network& n) { n.Day(0, 48); }, Whole, "3 October: all 48 readings"},
      {"more than expected", [](Network& n) { n.Day(0, 9, 8); }, Whole, "3 October: all 9 readings"},
      {"found", [&](Network& n) { n.Day(0, 40).Gap(Found, noon, 8); }, Part,
       "3 October: 40 of 48 readings, 8 missing, asked for by the next repair"},
      {"a tenth", [&](Network& n) { n.Day(0, 45, 50).Gap(Asked, noon, 5, 3); }, Most,
       "3 October: 45 of 50 readings, 5 missing, open to a repair"},
      {"repairs are off", [&](Network& n) { n.Day(0, 40).Gap(Found, noon, 8).history.network->repairs_gaps = false; },
       Part, "3 October: 40 of 48 readings, 8 missing, open to a repair"},
      {"not active", [&](Network& n) { n.Day(0, 0).Gap(Found, kToday - 1800, 48).history.units[0].active = false; },
       Nothing, "3 October: 0 of 48 readings, 48 missing, not to be asked for now"},
      {"lost, and one overdue", [&](Network& n) { n.Day(0, 43).Gap(Lost, noon, 4); }, Part,
       "3 October: 43 of 48 readings, 5 missing, 4 of them lost for ever, 1 of them to come with the next download"},
      {"filled meanwhile", [&](Network& n) { n.Day(0, 48).Gap(Lost, noon, 4); }, Whole, "3 October: all 48 readings"},
      {"silent since the day before", [](Network& n) { n.Heard(36); }, Unheard, "3 October: the unit was not heard of"},
      {"silent since this morning", [](Network& n) { n.Day(0, 1, 1).Heard(0); }, Whole, "3 October: its one reading"},
      {"the clock", [&](Network& n) { n.Day(0, 48).Gap(Clock, noon, 4); }, Whole, "3 October: all 48 readings"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    Network network;
    row.change(network);
    const DayCell cell = network.Cell(0);
    EXPECT_EQ(GradeOf(cell), row.grade);
    EXPECT_EQ(DayText(kToday, cell), row.text);
  }
}

TEST(DayMap, SpreadsAGapOverItsDays) {
  Network network;
  // From 22:00 on: three readings are due on that day, all of the next, and 13 up to 06:00 of today, midnight included.
  network.Day(2, 45).Day(1, 0).Day(0, 35).Gap(GapState::Lost, kToday - 26 * 3600, 64);
  EXPECT_EQ(network.Cell(2).lost, 3);
  EXPECT_EQ(network.Cell(1).lost, 48);
  EXPECT_EQ(network.Cell(0).lost, 13);
  EXPECT_EQ(network.Cell(3), DayCell());
}

TEST(DayMap, ClaimsNothingOfWhatHasNotBeenHeard) {
  Network network;
  network.Day(2, 1, 1).Heard(2 * 24);
  EXPECT_EQ(GradeOf(network.Cell(3)), DayGrade::NotDue);
  EXPECT_EQ(GradeOf(network.Cell(2)), DayGrade::Unheard);
  EXPECT_EQ(DayText(kToday, network.Cell(2)),
            "3 October: 1 reading, and the unit was not heard of for the rest of the day");
  EXPECT_EQ(GradeOf(network.Cell(1)), DayGrade::Unheard);
  network.history.units[0].active = false;
  EXPECT_EQ(GradeOf(network.Cell(1)), DayGrade::NotDue) << "nobody waits for it";
}

TEST(DayMap, HasARowForEachUnitInTheList) {
  Network network;
  network.Day(0, 1).Day(kMapDays, 1).history.units[1].position = 0;
  const DayMap map = MakeDayMap(network.history, kNow);
  ASSERT_EQ(map.rows.size(), 1U);
  EXPECT_EQ(map.Find(7), nullptr);
  EXPECT_EQ(map.DayOf(map.rows[0].cells.size() - 1), kToday);
  EXPECT_EQ(DayMapQuery(kNow).days_since, map.first);
}

}  // namespace
}  // namespace corvane
