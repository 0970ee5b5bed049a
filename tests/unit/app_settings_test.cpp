#include "app/settings.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <memory>

#include "app/run_at_startup.h"
#include "registry_world.h"
#include "support/temp_folder.h"

namespace corvane {
namespace {

namespace fs = std::filesystem;
using test::RegistryWorld;
using test::Rows;
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
  Settings settings{{form, registry, app, ports, store, units, relays, clients, messages, trace}};
};

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

  TempFolder folder_;
  std::string file_ = folder_.Name("corvane.ini");
};

std::string Replaced(std::string text, const std::string& what, const std::string& with) {
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size())) {
    text.replace(at, what.size(), with);
  }
  return text;
}

// "@" stands for the application folder.
constexpr const char* kFreshFile = R"([General]
Folder=@
WhichFile=1
SortFile=0
SortDirection=0
Port=1
PortHandHeld=1
Settings=9600,N,8,1
ShowReply=1
MoistureLookupFile=@/moisture.lkp
TemperatureLookupFile=@/salinity.lkp
SalinityCorrection=@/salcorr.lkp
UseLookup=1
Kelvin=1
ShowCorrectionFactors=0
Language=@/hveng.lng
Prefix=null
RawFileExtension=epd
CalibratedFileExtension=txt
DateFormat=d mmm yyyy HH:MM
Password=null
WhichReadings=0
StartAt=06:00
Interval=01:00
Average=0
Timeout=45
DataTimeout=10
UnitWait=1
MaxRetries=10
MaxOveruns=10
Uncorrected=1
ShowTrace=0
LogPeriod=03:00
LastDownload=null
NextDownload=null
Automatic=0
AutomaticInterval=03:00
HeartBeat=0
FTPServer=null
FTPFolder=null
FTPUserName=null
FTPPassword=null
ZIPFiles=0
Anonymous=0
FtpLogFilesSent=0
ManualFTP=0
WebFileType=0
OstrelHost=localhost
OstrelPort=4000
PHPWebServer=0
Backup=0
BackupDestination=null
Version=0.1.000
)";

std::string FreshRecords() {
  std::string text = "\n[Units]\nNumUnits=5\n";
  for (const char* index : {"1", "2", "3", "4", "5"}) {
    text += Replaced(
        "Name#=Site #\nID#=#\nActive#=1\nRelayID#=0\nftpFile#=0\nClientID#=0\nGetFrom#=0\n"
        "MoistureCorrection#=0\nSalinityCorrection#=0\n",
        "#", index);
  }
  return text +
         "\n[Relays]\nNumRelays=2\nName1=Direct\nID1=0\nPasswordStyle1=0\nName2=Relay 2\nID2=1\nPasswordStyle2=0\n"
         "\n[Clients]\nNumClients=2\nName1=Client 1\nID1=1\nFolder1=F1\nPassword1=null\nUserID1=null\n"
         "Name2=Client 2\nID2=2\nFolder2=F2\nPassword2=null\nUserID2=null\n";
}

TEST_F(SettingsTest, FirstCloseWritesACompleteFileForItsOwner) {
  const auto run = Start();
  EXPECT_FALSE(run->form.Frame_OstrelWebData.visible());
  EXPECT_FALSE(run->form.Suppress.set());
  EXPECT_TRUE(run->settings.SaveSettings());
  EXPECT_EQ(folder_.Read("corvane.ini"), Replaced(kFreshFile, "@", folder_.path()) + FreshRecords());
  EXPECT_EQ(fs::status(file_).permissions(), fs::perms(0600));
  EXPECT_TRUE(run->dialogs.boxes.empty());
}

