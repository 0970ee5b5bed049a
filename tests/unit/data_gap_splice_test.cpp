#include "data/gap_splice.h"

#include <filesystem>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "base/files.h"
#include "base/status.h"
#include "support/sync_faults.h"
#include "support/temp_folder.h"

namespace corvane::test {
namespace {

std::string Reading(int hour, int minute = 0) {
  return "2010/3/12 " + std::to_string(hour) + ":" + std::to_string(minute) + ",512,300";
}
std::string Lines(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\r\n";
  return text;
}
const ReadingPair kPair{DateTime::FromCivil(2010, 3, 12, 9), DateTime::FromCivil(2010, 3, 12, 12)};
const std::string kHead = "$V2,1,2,1,9,x*00\r\n";
const std::string kNew = Lines({Reading(10), Reading(11)});

class GapSpliceTest : public ::testing::Test {
 protected:
  /// How a process ends that is killed before one of the changes that its splice makes.
  int KilledBefore(int change) {
    const pid_t child = fork();
    if (child == 0) {
      kill_before_change = change;
      const SpliceResult result = SpliceReadings(file_, kPair, {Reading(10), Reading(11)}, [] { return true; });
      _exit(result.added == 2 ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  TempFolder folder_;
  std::string file_ = folder_.Name("00001.epd");
};

TEST_F(GapSpliceTest, NewReadingsStandBetweenTheirNeighboursOrNowhere) {
  using enum SpliceOutcome;
  const std::string nine = Lines({Reading(9)});
  const std::string twelve = Lines({Reading(12)});
  const std::string torn = "2010/3/12 13:";
  const std::string early = Lines({Reading(1), Reading(9, 1)});
  struct Row {
    const char* name;
    std::string before, behind;  ///< the place
    std::vector<std::string> readings;
    std::string added;  ///< none: all stays as it is
    SpliceOutcome outcome;
  };
  std::string far = kHead;
  while (far.size() < 900'000) far += early;
  const Row rows[] = {
      {"behind the header", kHead + nine, twelve, {Reading(10), Reading(11)}, kNew, Done},
      {"other line ends and a torn tail stay",
       "h\n" + Reading(9) + "\n",
       Reading(12) + "\n\n" + torn,
       {Reading(10)},
       Lines({Reading(10)}),
       Done},
      {"beyond many blocks", far + nine, twelve + far + torn, {Reading(10)}, Lines({Reading(10)}), Done},
      {"words between the neighbours",
       kHead + nine,
       "words\r\n" + std::string(3, '\0') + "\r\n" + twelve,
       {Reading(11)},
       Lines({Reading(11)}),
       Done},
      {"what the file holds elsewhere",
       kHead + Lines({Reading(10)}) + nine,
       twelve,
       {Reading(10), Reading(11)},
       Lines({Reading(11)}),
       Done},
      {"all of it", kHead + nine, twelve + kNew, {Reading(10), Reading(11)}, "", NothingNew},
      {"none", kHead + nine, twelve, {}, "", NothingNew},
      {"filled meanwhile", kHead + nine, Lines({Reading(9, 30)}) + twelve, {Reading(10)}, "", NotTogether},
      {"the later one is torn", kHead + nine, Reading(12), {Reading(10)}, "", NotTogether},
      {"the later one went", kHead + nine, "", {Reading(10)}, "", NotTogether},
      {"as old as the first", kHead + nine, twelve, {Reading(9), Reading(10)}, "", NotBetween},
      {"as new as the last", kHead + nine, twelve, {Reading(10), Reading(12)}, "", NotBetween},
      {"not in order", kHead + nine, twelve, {Reading(11), Reading(10)}, "", NotBetween},
      {"twice", kHead + nine, twelve, {Reading(10), Reading(10)}, "", NotBetween},
      {"no reading", kHead + nine, twelve, {"words"}, "", NotBetween},
      {"two lines", kHead + nine, twelve, {Reading(10) + "\n" + Reading(11)}, "", NotBetween},
  };
  for (const Row& row : rows) {
    folder_.Write("00001.epd", row.before + row.behind);
    const SpliceResult result = SpliceReadings(file_, kPair, row.readings, [] { return true; });
    EXPECT_EQ(result.outcome, row.outcome) << row.name;
    EXPECT_EQ(folder_.Read("00001.epd"), row.before + row.added + row.behind) << row.name;
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_.path()), {}), 1) << row.name;
  }
}

TEST_F(GapSpliceTest, AFileThatGrowsMeanwhileACancelAndAFailingDiskLeaveItAsItIs) {
  const std::string former = kHead + Lines({Reading(9), Reading(12)});
  const auto splice = [&](const std::function<bool()>& poll) {
    return SpliceReadings(file_, kPair, {Reading(10)}, poll).outcome;
  };
  folder_.Write("00001.epd", former);
  EXPECT_EQ(splice([] { return false; }), SpliceOutcome::Stopped);
  failing_syncs = 1;
  EXPECT_THROW(splice([] { return true; }), RunTimeError);
  EXPECT_EQ(folder_.Read("00001.epd"), former);
  EXPECT_EQ(splice([&] { return !folder_.Write("00001.epd", former + Lines({Reading(13)})).empty(); }),
            SpliceOutcome::Changed);
  EXPECT_EQ(folder_.Read("00001.epd"), former + Lines({Reading(13)}));
  failing_folder_syncs = 1;
  const SpliceResult unsynced = SpliceReadings(file_, kPair, {Reading(10)}, [] { return true; });
  EXPECT_EQ(unsynced.added, 1) << "it stands in the file";
  EXPECT_FALSE(unsynced.synced.ok());
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_.path()), {}), 1);
}

TEST_F(GapSpliceTest, AKillAtAnyStepLeavesTheFormerFileOrTheNewOne) {
  const std::string former = kHead + Lines({Reading(9), Reading(12)});
  const std::string whole = kHead + Lines({Reading(9)}) + kNew + Lines({Reading(12)});
  int kills = 0;
  int renamed = 0;
  for (int status = kKilled; status == kKilled; ++kills) {
    folder_.Write("00001.epd", former);
    status = KilledBefore(kills + 1);
    const std::string left = folder_.Read("00001.epd");
    EXPECT_TRUE(left == former || left == whole) << "before change " << kills + 1;
    renamed += left == whole ? 1 : 0;
    EXPECT_TRUE(status == kKilled || status == 0) << status;
  }
  EXPECT_GT(kills, 6);
  EXPECT_GT(renamed, 1) << "also behind the rename";
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_.path()), {}), 1) << "what kills left is gone";
}

}  // namespace
}  // namespace corvane::test
