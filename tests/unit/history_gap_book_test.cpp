// What becomes of known gaps when a raw file was scanned again.
#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "history/gap_book.h"
#include "history/waiting_records.h"

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
