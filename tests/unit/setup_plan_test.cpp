// A set-up from what is there to what is put in: its faults, its tries, its sentences.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <tuple>
#include <vector>

#include "support/world.h"

namespace corvane::test {
namespace {

const char* const kNetwork =
    "[General]\nGoOnPastFailures=1\nFTPServer=ftp.example.org\nFTPUserName=user\nFTPPassword=word\nBackup=1\n"
    "BackupDestination=/b\nPassword=unit\nAutomaticInterval=06:00\nPort=3\nZIPFiles=1\n"
    "[Units]\nNumUnits=3\nName1=North\nID1=7\nRelayID1=5\nClientID1=9\nMoistureCorrection1=1.5\nftpFile1=1\nDepths1="
    "10\n"
    "Name2=South\nRelayID2=77\nClientID2=4\nActive2=0\nName3=West\nGetFrom3=2\n"
    "[Relays]\nNumRelays=2\nName2=Tower\nID2=5\nPasswordStyle2=2\n"
    "[Clients]\nNumClients=1\nName1=Acme\nID1=9\nFolder1=acme\nPassword1=secret\n[Ports]\nCOM3=/dev/ttyX\n";

class SetupPlanTest : public testing::Test {
 protected:
  SetupPlanTest() {
    world.port.devices_there = {{"/dev/radio", "/dev/ttyUSB0", ""}};
    for (const char* table : {"tables/moisture.lkp", "tables/salinity.lkp", "tables/SALCORR.LKP"}) {
      world.home.Write(table, "0,0\r\n32000,100\r\n");
    }
    world.home.Write("half/moisture.lkp", "0,0\r\n");
  }
  SetupCommands& Start(const std::string& settings = "") {
    if (!settings.empty()) world.home.Write("corvane.ini", settings);
    return world.Start().setup();
  }
  [[nodiscard]] std::string Saved() const { return world.home.Read("corvane.ini"); }
  [[nodiscard]] bool Holds(const std::string& line) const {
    return ("\n" + Saved()).find("\n" + line + "\n") != std::string::npos;
  }
  static std::string All(const std::vector<std::string>& sentences) {
    std::string text;
    for (const std::string& sentence : sentences) text += sentence + "\n";
    return text;
  }