TEST_F(SettingsTest, AFileComesBackAsItWas) {
  std::string contents = std::string("; north valley\r\nstray line\r\n[Ports]\r\nCOM5=/dev/serial/by-id/usb-A\r\n") +
                         kFreshFile + FreshRecords() + "[Future]\nKey = kept \n; end\n";
  const std::pair<const char*, const char*> changes[] = {{"Folder=@", "Folder=données"},
                                                         {"WhichFile=1", "WhichFile=2"},
                                                         {"Port=1", "Port=5"},
                                                         {"PortHandHeld=1", "porthandheld=36"},
                                                         {"Kelvin=1", "Kelvin=0"},
                                                         {"LogPeriod=03:00", "LogPeriod=04:17"},
                                                         {"Timeout=45", "Timeout=2.5"},
                                                         {"FTPServer=null", "FTPServer=a.b"},
                                                         {"BackupDestination=null", "BackupDestination=/b"},
                                                         {"LastDownload=null", "LastDownload=12 Mar 2010 14:05"},
                                                         {"ID3=3", "ID3=-2147483648"},
                                                         {"GetFrom4=0", "GetFrom4=3"},
                                                         {"MoistureCorrection5=0", "MoistureCorrection5=0.1"},
                                                         {"SalinityCorrection2=0", "SalinityCorrection2=-1.5e-07"},
                                                         {"Active1=1", "Active1=0"},
                                                         {"PasswordStyle2=0", "PasswordStyle2=2"},
                                                         {"UserID2=null", "UserID2=me"},
                                                         {"\n", "\r\n"},
                                                         {"\r\r\n", "\r\n"}};
  for (const auto& [from, to] : changes) contents = Replaced(contents, from, to);
  contents = Replaced(contents, "@", folder_.path());
  const auto run = Load(contents);
  run->relays.FillRelaySelector();
  EXPECT_EQ(run->form.Txt_Folder.text(), "données");
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

struct InputCase {
  const char* name;
  const char* contents;
  std::function<std::string(Program&)> value;
  std::string expected;
  std::string reported;  ///< a part of the box at the end of loading; empty: no box
};

std::string Timeout(Program& run) {
  return run.form.Txt_Timeout[0].text();
}
std::string UnitCount(Program& run) {
  return std::to_string(run.registry.Units.count());
}
std::string FirstUnit(Program& run) {
  const Unit& unit = run.registry.Units[1];
  return unit.Name + "," + std::to_string(unit.ID) + "," + std::to_string(unit.Active) + "," +
         std::to_string(unit.MoistureCorrection);
}
std::string Relays(Program& run) {
  std::string text;
  for (const Relay& relay : run.registry.Relays) text += relay.Name + "=" + std::to_string(relay.ID) + ";";
  return text;
}
std::string FileOptions(Program& run) {
  return std::to_string(run.form.Opt_WhichFile.GetOptionIndex()) +
         std::to_string(run.form.Opt_SortFile.GetOptionIndex());
}
std::string Port(Program& run) {
  return std::to_string(run.form.Cmb_Port[0].SelectedItemData());
}
std::string Kelvin(Program& run) {
  return run.form.Chk_Kelvin.ticked() ? "1" : "0";
}
std::string Server(Program& run) {
  return run.form.Txt_FTPServer.text();
}
std::string Folder(Program& run) {
  return run.form.Txt_Folder.text();
}
std::string WebHost(Program& run) {
  return run.form.Txt_OstrelHost.text();
}
std::string FirstPort(Program& run) {
  return run.ports.DeviceOf(1);
}

class SettingsInput : public SettingsTest, public testing::WithParamInterface<InputCase> {};

TEST_P(SettingsInput, IsTakenOrReported) {
  const InputCase& row = GetParam();
  const auto run = Load(row.contents);
  EXPECT_EQ(row.value(*run), row.expected);
  const auto texts = run->dialogs.Texts();
  ASSERT_EQ(texts.size(), row.reported.empty() ? 0U : 1U);
  if (row.reported.empty()) return;
  EXPECT_NE(texts[0].find(row.reported), std::string::npos) << texts[0];
}

INSTANTIATE_TEST_SUITE_P(
    Rows, SettingsInput,
    testing::Values(
        InputCase{"NoRelay", "[Relays]\nNumRelays=0\n", Relays, "Direct=0;", ""},
        InputCase{"FirstRelayIsDirect", "[Relays]\nNumRelays=1\nName1=Tower\nID1=7\n", Relays, "Direct=0;", ""},
        InputCase{"NegativeCount", "[Units]\nNumUnits=-3\n", UnitCount, "0", ""},
        InputCase{"HugeCount", "[Units]\nNumUnits=99999\n", UnitCount, "5", "NumUnits=99999 is not a whole number"},
        InputCase{"LetterInCount", "[Units]\nNumUnits=1O\n", UnitCount, "5", "NumUnits=1O"},
        InputCase{"WrongTypes", "[Units]\nID1=x\nActive1=70000\nMoistureCorrection1=2,5\n", FirstUnit,
                  "Site 1,1,1,0.000000", "MoistureCorrection1=2,5 is not a number; 0 is used"},
        InputCase{"HugeFactor", "[Units]\nMoistureCorrection1=1e40\n", FirstUnit, "Site 1,1,1,0.000000", "1e40"},
        InputCase{"NumberInAField", "[General]\nTimeout=soon\n", Timeout, "45", "Timeout=soon"},
        InputCase{"EmptyNumber", "[General]\nTimeout=null\n", Timeout, "45", "[General] Timeout= is not a number"},
        InputCase{"OptionsAreHeld", "[General]\nWhichFile=9\nSortFile=-4\n", FileOptions, "20", ""},
        InputCase{"OptionWithWords", "[General]\nWhichFile=raw\n", FileOptions, "10", "WhichFile=raw"},
        InputCase{"UnknownPort", "[General]\nPort=51\n", Port, "0", ""},
        InputCase{"BoxWithWord", "[General]\nKelvin=yes\n", Kelvin, "0", "Kelvin=yes"},
        InputCase{"BoxWithNumber", "[General]\nKelvin=-2\n", Kelvin, "1", ""},
        InputCase{"EmptyBox", "[General]\nKelvin=\n", Kelvin, "0", ""},
        InputCase{"NullIsEmpty", "[General]\nFTPServer=null\nFolder=null\n", Folder, "", ""},
        InputCase{"OnlyNullIsNull", "[General]\nFTPServer=Null\n", Server, "Null", ""},
        InputCase{"NoLastLineEnd", "[general]\r\nftpserver = a.b ", Server, "a.b", ""},
        InputCase{"BrokenLines", "]x\n[General\nFTPServer\n=\n[General]\nFTPServer=a\n", Server, "a", "Some lines"},
        InputCase{"ForeignFolder", "[General]\nFolder=C:\\data\n", Folder, "C:\\data", "Folder=C:\\data is not a path"},
        InputCase{"ForeignShare", "[General]\nFolder=\\\\host\\data\n", Folder, "\\\\host\\data", "is not a path"},
        InputCase{"BackslashesAreFine", "[General]\nFolder=data\\north\n", Folder, "data\\north", ""},
        InputCase{"WebHostIsNotRead", "[General]\nOstrelHost=elsewhere\n", WebHost, "localhost", ""},
        InputCase{"DeviceOfAPort", "[Ports]\ncom1=/dev/x\n", FirstPort, "/dev/x", ""},
        InputCase{"DeviceWithoutFolder", "[Ports]\nCOM1=ttyUSB0\n", FirstPort, "/dev/ttyS0", "COM1=ttyUSB0"},
        InputCase{"NoSuchPort", "[Ports]\nCOM51=/dev/x\n", FirstPort, "/dev/ttyS0", "COM51=/dev/x"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(SettingsTest, ValuesAreCutAt126Characters) {
  std::string accents;
  for (int count = 0; count < 200; ++count) accents += "é";
  const auto run = Load("[General]\nPassword=" + std::string(200, 'x') + "\nPrefix=" + accents + "\n");
  EXPECT_EQ(run->form.txt_Password.text(), std::string(126, 'x'));
  EXPECT_EQ(run->form.Txt_Prefix.text(), accents.substr(0, 252));
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

TEST_F(SettingsTest, UnreadableContentIsCopiedBeforeItIsReplaced) {
  const std::string damaged = std::string("[General]\nFTPServer=a\n") + std::string(100, '\0');
  folder_.Write("corvane.ini", damaged);
  folder_.Write("corvane.ini.bad", "older");
  const auto run = Start();
  EXPECT_EQ(folder_.Read("corvane.ini.bad"), damaged);
  EXPECT_EQ(fs::status(file_ + ".bad").permissions() & fs::perms::group_read, fs::perms::none);
  EXPECT_EQ(run->form.Txt_FTPServer.text(), "a");
  ASSERT_EQ(run->dialogs.boxes.size(), 1U);
  EXPECT_NE(run->dialogs.boxes[0].text.find("corvane.ini.bad"), std::string::npos);
  EXPECT_TRUE(run->settings.SaveSettings());
}

TEST_F(SettingsTest, ATooLargeFileIsCopiedToo) {
  folder_.Write("corvane.ini", "[General]\n");
  fs::resize_file(file_, ProfileFile::kLargestFile + 1);
  EXPECT_EQ(Start()->dialogs.boxes.size(), 1U);
  EXPECT_EQ(fs::file_size(file_ + ".bad"), static_cast<std::uintmax_t>(ProfileFile::kLargestFile + 1));
}

TEST_F(SettingsTest, WhatCouldNotBeCopiedIsNotOverwritten) {
  folder_.Write("corvane.ini", std::string(10, '\0'));
  fs::create_directory(file_ + ".bad");
  const auto run = Start();
  EXPECT_FALSE(run->settings.SaveSettings());
  EXPECT_EQ(folder_.Read("corvane.ini"), std::string(10, '\0'));
}

TEST_F(SettingsTest, AFailedSaveIsToldOnce) {
  fs::create_directories(file_ + "/full");
  const auto run = Start();
  ASSERT_EQ(run->dialogs.boxes.size(), 1U);
  EXPECT_FALSE(run->settings.SaveSettings());
  ASSERT_EQ(run->dialogs.boxes.size(), 2U);
  EXPECT_EQ(run->dialogs.boxes[1].text, "Cannot save INI file");
}

TEST_F(SettingsTest, TenThousandUnitsComeBack) {
  auto run = Start();
  run->registry.Units.Resize(10000);
  for (std::int32_t index = 1; index <= 10000; ++index) run->registry.Units[index].Name = "U" + std::to_string(index);
  EXPECT_TRUE(run->settings.SaveSettings());
  run = Start();
  EXPECT_EQ(run->form.Lst_Units.count(), 10000);
  EXPECT_EQ(run->form.Lst_Units.text(9999), "U10000");
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
