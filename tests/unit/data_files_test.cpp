#include <chrono>
#include <filesystem>
#include <string>
#include <tuple>
#include <utility>

#include <gtest/gtest.h>

#include "data/logging_schedule.h"
#include "support/world.h"

namespace corvane::test {
namespace {

TEST(FileNames, FollowTheNamingRule) {
  const std::tuple<std::string, std::string, std::string, std::string, std::string, std::string> rows[] = {
      {"/data", "", "123456", "/data/Pr123456", "pr123456", "/data/Pr00099"},
      {"/srv\\", "North\\Field/", "7", "/srv/North/Field/Pr00007", "north/field/pr00007", "/srv/Pr00099"},
  };
  for (const auto& [folder, client_folder, id, expected, remote, example] : rows) {
    World world("[General]\nPrefix=Pr\nFolder=" + folder + "\n[Clients]\nNumClients=1\nID1=4\nFolder1=" +
                client_folder + "\n[Units]\nNumUnits=1\nClientID1=4\nID1=" + id + "\n");
    const FileNames& names = world.Start().names();
    EXPECT_EQ(names.DataFileName(1, false), expected + ".epd");
    EXPECT_EQ(names.RemoteDataFileName(1, true), remote + ".txt");
    EXPECT_EQ(world.form().Lbl_FileExample[1].text(), example + ".txt");
    EXPECT_EQ(world.form().Lbl_DateExample.text(), "12 Mar 2010 10:00");
  }
}

/// A data folder with three raw files and others, the raw files listed by name.
class LocalFilesTest : public testing::Test {
 protected:
  LocalFilesTest() {
    const auto now = std::filesystem::file_time_type::clock::now();
    const std::tuple<const char*, int, int> files[] = {
        {"data/00002.epd", 12000, 3}, {"data/00003.epd", 9999, 1}, {"data/a0001.epd", 1, 2}, {"data/00002.txt", 0, 0}};
    for (const auto& [name, size, hours] : files) {
      const std::string contents(static_cast<std::size_t>(size), 'x');
      std::filesystem::last_write_time(world.home.Write(name, contents), now - std::chrono::hours(hours));
    }
    world.form().Opt_Direction.SetOptionIndex(1);
    world.form().Opt_Direction.SetOptionIndex(0);
  }
  /// The listed names, each followed by a blank.
  [[nodiscard]] std::string Names() {
    std::string listed;
    for (std::int64_t row = 0; row < list.count(); ++row)
      listed += list.text(row).substr(0, list.text(row).find('\t')) + " ";
    return listed;
  }

  World world{"[General]\nFolder=data\nWhichFile=0\n[Units]\nNumUnits=0\n"};
  List& list = world.Start().form().Lst_LocalFiles;
};

TEST_F(LocalFilesTest, AreFilteredAndSortedWithTheFocusOnTheSameFile) {
  constexpr std::tuple<int, int, int, const char*, int> kRows[] = {
      {0, 0, 1, "a0001.epd 00003.epd 00002.epd ", 2},
      {0, 2, 0, "00002.epd a0001.epd 00003.epd ", 0},
      {0, 1, 0, "a0001.epd 00003.epd 00002.epd ", 2},
      {1, 0, 0, "00002.txt ", -1},
  };
  EXPECT_EQ(Names(), "00002.epd 00003.epd a0001.epd ");
  list.SetCurrent(0);
  for (const auto& [which, sort, direction, expected, focus] : kRows) {
    world.form().Opt_WhichFile.SetOptionIndex(which);
    world.form().Opt_SortFile.SetOptionIndex(sort);
    world.form().Opt_Direction.SetOptionIndex(direction);
    EXPECT_EQ(Names(), expected);
    EXPECT_EQ(list.current(), focus) << expected;
  }
}

TEST_F(LocalFilesTest, ACostlyRefreshWaitsForTheEndOfTheOperation) {
  // The handler of the focus makes a refresh cost 100 ms.
  list.SetCurrent(2);
  list.on_change = [&] { world.loop.Advance(50); };
  OptionGroup& direction = world.form().Opt_Direction;
  const auto remove_and_refresh = [&](const char* name) {
    std::filesystem::remove(world.home.Name(name));
    direction.SetOptionIndex(1 - direction.GetOptionIndex());
    return list.count();
  };
  remove_and_refresh("nothing");
  ASSERT_TRUE(world.app().slot().Run([&] {
    world.loop.Advance(1999);
    EXPECT_EQ(remove_and_refresh("data/00002.epd"), 3);
    world.loop.Advance(1);
    EXPECT_EQ(remove_and_refresh("nothing"), 2) << "twenty times its cost later it may run again";
    EXPECT_EQ(remove_and_refresh("data/00003.epd"), 2);
  }));
  EXPECT_EQ(list.count(), 1) << "made up at the end";
}

TEST(LoggingSchedule, ReadsIntervals) {
  const std::pair<const char*, std::int64_t> rows[] = {{"03:00", 10800}, {"2", 7200},  {" 0.5 ", 1800}, {"0", 0},
                                                       {"-1", 0},        {"0:00", 0},  {"3h", 0},       {"1e300", 0},
                                                       {"25:00", 0},     {"0.0001", 0}};
  for (const auto& [text, seconds] : rows) EXPECT_EQ(LoggingSchedule::Interval(text).value_or(0), seconds) << text;
}

}  // namespace
}  // namespace corvane::test
