#include "app/settings.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>

#include "app/run_at_startup.h"
#include "registry_world.h"
#include "support/temp_folder.h"

namespace corvane {
namespace {

namespace fs = std::filesystem;
using test::RegistryWorld;
using test::TempFolder;

/// One run of the program on the settings file of a folder.
struct Program : RegistryWorld {
  explicit Program(const std::string& folder) : app(folder) {
    for (Selector& selector : form.Cmb_Port) {
      for (int number = 1; number <= 50; ++number) selector.Add("COM" + std::to_string(number), number);
    }
    for (const char* period : {"00:15", "00:30", "01:00", "02:00", "03:00"}) form.Cmb_LogPeriod.Add(period);
    store.SetFile(app.AppPath("corvane.ini"));
  }

  AppInfo app;
  PortDevices ports;
  SettingsStore store{messages, trace};
  Settings settings{{form, registry, app, ports, store, editors, messages, trace}};
};

std::string Replaced(std::string text, const std::string& what, const std::string& with) {
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size())) {
    text.replace(at, what.size(), with);
  }
  return text;
}

class SettingsTest : public testing::Test {
 protected:
  /// Starts the program on a file of these contents.
  std::unique_ptr<Program> Load(const std::string& contents) {
    folder_.Write("corvane.ini", contents);
    return Start();
  }
  std::unique_ptr<Program> Start() {
    auto run = std::make_unique<Program>(folder_.path());
    run->settings.LoadSettings();
    return run;
  }
  /// A file of tests/data, in which "@" stands for the application folder.
  std::string Stored(const std::string& name) {
    std::ifstream file(std::string(TEST_DATA_DIR) + "/" + name, std::ios::binary);
    return Replaced({std::istreambuf_iterator<char>(file), {}}, "@", folder_.path());
  }

  TempFolder folder_;
  std::string file_ = folder_.Name("corvane.ini");
};

TEST_F(SettingsTest, FirstCloseWritesACompleteFileForItsOwner) {
  const auto run = Start();
  EXPECT_FALSE(run->form.Frame_OstrelWebData.visible());
  EXPECT_FALSE(run->form.Suppress.set());
  EXPECT_TRUE(run->settings.SaveSettings());
  EXPECT_EQ(folder_.Read("corvane.ini"), Stored("fresh_settings.ini"));
  EXPECT_EQ(fs::status(file_).permissions(), fs::perms(0600));
  EXPECT_TRUE(run->dialogs.boxes.empty());
}

TEST_F(SettingsTest, AFileComesBackAsItWas) {
  const std::string contents = Replaced(Stored("used_settings.ini"), "\n", "\r\n");
  const auto run = Load(contents);
  run->relays.FillRelaySelector();
  EXPECT_EQ(run->form.Txt_Folder.text(), "données");
  EXPECT_EQ(run->form.Txt_FTPFolder.text(), "") << "null is empty";
  EXPECT_EQ(run->form.Cmb_LogPeriod.shown_text(), "04:17");
  EXPECT_EQ(run->form.Cmb_Port[1].SelectedItemData(), 36);
  EXPECT_EQ(run->ports.DeviceOf(5), "/dev/serial/by-id/usb-A");
  EXPECT_FALSE(run->form.Lst_Units.checked(0));
  EXPECT_TRUE(run->form.Lst_Units.checked(1));
  EXPECT_TRUE(run->settings.SaveSettings());
  EXPECT_EQ(folder_.Read("corvane.ini"), contents);
}

