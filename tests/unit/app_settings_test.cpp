#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "support/small_disk.h"
#include "support/world.h"

namespace corvane::test {
namespace {

namespace fs = std::filesystem;

std::string Replaced(std::string text, const std::string& what, const std::string& with) {
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size())) {
    text.replace(at, what.size(), with);
  }
  return text;
}

class SettingsTest : public testing::Test {
 protected:
  /// Starts the program on a file of these contents.
  Application& Load(const std::string& contents) {
    home.Write("corvane.ini", contents);
    return Start();
  }
  Application& Start() {
    world.dialogs.boxes.clear();
    return world.Start();
  }
  /// Ends the program and gives what it saved.
  std::string Saved() {
    world.app().life().OnWindowClose();
    return home.Read("corvane.ini");
  }
  /// A file of tests/data, in which "@" stands for the application folder.
  std::string Stored(const std::string& name) {
    std::ifstream file(std::string(TEST_DATA_DIR) + "/" + name, std::ios::binary);
    return Replaced({std::istreambuf_iterator<char>(file), {}}, "@", home.path());
  }

  World world;
  TempFolder& home = world.home;
  RecordingDialogs& dialogs = world.dialogs;
};

TEST_F(SettingsTest, FirstCloseWritesACompleteFileForItsOwner) {
  Start();
  EXPECT_FALSE(world.form().Frame_OstrelWebData.visible());
  EXPECT_FALSE(world.form().Suppress.set());
  EXPECT_EQ(Saved(), Stored("fresh_settings.ini"));
  EXPECT_EQ(fs::status(home.Name("corvane.ini")).permissions(), fs::perms(0600));
  EXPECT_TRUE(dialogs.boxes.empty());
}

TEST_F(SettingsTest, AFileComesBackAsItWas) {
  const std::string contents = Replaced(Stored("used_settings.ini"), "\n", "\r\n");
  Load(contents);
  EXPECT_EQ(world.form().Txt_Folder.text(), "données");
  EXPECT_EQ(world.form().Txt_FTPFolder.text(), "") << "null is empty";
  EXPECT_EQ(world.form().Cmb_LogPeriod.shown_text(), "04:17");
  EXPECT_EQ(world.form().Cmb_Port[1].SelectedItemData(), 36);
  EXPECT_EQ(world.app().devices().DeviceOf(5), "/dev/serial/by-id/usb-A");
  EXPECT_FALSE(world.form().Lst_Units.checked(0));
  EXPECT_TRUE(world.form().Lst_Units.checked(1));
  EXPECT_EQ(Saved(), contents);
}

TEST_F(SettingsTest, WhatTheEditorsShowIsSaved) {
  Start();
  world.app().units().Select(2);
  world.form().Txt_UnitID.SetText("77");
  world.form().Lst_Clients.SetCurrent(0);
  world.form().Txt_ClientFolder.SetText("");
  Saved();
  Start();
  EXPECT_EQ(world.app().registry().Units[2].ID, 77);
  EXPECT_EQ(world.app().registry().Clients[1].Folder, "");
  EXPECT_EQ(world.app().app().PreviousVersion(), AppInfo::VersionText());
}

std::string Times(int count, const std::string& text) {
  return count == 0 ? "" : text + Times(count - 1, text);
}

struct InputCase {
  std::string contents;
  std::string saved;     ///< lines of the file after a load and a save
  std::string reported;  ///< a part of the box at the end of loading; empty: no box
};

const InputCase kInputs[] = {
    {"[Relays]\nNumRelays=0\n", "NumRelays=1\nName1=Direct\nID1=0\n", ""},
    {"[Relays]\nNumRelays=1\nName1=Tower\nID1=7\n", "Name1=Direct\nID1=0\n", ""},
    {"[Units]\nNumUnits=-3\n", "NumUnits=0\n", ""},
    {"[Units]\nNumUnits=99999\n", "NumUnits=5\n", "NumUnits=99999 is not a whole number"},
    {"[Units]\nNumUnits=1O\n", "NumUnits=5\n", "NumUnits=1O"},
    {"[Units]\nID1=x\nActive1=70000\n", "ID1=1\nActive1=1\n", "Active1=70000 is not a whole number"},
    {"[Units]\nMoistureCorrection1=2,5\n", "MoistureCorrection1=0\n", "=2,5 is not a number; 0 is used"},
    {"[Units]\nMoistureCorrection1=3.4028235e+38\n", "MoistureCorrection1=3.4028235e+38\n", ""},
    {"[Units]\nMoistureCorrection1=1e40\n", "MoistureCorrection1=0\n", "1e40"},
    {"[General]\nTimeout=soon\n", "Timeout=45\n", "Timeout=soon"},
    {"[General]\nTimeout=null\n", "Timeout=45\n", "[General] Timeout= is not a number"},
    {"[General]\nWhichFile=9\nSortFile=-4\n", "WhichFile=2\nSortFile=0\n", ""},
    {"[General]\nWhichFile=raw\n", "WhichFile=1\n", "WhichFile=raw"},
    {"[General]\nPort=51\n", "Port=0\n", ""},
    {"[General]\nKelvin=yes\n", "Kelvin=0\n", "Kelvin=yes"},
    {"[General]\nKelvin=-2\n", "Kelvin=1\n", ""},
    {"[General]\nKelvin=\n", "Kelvin=0\n", ""},
    {"[General]\nFTPServer=Null\n", "FTPServer=Null\n", ""},
    {"[General\n[General]\nFTPServer\nFTPServer=a\n", "FTPServer=a\n", "Some lines"},
    {"[General]\nFolder=C:\\data\n", "Folder=C:\\data\n", "Folder=C:\\data is not a path"},
    {"[General]\nFolder=\\\\host\\data\n", "Folder=\\\\host\\data\n", "is not a path"},
    {"[General]\nFolder=data\\north\n", "Folder=data\\north\n", ""},
    {"[General]\nOstrelHost=elsewhere\n", "OstrelHost=localhost\n", ""},
    {"[Ports]\nCOM1=ttyUSB0\n", "COM1=ttyUSB0\n", "COM1=ttyUSB0"},
    {"[Ports]\nCOM51=/dev/x\n", "COM51=/dev/x\n", "COM51=/dev/x"},
    {"[General]\nPrefix=" + Times(200, "é") + "\n", "Prefix=" + Times(126, "é") + "\n", ""},
};

