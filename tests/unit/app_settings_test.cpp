#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

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

}  // namespace
}  // namespace corvane::test
