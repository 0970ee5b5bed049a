#include <tuple>
#include <utility>

#include <gtest/gtest.h>

#include "link/exchange.h"
#include "link/schedule.h"

namespace corvane::test {
namespace {

TEST(CommandLineTest, BuildsLinesAndParameters) {
  Registry registry;
  registry.Relays.Append({"Hill", 4, 0});
  registry.Relays.Append({"Same ID as a unit", 7, 2});
  const auto line = [&](std::int32_t id, std::int32_t relay, std::int16_t command, const char* parameters) {
    Unit unit;
    unit.ID = id;
    unit.RelayID = relay;
    return BuildCommandLine(registry, unit, command, parameters);
  };
  EXPECT_EQ(line(123, 4, kGetDate, ""), "00004:00123:00rt ") << "no parameters keep the blank";
  EXPECT_EQ(line(7, 4, kReadMemory, ""), "00004:00007:03rm ") << "the style of the relay with the unit's own ID";
  EXPECT_EQ(line(123, 7, kDownload, "1003121405"), "00007:00123:00rr 1003121405") << "not the style of its relay";
  EXPECT_EQ(line(1234567, 0, kSetMode, "A"), "00000:1234567:00SM A");
  EXPECT_EQ(line(123, 4, kTestBaseStation, "x"), "");
  EXPECT_EQ(DownloadParameters(DateTime()), "0001010000");
  EXPECT_EQ(DownloadParameters(DateTime::FromCivil(2010, 3, 12, 14, 5)), "1003121405");
  const std::pair<const char*, const char*> rows[] = {{"1:00", "3C"}, {"15", "0F"},  {"255", "FF"}, {"256", "00"},
                                                      {"4:20", "04"}, {"2.5", "03"}, {"-1", "FF"},  {"1e300", "00"}};
  for (const auto& [text, digits] : rows) EXPECT_EQ(LogPeriodParameters(text), digits) << text;
}

TEST(ScheduleGridTest, ComputesTheNextTime) {
  const auto on = [](int day, int hour, int minute = 0) { return DateTime::FromCivil(2010, 3, day, hour, minute); };
  const std::tuple<const char*, DateTime, DateTime> rows[] = {
      {"03:00", on(12, 22, 10), on(13, 0)}, {"3:00", on(12, 12), on(12, 15)}, {"03:00", on(12, 11, 59), on(12, 12)},
      {"0:30", on(12, 0), on(12, 0, 30)},   {"36", on(12, 10), on(13, 12)},   {"24", on(12, 10), on(13, 0)},
      {"12", on(12, 10), on(24, 0)},        {"0.25", on(12, 10), on(12, 12)}, {"05:00", on(12, 21), on(13, 1)}};
  for (const auto& [text, now, next] : rows) {
    const auto interval = AutomaticInterval(text);
    ASSERT_TRUE(interval) << text;
    EXPECT_EQ(NextOnGrid(now, *interval), next) << text;
  }
  for (const char* text : {"", "0", "0:00", "-1", "soon", "25:00", "3 hours", "1e300", "nan", "inf"}) {
    EXPECT_FALSE(AutomaticInterval(text)) << text;
  }
}

}  // namespace
}  // namespace corvane::test
