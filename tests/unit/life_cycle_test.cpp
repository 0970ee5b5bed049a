#include <filesystem>

#include <gtest/gtest.h>

#include "support/world.h"

namespace corvane::test {
namespace {

struct SwitchCase {
  const char* switches;
  bool minimised;
  std::size_t downloads;
  bool closed;
};

TEST(LifeCycle, SwitchesAreFoundAnywhereInTheCommandLine) {
  const std::vector<SwitchCase> rows = {{"", false, 0, false},
                                        {"/m/d", true, 5, false},
                                        {"/D /Q", false, 5, true},
                                        {"/DATA", false, 5, false},
                                        {"x/q", false, 0, true}};
  for (const SwitchCase& row : rows) {
    SCOPED_TRACE(row.switches);
    World world("[Ports]\nCOM1=/dev/base\n");
    world.Start();
    world.app().life().OnWindowActivate(row.switches);
    EXPECT_EQ(world.form().Frm_Main.minimised(), row.minimised);
    EXPECT_EQ(world.port.lines.size(), row.downloads);
    EXPECT_EQ(world.app().flags().closing, row.closed);
    EXPECT_FALSE(world.form().Suppress.set());
  }
}

TEST(LifeCycle, NoMessageHoldsUpAStartThatDownloads) {
  World world("[General]\nFolder=plain\n[Ports]\nCOM1=/dev/base\n[Units]\nNumUnits=1\nClientID1=0\n");
  world.home.Write("plain", "in the way of the data folder");
  world.dialogs.answer_plain_boxes = false;
  world.Start("/D/Q");
  world.app().life().OnWindowActivate("/D/Q");
  EXPECT_TRUE(world.app().flags().closing);
  EXPECT_FALSE(world.app().flags().automatic_run);
  EXPECT_GE(world.dialogs.boxes.size(), 1U);
  for (const BoxContents& box : world.dialogs.boxes) EXPECT_FALSE(box.count_down.empty()) << box.text;
}

TEST(LifeCycle, EveryActivationActsOnTheSwitchesAgain) {
  World world("[Ports]\nCOM1=/dev/base\n[Units]\nNumUnits=1\n");
  world.Start();
  world.app().life().OnWindowActivate("/D");
  world.loop.After(100, [&] { world.app().life().OnWindowActivate("/D"); });
  world.app().life().OnWindowActivate("/D");
  EXPECT_EQ(world.port.lines.size(), 2U) << "one that arises during an operation is dropped";
}

TEST(LifeCycle, DueDownloadOfTheTimeBeforeTheStartIsStartedNotForgotten) {
  World world(
      "[General]\nAutomatic=1\nNextDownload=12 Mar 2010 06:00\nHeartBeat=1\n[Ports]\nCOM1=/dev/base\n"
      "[Units]\nNumUnits=1\n");
  world.Start();
  world.app().life().OnWindowActivate("");
  EXPECT_EQ(world.form().Lbl_NextDownload.text(), "12 Mar 2010 06:00");
  world.loop.Advance(20000);
  EXPECT_EQ(world.port.lines.size(), 1U);
  EXPECT_EQ(world.form().Lbl_NextDownload.text(), "12 Mar 2010 12:00");
  EXPECT_NE(world.home.Read("summary.csv").find("Auto, 1/10, "), std::string::npos);
  world.loop.Advance(3 * 3600 * 1000);
  EXPECT_EQ(world.port.lines.size(), 2U);
}

TEST(LifeCycle, CloseDuringADownloadStopsTheUnitAndUnwinds) {
  World world("[Ports]\nCOM1=/dev/base\n");
  world.Start();
  world.next_answers[1] = {Framed("V2,00001,4,3,2,2010/3/12 10:00") +
                           Framed("2010/3/12 8:00,12500,29310,1,1500,900,29300")};
  world.loop.After(2000, [&] { world.app().commands().Close(true); });
  world.form().mnu_Download.Click(1);
  EXPECT_LT(world.loop.MonotonicMilliseconds(), 3000);
  EXPECT_GE(world.port.escapes, 3);
  world.app().life().OnWindowClose();
  EXPECT_NE(world.home.Read("00001.epd").find("2010/3/12 8:00"), std::string::npos);
  EXPECT_NE(world.home.Read("corvane.ini").find("NumUnits=5"), std::string::npos);
}

TEST(LifeCycle, AFailedSaveAtCloseIsSeenButHoldsNothingUp) {
  for (const bool silently : {false, true}) {
    SCOPED_TRACE(silently);
    World world;
    world.Start();
    world.dialogs.answer_plain_boxes = false;
    std::filesystem::create_directories(world.home.Name("corvane.ini/full"));
    world.app().commands().Close(silently);
    world.app().life().OnWindowClose();
    const std::vector<std::string> shown(silently ? 0 : 1, "Cannot save INI file");
    EXPECT_EQ(world.dialogs.Texts(), shown);
    EXPECT_EQ(world.loop.MonotonicMilliseconds(), silently ? 0 : 10000);
    EXPECT_TRUE(world.Logged("Message: Cannot save INI file"));
  }
}

TEST(Commands, CancelWhileIdleTellsTheBaseStationToStop) {
  World world("[Ports]\nCOM1=/dev/base\n");
  world.Start();
  world.form().Cmd_Cancel.Click();
  EXPECT_EQ(world.port.escapes, 1);
  EXPECT_FALSE(world.port.IsOpen());
  EXPECT_EQ(world.form().Lbl_Status.text(), "Pelvaro clear");
  EXPECT_TRUE(world.Logged("User clicked 'cancel'"));
}

TEST(Commands, FieldsActWhenLeft) {
  World world;
  world.Start();
  for (const auto& [typed, held] : {std::pair("40", "15"), std::pair("0", "1"), std::pair("7", "7")}) {
    world.form().Txt_MaxRetries.SetText(typed);
    world.form().Txt_MaxRetries.Leave();
    EXPECT_EQ(world.form().Txt_MaxRetries.text(), held);
  }
  world.form().Txt_AutomaticInterval.SetText("36");
  world.form().Txt_AutomaticInterval.Leave();
  EXPECT_EQ(world.form().Lbl_NextDownload.text(), "13 Mar 2010 12:00");
}

TEST(Commands, HelpAndAbout) {
  World world;
  world.Start();
  for (const int entry : {0, 3}) world.form().mnu_Help.Click(entry);
  EXPECT_EQ(world.dialogs.boxes[0].text, "There is no Help associated with this project");
  EXPECT_EQ(world.dialogs.boxes[1].text.substr(0, 20), "Corvane\r\nver 0.1.000");
}

TEST(AppInfo, PathsAndVersions) {
  AppInfo app("/srv/corvane");
  EXPECT_EQ(app.AppPath("corvane.ini"), "/srv/corvane/corvane.ini");
  EXPECT_EQ(app.AppPath("/etc/x"), "/etc/x");
  EXPECT_EQ(app.AppPath("C:\\x"), "C:\\x");
  EXPECT_EQ(AppInfo("/").AppPath("corvane.ini"), "/corvane.ini");
  for (const auto& [version, newer] : {std::pair("", true), std::pair("1.2", true), std::pair("0.1.000", false),
                                       std::pair("9.0.000", true), std::pair("0.1.001", true)}) {
    app.SetPreviousVersion(version);
    EXPECT_EQ(app.IsNewerVersion(), newer) << version;
  }
}

}  // namespace
}  // namespace corvane::test