  World world;
};

SetupUnit Row(const std::string& name, const std::string& id, const std::string& relay = "",
              const std::string& client = "") {
  SetupUnit unit;
  unit.name = name;
  unit.id = id;
  unit.relay = relay;
  unit.client = client;
  return unit;
}

/// A plan of two units behind one relay.
SetupPlan Small(SetupCommands& setup) {
  SetupPlan plan = setup.PlanOf();
  plan.relays = {{"Tower", "1"}};
  plan.units = {Row("Hill", "17", "tower"), Row("River", "23", "", "Farm")};
  CompletePlan(plan, SetupPage::Stations);
  return plan;
}

TEST_F(SetupPlanTest, EachFaultNamesItsPageRowAndField) {
  SetupCommands& setup = Start();
  const SetupPlan good = Small(setup);
  const std::string half = world.home.Name("half");
  const std::string far(127, 'x');
  struct Case {
    std::function<void(SetupPlan&)> change;
    SetupPage page;
    SetupField field;
    std::size_t row;
    std::string says;
  };
  using enum SetupPage;
  const std::vector<Case> cases = {
      {[](auto& p) { p.device = "COM3"; }, Port, SetupField::Device, 0, "begins with \"/\""},
      {[](auto& p) {
         p.relays.push_back({"tower", "2"});
       },
       Stations, SetupField::RelayName, 2, "Row 1 has the same name"},
      {[](auto& p) {
         p.relays.push_back({"East", "01"});
       },
       Stations, SetupField::RelayID, 2, "Row 1 has the same ID"},
      {[](auto& p) { p.relays[0].id = "0"; }, Stations, SetupField::RelayID, 1, "\"Direct\" has the ID 0"},
      {[](auto& p) { p.relays[0].name = "Direct"; }, Stations, SetupField::RelayName, 1, "no relay"},
      {[](auto& p) { p.units[1].relay = "Mast"; }, Stations, SetupField::UnitRelay, 2, "no relay \"Mast\""},
      {[](auto& p) { p.units[0].name = " "; }, Stations, SetupField::UnitName, 1, "has no name"},
      {[](auto& p) { p.units[0].name = "a\nb"; }, Stations, SetupField::UnitName, 1, "line breaks"},
      {[&](auto& p) { p.units[0].name = far; }, Stations, SetupField::UnitName, 1, "126 characters"},
      {[](auto& p) { p.units[0].id = "17a"; }, Stations, SetupField::UnitID, 1, "no whole number"},
      {[](auto& p) { p.units.push_back(Row("Third", "17")); }, Stations, SetupField::UnitID, 3, "share one raw file"},
      {[](auto& p) { p.units[0].depths = "ten"; }, Stations, SetupField::UnitDepths, 1, "no depths"},
      {[](auto& p) { p.data_folder = "/none/there"; }, Folders, SetupField::DataFolder, 0, "no folder /none"},
      {[](auto& p) { p.clients[0].folder = "../x"; }, Folders, SetupField::ClientFolder, 1, "out of the data folder"},
      {[](auto& p) { p.units[1].id = "17", p.clients[0].folder = " "; }, Folders, SetupField::ClientFolder, 1,
       "share one raw file"},
      {[](auto& p) {
         p.units = {Row("A", "1", "", "A/B"), Row("B", "1", "", "A:B")};
         CompletePlan(p, Stations);
         EXPECT_EQ(p.clients.back().folder, "A_B_2");
         p.clients.back().folder = "A_B/";
       },
       Folders, SetupField::ClientFolder, 3, "share one raw file"},
      {[](auto& p) { p.clients.clear(); }, Folders, SetupField::Page, 0, "no client \"Farm\""},
      {[&](auto& p) { p.tables_folder = half; }, Tables, SetupField::TablesFolder, 0, "holds no salinity.lkp"},
      {[](auto& p) { p.interval = "0"; }, Schedule, SetupField::Interval, 0, "no interval"},
      {[](auto& p) { p.interval = "25:00"; }, Schedule, SetupField::Interval, 0, "from 00:01 to 23:59"},
      {[](auto& p) { p.log_size = "big"; }, Schedule, SetupField::LogSize, 0, "megabytes"},
      {[](auto& p) { p.server = "a b", p.anonymous = true; }, Delivery, SetupField::Server, 0, "no server"},
      {[](auto& p) { p.server = "host"; }, Delivery, SetupField::User, 0, "user name and a password"},
      {[](auto& p) { p.backup_folder = "/none/there"; }, Delivery, SetupField::BackupFolder, 0, "no folder /none"},
  };
  EXPECT_TRUE(setup.FaultsOf(good, Summary).empty());
  for (const Case& each : cases) {
    SCOPED_TRACE(each.says);
    SetupPlan plan = good;
    each.change(plan);
    const std::vector<SetupFault> faults = setup.FaultsOf(plan, each.page);
    ASSERT_FALSE(faults.empty());
    EXPECT_EQ(std::tuple(faults[0].page, faults[0].field, faults[0].row), std::tuple(each.page, each.field, each.row));
    EXPECT_NE(faults[0].text.find(each.says), std::string::npos) << faults[0].text;
    EXPECT_FALSE(setup.FaultsOf(plan, Summary).empty()) << "the end lets it through";
  }
}

TEST_F(SetupPlanTest, AFirstPlanOffersNoExampleAndBecomesTheWholeNetwork) {
  SetupCommands& setup = Start();
  SetupPlan plan = Small(setup);
  EXPECT_TRUE(plan.first && plan.goes_on && plan.automatic && plan.encrypted);
  EXPECT_EQ(plan.device, "/dev/radio") << "the only one";
  plan.tables_folder = "tables";
  plan.units[0].relay = "1";
  plan.units[0].depths = "7,5 / 15";
  plan.units[1].relay = "0";
  EXPECT_EQ(Saved(), "") << "written before the end";
  EXPECT_TRUE(setup.PutIn(plan));
  for (const char* line : {"NumUnits=2", "Name1=Hill", "ID1=17", "RelayID1=1", "Depths1=7.5;15", "Name2=River",
                           "RelayID2=0", "ClientID2=1", "NumRelays=2", "NumClients=1", "Folder1=Farm",
                           "GoOnPastFailures=1", "Automatic=1", "LogSize=10", "COM1=/dev/radio"}) {
    EXPECT_TRUE(Holds(line)) << line;
  }
  EXPECT_TRUE(Holds("SalinityCorrection=" + world.home.Name("tables/SALCORR.LKP")));
  const std::string once = Saved();
  SetupPlan again = setup.PlanOf();
  EXPECT_FALSE(again.first);
  EXPECT_EQ(again.units.size(), 2U);
  EXPECT_TRUE(setup.PutIn(again));
  EXPECT_EQ(Saved(), once);
}

TEST_F(SetupPlanTest, WhatAPlanDoesNotNameStaysAsItIs) {
  SetupCommands& setup = Start(kNetwork);
  SetupPlan plan = setup.PlanOf();
  EXPECT_TRUE(setup.PutIn(plan));
  const std::string once = Saved();
  EXPECT_TRUE(setup.PutIn(plan = setup.PlanOf()));
  EXPECT_EQ(Saved(), once);
  SetupPlan changed = plan;
  changed.units.erase(changed.units.begin() + 2);
  changed.units[0].name = "Far north";
  changed.relays[0].name = "Mast";
  EXPECT_EQ(FollowRelay(changed, "tower", "Mast"), 1U);
  changed.relays[0].id = "6";
  changed.units.push_back(Row("New", "-3", "Mast"));
  EXPECT_TRUE(setup.PutIn(changed));
  for (const char* line :
       {"Name1=Far north", "RelayID1=6", "MoistureCorrection1=1.5", "PasswordStyle2=2", "ftpFile1=1", "RelayID2=77",
        "ClientID2=4", "Active2=0", "Name3=New", "ID3=-3", "RelayID3=6", "GetFrom3=0", "Password1=secret",
        "Password=unit", "COM3=/dev/ttyX", "ZIPFiles=1", "BackupDestination=/b"}) {
    EXPECT_TRUE(Holds(line)) << line;
  }
}

TEST_F(SetupPlanTest, WhatCouldNotBeSavedKeepsItsRecords) {
  SetupCommands& setup = Start(kNetwork);
  SetupPlan plan = setup.PlanOf();
  plan.units.insert(plan.units.begin(), Row("New", "12"));
  world.home.Write("corvane.ini.part/in the way", "");
  EXPECT_FALSE(setup.PutIn(plan));
  std::filesystem::remove_all(world.home.Name("corvane.ini.part"));
  EXPECT_TRUE(setup.PutIn(plan));
  EXPECT_TRUE(Holds("Name1=New") && Holds("MoistureCorrection2=1.5") && !Holds("MoistureCorrection1=1.5"));
}

TEST_F(SetupPlanTest, ATableFillsThePlanAndNothingElse) {
  SetupCommands& setup = Start(kNetwork);
  SetupPlan plan = setup.PlanOf();
  world.home.Write("bad.csv", "Kind,Name,ID,Relay\nunit,North,7,Mast\n");
  world.home.Write("good.csv",
                   "Kind,Name,ID,Relais,Depths (cm),Colour\n"
                   "unit,Far north,7,Tower,,\nunit,East,33,Tower,10;20,red\n");
  const SetupPlan before = plan;
  const SetupTable bad = setup.TakeTable(plan, "bad.csv");
  ASSERT_EQ(bad.faults.size(), 1U);
  EXPECT_NE(bad.faults[0].find("line 2"), std::string::npos) << bad.faults[0];
  EXPECT_TRUE(plan == before);
  const SetupTable good = setup.TakeTable(plan, "good.csv");
  EXPECT_TRUE(good.faults.empty());
  ASSERT_FALSE(good.notes.empty());
  EXPECT_EQ(good.notes[0], "the column \"Colour\" is not used");
  ASSERT_EQ(plan.units.size(), 4U);
  EXPECT_EQ(std::tuple(plan.units[0].name, plan.units[0].place), std::tuple("Far north", 1));
  EXPECT_EQ(std::tuple(plan.units[3].name, plan.units[3].place, plan.units[3].relay), std::tuple("East", 0, "Tower"));
  EXPECT_EQ(plan.units[3].depths, "10;20");
  EXPECT_FALSE(setup.TakeTable(plan, "none.csv").faults.empty());
  EXPECT_EQ(world.app().registry().Units[1].Name, "North");
}

TEST_F(SetupPlanTest, ADeviceGetsANumberThatTheHandHeldUnitDoesNotUse) {
  SetupCommands& setup = Start(std::string(kNetwork) + "COM4=/dev/other\n");
  const std::tuple<std::string, std::string, int> rows[] = {{"3", "/dev/ttyX", 3},
                                                            {"1", "/dev/new", 3},
                                                            {"3", "/dev/new", 1},
                                                            {"3", "/dev/other", 4},
                                                            {"1", "/dev/ttyUSB0", 5}};
  for (const auto& [hand_held, device, number] : rows) {
    world.form().Cmb_Port[1].SelectByItemData(std::stoi(hand_held));
    SetupPlan plan = setup.PlanOf();
    setup.ChooseDevice(plan, device);
    EXPECT_EQ(plan.port, number) << device;
  }
}

TEST_F(SetupPlanTest, TryingAPortTellsABaseStationFromWhatOnlySeemsOne) {
  SetupCommands& setup = Start();
  const SetupPlan plan = Small(setup);
  const auto says = [this](const char* text) { return [this, text](const std::string&) { world.port.Receive(text); }; };
  const std::tuple<std::function<void(const std::string&)>, bool, const char*> rows[] = {
      {says("Base 1.0\r\n"), true, "answers: Base 1.0"},
      {says("OK\r\n"), false, "as modems do (\"OK\")"},
      {says("\r\nERROR\r\n"), false, "as modems do"},
      {[](const std::string&) {}, false, "has power"},
      {[this](const std::string& line) { world.port.Receive(line + "\r"); }, false, "echo of what is sent"},
      {[this](const std::string&) { world.loop.After(1, [this] { world.port.Event(kPortEndOfInput); }); }, false,
       "failed while it was tested"}};
  for (const auto& [on_line, well, text] : rows) {
    world.port.on_line = on_line;
    const SetupAnswer answer = setup.TryPort(plan);
    EXPECT_EQ(answer.well, well) << text;
    EXPECT_NE(answer.text.find(text), std::string::npos) << answer.text;
    EXPECT_EQ(world.port.device, "/dev/radio");
    EXPECT_EQ(world.app().devices().DeviceOf(1), "/dev/ttyS0") << "the try stays";
  }
  world.port.open_result = {13, "no permission"};
  EXPECT_NE(setup.TryPort(plan).text.find("no permission"), std::string::npos);
  EXPECT_EQ(Saved() + world.home.Read("corvane.ini.recovery"), "");
}

TEST_F(SetupPlanTest, AUnitThatNobodyHasEnteredYetIsAskedForItsClock) {
  SetupCommands& setup = Start();
  const SetupPlan plan = Small(setup);
  const std::tuple<std::string, bool, bool, const char*> rows[] = {
      {"2010/3/12 10:00:30", true, false, "which is right"},
      {"2010/3/12 12:00:00", false, true, "ahead of"},
      {"2009/3/12 10:00:00", false, true, "365 days behind"},
      {"hello", false, false, "no date"},
      {"ERROR 2", false, false, "No response from unit"}};
  for (const auto& [answer, well, off, says] : rows) {
    world.port.written.clear();
    world.port.on_line = [&, text = answer](const std::string& line) {
      world.port.Receive(line + "\r\n" + text + "\r\n");
    };
    const SetupClock clock = setup.AskClock(plan, 1);
    EXPECT_EQ(std::tuple(clock.well, clock.is_off), std::tuple(well, off)) << clock.text;
    EXPECT_NE(clock.text.find(says), std::string::npos) << clock.text;
    EXPECT_NE(world.port.written.find("00001:00017:00rt"), std::string::npos) << world.port.written;
  }
  EXPECT_EQ(world.app().registry().Units.count(), 5) << "the plan is in before its end";
}

TEST_F(SetupPlanTest, TheSummarySaysWhatIsNotDone) {
  SetupCommands& setup = Start();
  SetupPlan plan = Small(setup);
  const std::string begun = All(NotDone(plan, {}));
  for (const char* text : {"port was not tested", "clock", "tables are missing", "no backup", "computer was started"}) {
    EXPECT_NE(begun.find(text), std::string::npos) << text;
  }
  plan.tables_folder = world.home.Name("tables");
  plan.at_log_on = true;
  plan.backup_folder = world.home.Name("backup");
  const SetupAnswer well{true, "well"};
  const SetupAnswer first{true, "well", 1};
  EXPECT_EQ(All(NotDone(plan, {well, first, {}, setup.TryBackup(plan)}))
                .find("Only the unit Hill was asked for its clock, not River: "),
            0U);
  EXPECT_EQ(
      All(NotDone(plan, {well, SetupAnswer{false, "ahead", 2}, {}, setup.TryBackup(plan)})).find("Unit River: ahead"),
      0U);
  plan.units[1].active = false;
  EXPECT_EQ(All(NotDone(plan, {well, first, {}, setup.TryBackup(plan)})), "");
  plan.backup_folder = "/proc/no";
  EXPECT_EQ(All(NotDone(plan, {well, first, {}, setup.TryBackup(plan)})).find("The backup folder cannot"), 0U);
  plan.units[1].client.clear();
  plan.clients.clear();
  plan.backup_folder.clear();
  EXPECT_TRUE(setup.PutIn(plan) && Holds("Name1=Client 1"));
  EXPECT_TRUE(setup.PlanOf().clients.empty()) << "the settings need one, nobody has entered it";
}

}  // namespace
}  // namespace corvane::test
