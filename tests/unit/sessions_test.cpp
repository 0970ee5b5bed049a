#include <gtest/gtest.h>

#include "support/world.h"

namespace corvane::test {
namespace {

using ::testing::Test;

std::string FirstRow(const std::string& calibrated) {
  const std::size_t start = calibrated.find("\r\n") + 2;
  return calibrated.substr(start, calibrated.find("\r\n", start) - start);
}

TEST(Sessions, RoundStoresConvertsAndBringsOnlyWhatIsNew) {
  World world(SmallNetwork(2));
  WriteTables(world.home);
  world.Start();
  EXPECT_TRUE(world.app().commands().DownloadAll(true, kRadioUnits, true));
  const std::string header = Framed("V2,00001,4,3,2,2010/3/12 10:00,12500,29310,100");
  const std::string stored = header + world.readings[0] + "\r\n" + world.readings[1] + "\r\n";
  EXPECT_EQ(world.home.Read("data/F1/00001.epd"), "");
  EXPECT_EQ(world.home.Read("data/00001.epd"), stored);
  EXPECT_EQ(world.home.Read("data/00002.epd"), stored);
  EXPECT_EQ(FirstRow(world.home.Read("data/00001.txt")),
            "12 Mar 2010 08:00, 12.500, 20.10, 1, 15.00, 15.09, 0.900, 20.00");
  EXPECT_EQ(world.form().Lbl_LastDownload.text(), "12 Mar 2010 10:00");
  EXPECT_EQ(world.form().Lbl_NextDownload.text(), "12 Mar 2010 12:00");
  EXPECT_EQ(world.form().Lbl_Status.text(), "Finished...");
  EXPECT_EQ(world.app().flags().problems, 0);
  EXPECT_FALSE(world.port.IsOpen());

  world.readings.push_back("2010/3/12 10:00,12480,29330,3,1520,920,29320");
  world.port.lines.clear();
  EXPECT_TRUE(world.app().commands().DownloadAll(true, kRadioUnits, true));
  EXPECT_EQ(world.port.lines[0], "00000:00001:01rr 1003120900");
  EXPECT_EQ(world.home.Read("data/00001.epd"), stored + world.readings[2] + "\r\n");
}

struct FailureCase {
  const char* name;
  std::vector<std::string> answers;  ///< of unit 1
  std::size_t commands;              ///< sent to both units
  const char* status;
  const char* try_label;
  std::int64_t problems;
  bool unit2_stored;
};

void PrintTo(const FailureCase& row, std::ostream* out) {
  *out << row.name;
}

class SessionFailures : public ::testing::TestWithParam<FailureCase> {};

TEST_P(SessionFailures, EndAsTold) {
  const FailureCase& row = GetParam();
  World world(SmallNetwork(2));
  world.next_answers[1] = row.answers;
  Application& app = world.Start();
  app.form().Chk_Trace[kTraceDecision].SetTicked(true);
  app.form().Chk_Automatic.SetTicked(true);
  world.form().mnu_Download.Click(1);
  EXPECT_EQ(world.port.lines.size(), row.commands);
  EXPECT_EQ(world.form().Lbl_Status.text(), row.status);
  EXPECT_EQ(world.form().Lbl_Try.text(), row.try_label);
  EXPECT_EQ(app.flags().problems, row.problems);
  EXPECT_EQ(!world.home.Read("data/00002.epd").empty(), row.unit2_stored);
  EXPECT_FALSE(app.link().HalvexError);
  EXPECT_EQ(app.link().State, kIdle);
  EXPECT_TRUE(world.form().Cmd_Close.enabled());
}

const std::string kBadLine = "$2010/3/12 8:00,12500,29310,1,1500,900,29300*00\r\n";

INSTANTIATE_TEST_SUITE_P(Rows, SessionFailures,
                         ::testing::Values(FailureCase{"ErrorTwiceThenData",
                                                       {"ERROR 2\r\n", "error 2\r\n"},
                                                       4,
                                                       "Finished (1 unit(s) with problems)...",
                                                       "1",
                                                       0,
                                                       true},
                                           FailureCase{"ErrorToTheLimit",
                                                       {"ERROR 2\r\n", "ERROR 5\r\n", "ERROR\r\n"},
                                                       4,
                                                       "Finished (1 unit(s) with problems)...",
                                                       "1",
                                                       1,
                                                       true},
                                           FailureCase{"SilenceEndsTheSession", {""}, 1, "Finished...", "1", 2, false},
                                           FailureCase{"BadLineEndsTheSessionByTimeout",
                                                       {Framed("V2,00001,4,3,2,2010/3/12 10:00") + kBadLine},
                                                       1,
                                                       "Finished...",
                                                       "1",
                                                       2,
                                                       false}),
                         [](const auto& row) { return row.param.name; });

TEST(Sessions, LastUnitThatAlwaysFailsLeavesTheTryLabelAboveTheLimit) {
  World world(SmallNetwork(1));
  world.next_answers[1] = {"ERROR 2\r\n", "ERROR 2\r\n", "ERROR 2\r\n", "ERROR 2\r\n"};
  Application& app = world.Start();
  app.form().Chk_Trace[kTraceDecision].SetTicked(true);
  world.form().mnu_Download.Click(1);
  EXPECT_EQ(world.port.lines.size(), 3U);
  EXPECT_EQ(world.form().Lbl_Try.text(), "4");
  EXPECT_TRUE(world.Logged("4 tries - do next unit...."));
  EXPECT_TRUE(world.Logged("HVError: No response from unit"));
  EXPECT_EQ(world.form().Lst_Units.current(), -1);
}

TEST(Sessions, CommandsGoToTheRightUnitsWithTheirParameters) {
  struct Row {
    bool all;
    std::int16_t command;
    std::string first_line;
    std::size_t lines;
    std::size_t questions;
  };
  const std::vector<Row> rows = {
      {true, kGetDate, "00000:00001:01rt ", 2, 0},
      {false, kGetDate, "00000:00002:00rt ", 1, 0},
      {true, kSetDate, "00000:00001:01WT 100312100000", 2, 2},
      {true, kSetLogPeriod, "00000:00001:01WI 0F", 2, 2},
      {true, kSetMode, "00000:00001:01SM fast", 2, 2},
      {true, kSetDelays, "00000:00001:01SD 5,6", 2, 2},
      {true, kReadMemory, "00000:00001:01rm ", 2, 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.first_line);
    World world(SmallNetwork(2));
    Application& app = world.Start();
    app.units().Select(2);
    app.form().Cmb_LogPeriod.SetShownText("00:15");
    app.form().Lbl_Mode.SetText("fast");
    app.form().Txt_Delays.SetText("5,6");
    world.dialogs.answers = {1, 1};
    (row.all ? app.form().Cmd_ProcessAll : app.form().Cmd_Process)[row.command].Click();
    ASSERT_EQ(world.port.lines.size(), row.lines);
    EXPECT_EQ(world.port.lines[0], row.first_line);
    EXPECT_EQ(world.dialogs.boxes.size(), row.questions);
    EXPECT_EQ(app.form().Lst_Units.current(), 1);
    EXPECT_EQ(app.form().Lbl_LastDownload.text(), "");
  }
}

TEST(Sessions, SetDateNeedsTwoYes) {
  for (const std::deque<int>& answers : {std::deque<int>{2}, std::deque<int>{1, 2}}) {
    World world(SmallNetwork(2));
    world.Start();
    world.dialogs.answers = answers;
    world.form().mnu_SetDate.Click(1);
    EXPECT_TRUE(world.port.lines.empty());
    EXPECT_EQ(world.port.opens, 0);
    EXPECT_EQ(world.dialogs.boxes[0].text, "Set date in all selected units to: 2010-03-12 10:00:00 ?");
    if (answers.size() == 2) {
      EXPECT_EQ(world.dialogs.boxes[1].text,
                "Set date in all selected units to: 2010-03-12 10:00:00\r\nAre you really sure ?");
    }
  }
}

TEST(Sessions, UnansweredQuestionIsNoAfterFiveMinutes) {
  World world(SmallNetwork(1));
  world.Start().form().mnu_SetDate.Click(1);
  EXPECT_TRUE(world.port.lines.empty());
  EXPECT_EQ(world.loop.MonotonicMilliseconds(), 300000);
  EXPECT_EQ(world.dialogs.open_boxes, 0);
}

TEST(Sessions, NobodyToAskOpensNoPort) {
  World world(SmallNetwork(2) + "GetFrom1=1\nActive2=0\n");
  world.Start();
  world.app().units().Select(1);
  world.form().mnu_SetDate.Click(1);
  EXPECT_EQ(world.form().Lbl_Status.text(), "No units to download by radio...");
  world.form().Cmd_Process[kGetDate].Click();
  EXPECT_EQ(world.form().Lbl_Status.text(), "No units to download by radio...");
  EXPECT_EQ(world.port.opens, 0);
  EXPECT_TRUE(world.dialogs.boxes.empty());
}

TEST(Sessions, CancelStopsEverythingAndLeavesTheStatusLine) {
  World world(SmallNetwork(3));
  world.Start();
  world.form().Chk_Trace[kTraceDecision].SetTicked(true);
  world.loop.After(500, [&] { world.form().Cmd_Cancel.Click(); });
  EXPECT_TRUE(world.app().commands().DownloadAll(true, kRadioUnits, false));
  EXPECT_EQ(world.port.lines.size(), 1U);
  EXPECT_EQ(world.form().Lbl_Status.text(), "Cancel...");
  EXPECT_TRUE(world.Logged("UserCancel, so quit all units"));
  EXPECT_EQ(world.app().flags().problems, 2);
  EXPECT_TRUE(world.form().Cmd_DownloadAll[1].enabled());
}

TEST(Sessions, SecondOperationIsRefusedWhileOneRuns) {
  World world(SmallNetwork(2));
  world.Start();
  bool refused = false;
  world.loop.After(500, [&] {
    refused = !world.app().commands().ConvertAll(true);
    EXPECT_FALSE(world.form().Cmd_ConvertAll.enabled());
    EXPECT_FALSE(world.form().mnu_Units.enabled());
  });
  world.form().mnu_Download.Click(1);
  EXPECT_TRUE(refused);
  EXPECT_EQ(world.port.lines.size(), 2U);
}

TEST(Sessions, PortThatDoesNotOpenIsAStatusAndAnErrorLineNeverABox) {
  World world(SmallNetwork(1));
  world.Start();
  world.port.open_result = {2, "/dev/base is not there"};
  world.form().mnu_Download.Click(1);
  EXPECT_TRUE(world.dialogs.boxes.empty());
  EXPECT_TRUE(world.Logged("A-error: "));
  EXPECT_TRUE(world.Logged("/dev/base is not there"));
  EXPECT_EQ(world.form().Lbl_Status.text(), "Finished...");
  EXPECT_EQ(world.app().flags().problems, 2);
}

TEST(Sessions, LastDateInTheFutureIsReportedWithFileAndLine) {
  World world(SmallNetwork(1));
  const std::string reading = "2030/1/1 0:00,12500,29310,1,1500,900,29300";
  world.home.Write("data/00001.epd", Framed("V2,00001,4,3,1,2010/3/12 10:00") + reading + "\r\n");
  world.Start();
  world.form().mnu_Download.Click(1);
  EXPECT_TRUE(world.Logged("2030-01-01 00:00:00 in " + world.home.Name("data/00001.epd") + ", line: " + reading));
  EXPECT_EQ(world.dialogs.boxes.size(), 1U);
  EXPECT_EQ(world.port.lines[0], "00000:00001:01rr 3001010000");
}

TEST(Sessions, FolderThatCannotBeMadeFailsTheUnitAndSaysWhy) {
  World world(SmallNetwork(1));
  world.home.Write("data", "a file in the way");
  world.Start();
  world.form().mnu_Download.Click(1);
  EXPECT_TRUE(world.port.lines.empty());
  EXPECT_TRUE(world.Logged(world.home.Name("data")));
  EXPECT_EQ(world.app().flags().problems, 1);
}

TEST(PortFinder, TestsAndFindsPorts) {
  World world("[Ports]\nCOM3=/dev/three\n");
  world.Start();
  world.port.answering_devices = {"/dev/three", "/dev/ttyS1"};
  world.form().Cmb_Port[0].SelectByItemData(2);
  world.port.on_line = [&](const std::string&) {
    if (world.port.device == "/dev/three") world.port.Receive("ready\r\n");
  };
  world.form().Cmd_FindPort[0].Click();
  EXPECT_EQ(world.form().Lbl_Status.text(), "Found Pelvaro unit on COM3");
  EXPECT_EQ(world.form().Cmb_Port[0].SelectedItemData(), 3);
  EXPECT_EQ(world.loop.MonotonicMilliseconds() / 1000, 2);
  EXPECT_EQ(world.port.written.substr(world.port.written.size() - 1), "\r");

  world.port.answering_devices = {"/dev/nothing"};
  world.form().Cmd_FindPort[0].Click();
  EXPECT_EQ(world.form().Lbl_Status.text(), "Pelvaro not found");
  EXPECT_EQ(world.form().Cmb_Port[0].SelectedItemData(), 3);
}

}  // namespace
}  // namespace corvane::test