TEST_F(SettingsTest, InputIsTakenOrReported) {
  for (const InputCase& row : kInputs) {
    SCOPED_TRACE(row.contents);
    Load(row.contents);
    EXPECT_EQ(world.app().devices().DeviceOf(1), "/dev/ttyS0");
    const auto texts = dialogs.Texts();
    ASSERT_EQ(texts.empty(), row.reported.empty());
    const std::string first = texts.empty() ? "" : texts[0];
    EXPECT_NE(first.find(row.reported), std::string::npos) << first;
    const std::string saved = Saved();
    EXPECT_NE(saved.find("\n" + row.saved), std::string::npos) << saved;
  }
}

TEST_F(SettingsTest, OnlyChangedPortsAreWritten) {
  struct Row {
    std::string ports;
    int number;
    std::string device;
    std::string saved;
  };
  const Row rows[] = {
      {"com3 = \"/dev/a\"\n; radio\nCOM4=ttyS9\n", 0, "", "com3 = \"/dev/a\"\n; radio\nCOM4=ttyS9\n"},
      {"com3 = /dev/a\nCOM9=/dev/c\n", 3, "/dev/b", "com3 = /dev/b\nCOM9=/dev/c\n"},
      {"COM3=/dev/a\nCOM03=/dev/c\n", 3, "/dev/b", "COM3=/dev/b\nCOM03=/dev/b\n"},
      {"COM4=ttyS9\n", 4, "/dev/b", "COM4=/dev/b\n"},
      {"COM9=/dev/c\n", 3, "/dev/b", "COM9=/dev/c\nCOM3=/dev/b\n"},
      {"com3=/dev/a\n", 3, "", "com3=null\n"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.ports);
    Load("[Ports]\n" + row.ports + "[Mine]\n");
    EXPECT_EQ(world.app().ports().Assign(row.number, row.device).ok(), row.number > 0);
    const std::string saved = Saved();
    EXPECT_NE(saved.find("[Ports]\n" + row.saved + "[Mine]\n"), std::string::npos) << saved;
    Start();
    if (row.number > 0) {
      EXPECT_EQ(world.app().devices().AssignedTo(row.number), row.device);
    }
  }
}

TEST_F(SettingsTest, ManyBadValuesMakeOneBoxThatClosesByItself) {
  std::string contents = "[Units]\nNumUnits=1000\n";
  for (int index = 1; index <= 1000; ++index) contents += "ID" + std::to_string(index) + "=x\n";
  home.Write("corvane.ini", contents);
  dialogs.answer_plain_boxes = false;
  Start();
  ASSERT_EQ(dialogs.boxes.size(), 1U);
  EXPECT_NE(dialogs.boxes[0].text.find("and 995 more"), std::string::npos);
  EXPECT_EQ(dialogs.open_boxes, 0);
  EXPECT_EQ(world.app().registry().Units[1000].ID, 1000);
}

TEST_F(SettingsTest, WhatIsNoSettingsFileIsCopiedBeforeItIsReplaced) {
  const std::string damaged = std::string("[General]\nFTPServer=a\n") + std::string(100, '\0');
  home.Write("corvane.ini.bad", "older");
  Load(damaged);
  Load(damaged);
  EXPECT_EQ(home.Read("corvane.ini.bad"), "older");
  EXPECT_EQ(home.Read("corvane.ini.bad2"), damaged);
  EXPECT_FALSE(fs::exists(home.Name("corvane.ini.bad3"))) << "one copy of the same file is enough";
  EXPECT_EQ(fs::status(home.Name("corvane.ini.bad2")).permissions() & fs::perms::group_read, fs::perms::none);
  EXPECT_EQ(world.form().Txt_FTPServer.text(), "a");
  ASSERT_EQ(dialogs.boxes.size(), 1U);
  EXPECT_NE(dialogs.boxes[0].text.find("corvane.ini.bad2"), std::string::npos);
}

TEST_F(SettingsTest, WhatCouldNotBeCopiedIsNotOverwritten) {
  const std::string damaged(5000, '\0');
  home.Write("corvane.ini", damaged);
  {
    const SmallDisk disk(4000);
    Start();
  }
  EXPECT_FALSE(world.app().life().OnWindowClose());
  EXPECT_EQ(dialogs.Texts().back(), "Cannot save INI file");
  EXPECT_EQ(home.Read("corvane.ini"), damaged);
}

}  // namespace
}  // namespace corvane::test