TEST_F(SettingsTest, WhatTheEditorsShowIsSaved) {
  auto run = Start();
  run->units.Select(2);
  run->form.Txt_UnitID.SetText("77");
  run->clients.Select(1);
  run->form.Txt_ClientFolder.SetText("");
  EXPECT_TRUE(run->settings.SaveSettings());
  run = Start();
  EXPECT_EQ(run->registry.Units[2].ID, 77);
  EXPECT_EQ(run->registry.Clients[1].Folder, "");
  EXPECT_EQ(run->app.PreviousVersion(), AppInfo::VersionText());
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
    const auto run = Load(row.contents);
    EXPECT_EQ(run->ports.DeviceOf(1), "/dev/ttyS0");
    const auto texts = run->dialogs.Texts();
    ASSERT_EQ(texts.size(), row.reported.empty() ? 0U : 1U);
    for (const std::string& text : texts) EXPECT_NE(text.find(row.reported), std::string::npos) << text;
    EXPECT_TRUE(run->settings.SaveSettings());
    const std::string saved = folder_.Read("corvane.ini");
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
    auto run = Load("[Ports]\n" + row.ports + "[Mine]\n");
    run->ports.Assign(row.number, row.device);
    EXPECT_TRUE(run->settings.SaveSettings());
    EXPECT_NE(folder_.Read("corvane.ini").find("[Ports]\n" + row.saved + "[Mine]\n"), std::string::npos)
        << folder_.Read("corvane.ini");
    run = Start();
    if (row.number > 0) {
      EXPECT_EQ(run->ports.AssignedTo(row.number), row.device);
    }
  }
}

TEST_F(SettingsTest, ManyBadValuesMakeOneBoxThatClosesByItself) {
  std::string contents = "[Units]\nNumUnits=1000\n";
  for (int index = 1; index <= 1000; ++index) contents += "ID" + std::to_string(index) + "=x\n";
  folder_.Write("corvane.ini", contents);
  Program run(folder_.path());
  run.dialogs.answer_plain_boxes = false;
  run.settings.LoadSettings();
  ASSERT_EQ(run.dialogs.boxes.size(), 1U);
  EXPECT_NE(run.dialogs.boxes[0].text.find("and 995 more"), std::string::npos);
  EXPECT_EQ(run.dialogs.open_boxes, 0);
  EXPECT_EQ(run.registry.Units[1000].ID, 1000);
}

TEST_F(SettingsTest, WhatIsNoSettingsFileIsCopiedBeforeItIsReplaced) {
  const std::string damaged = std::string("[General]\nFTPServer=a\n") + std::string(100, '\0');
  folder_.Write("corvane.ini.bad", "older");
  auto run = Load(damaged);
  EXPECT_EQ(folder_.Read("corvane.ini.bad"), damaged);
  EXPECT_EQ(fs::status(file_ + ".bad").permissions() & fs::perms::group_read, fs::perms::none);
  EXPECT_EQ(run->form.Txt_FTPServer.text(), "a");
  ASSERT_EQ(run->dialogs.boxes.size(), 1U);
  EXPECT_NE(run->dialogs.boxes[0].text.find("corvane.ini.bad"), std::string::npos);
  EXPECT_TRUE(run->settings.SaveSettings());
  fs::resize_file(file_, ProfileFile::kLargestFile + 1);
  EXPECT_EQ(Start()->dialogs.boxes.size(), 1U);
  EXPECT_EQ(fs::file_size(file_ + ".bad"), static_cast<std::uintmax_t>(ProfileFile::kLargestFile + 1));
}

TEST_F(SettingsTest, WhatCouldNotBeCopiedIsNotOverwritten) {
  fs::create_directory(file_ + ".bad");
  const auto run = Load(std::string(10, '\0'));
  EXPECT_FALSE(run->settings.SaveSettings());
  EXPECT_EQ(run->dialogs.Texts().back(), "Cannot save INI file");
  EXPECT_EQ(folder_.Read("corvane.ini"), std::string(10, '\0'));
}

TEST(RunAtStartup, WritesAndRemovesTheEntry) {
  RegistryWorld world;
  RunAtStartup startup(world.shell, world.messages, world.trace);
  startup.SetRunAtStartup(true, "/M");
  EXPECT_EQ(world.shell.log_on_entry, " /M");
  EXPECT_TRUE(startup.IsRunAtStartup());
  startup.SetRunAtStartup(true, " /M /D");
  EXPECT_EQ(world.shell.log_on_entry, " /M /D");
  startup.SetRunAtStartup(false, "/M");
  EXPECT_FALSE(startup.IsRunAtStartup());
  world.shell.write_result = Status(13, "Permission denied");
  startup.SetRunAtStartup(true, "/M");
  EXPECT_EQ(world.dialogs.Texts(), std::vector<std::string>{"Save setting result>0"});
}

}  // namespace
}  // namespace corvane
