// Drives the real program against the simulated base station.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <set>
#include <sstream>
#include <tuple>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/child.h"

namespace corvane::test {
namespace {

using namespace std::chrono_literals;

/// An application folder with three units, and what is run in it.
class CorvanectlTest : public testing::Test {
 protected:
  CorvanectlTest() {
    for (const char* table : {"moisture.lkp", "salinity.lkp", "salcorr.lkp"})
      home_.Write(table, "0,0\r\n32000,100\r\n");
    WriteSettings("");
  }

  void WriteSettings(const std::string& more) const {
    home_.Write("corvane.ini", "[General]\nUnitWait=0\nTimeout=2\nDataTimeout=2\nMaxRetries=3\nHeartBeat=1\n" + more +
                                   "[Units]\nNumUnits=3\nName1=North\nRelayID2=1\nName3=South\n" +
                                   "[Ports]\nCOM1=" + home_.Name("tty") + "\n");
  }
  static std::string FtpSettings(const ServerProcess& server) {
    return "FTPServer=127.0.0.1:" + std::to_string(server.port()) + "\nFTPUserName=user\nFTPPassword=secret\n";
  }
  void StartStation(Words command) {
    station_.reset();
    command.insert(command.begin(), {CORVANE_BASESTATION_PATH, "--link", home_.Name("tty"), "--units", "1,2@1,3"});
    station_ = std::make_unique<Child>(command);
    ASSERT_TRUE(station_->Shows("ready: "));
  }
  [[nodiscard]] Words Command(Words arguments) const {
    arguments.insert(arguments.begin(), {CORVANECTL_PATH, "--home", home_.path()});
    return arguments;
  }
  /// Runs a command to its end; its output is kept.
  int Run(const Words& arguments, const std::string& input = "") {
    Child program(Command(arguments), input);
    const int status = program.Wait();
    output_ = program.output();
    return status;
  }
  /// The number of readings in the raw files of units 1 to 3, none of which may be there twice.
  [[nodiscard]] std::size_t Readings() const {
    std::set<std::string> readings;
    for (const std::string unit : {"1", "2", "3"}) {
      std::istringstream file(home_.Read("0000" + unit + ".epd"));
      std::string line;
      std::getline(file, line);
      while (std::getline(file, line)) EXPECT_TRUE(readings.insert(unit + line).second) << line;
    }
    return readings.size();
  }
  [[nodiscard]] bool Printed(const std::string& text) const { return output_.find(text) != std::string::npos; }

  TempFolder home_;
  std::unique_ptr<Child> station_;
  std::string output_;
};

TEST_F(CorvanectlTest, OutputAndExitStatusTellWhatHappened) {
  home_.Write("faults.txt", "unit 2 download 1: error 2\nunit 2 download 4-9: silence\n");
  StartStation({"--readings", "20", "--advance", "3", "--script", home_.Name("faults.txt")});
  const std::string file = home_.Write("file", "");
  home_.Write("odd/corvane.ini/no", "file");
  const std::tuple<Words, int, const char*, std::size_t> rows[] = {
      {{"--help"}, 0, "Exit status:", 0},
      {{"units"}, 0, "North", 0},
      {{"get-date", "--unit", "north"}, 0, "2010/3/12 ", 0},
      {{"test-port"}, 0, "answered", 0},
      {{"download"}, 0, "\nSite 2      2        20   20  2010-03-12 04:45  ok\n", 60},
      {{"download", "--quiet"}, 0, "", 69},
      {{"download", "south", "1"}, 0, "Download: South\n", 75},
      {{"convert"}, 0, "South         26          0", 75},
      {{"download", "--quiet"}, 1, "Site 2: waited 2 secs", 78},
      {{"set-date", "--yes"}, 0, "Set date: South", 78},
      {{"set-date"}, 1, "nobody can be asked here", 78},
      {{"convert", "--file", "00009.epd"}, 1, "no unit has a raw file of that name", 78},
      {{"download", "Nobody"}, 2, "there is no unit \"Nobody\"; corvanectl units lists them", 78},
      {{"repair", "Suoth"}, 2, "did you mean \"South\"?", 78},
      {{"health", "Nroth"}, 2, "did you mean \"North\"?", 78},
      {{"keep", "/none/x.zip"}, 1, "there is no folder /none for /none/x.zip", 78},
      {{"stations", "export", "/dev/full"}, 1, "/dev/full is no file", 78},
      {{"downlaod"}, 2, "there is no command", 78},
      {{"run"}, 3, "corvanectl run --automatic", 78},
      {{"--home", file, "download"}, 3, "cannot be used", 78},
      {{"--home", home_.Name("odd"), "download"}, 3, "The settings cannot be read", 78},
      {{"--home", file, "units"}, 3, "is no folder", 78}};
  for (const auto& [arguments, status, says, readings] : rows) {
    EXPECT_EQ(Run(arguments), status) << says << "\n" << output_;
    EXPECT_TRUE(*says == '\0' ? output_.empty() : Printed(says)) << output_;
    EXPECT_FALSE(Printed("12 Mar 2010") || Printed("\r")) << "a line for a reading: " << output_;
    EXPECT_EQ(Readings(), readings) << says;
  }
  const std::string calibrated = home_.Read("00003.txt");
  EXPECT_EQ(std::count(calibrated.begin(), calibrated.end(), '\n'), 27);
  station_.reset();
  EXPECT_EQ(Run({"download"}), 1);
  EXPECT_TRUE(Printed("not asked: the port did not open")) << output_;
  for (const auto& [interval, reason] : {std::pair("1e9", "it is too long"), std::pair("0", "it is no interval")}) {
    WriteSettings("Automatic=1\nAutomaticInterval=" + std::string(interval) + "\n");
    EXPECT_EQ(Run({"run"}), 3);
    EXPECT_TRUE(Printed("The interval \"" + std::string(interval) + "\" cannot be used: " + reason)) << output_;
  }
}

TEST_F(CorvanectlTest, SettingsAreEnteredShownAndCompleted) {
  const std::tuple<Words, const char*, int, std::string> rows[] = {
      {{"set", "Port", "7", "FTPServer", "a b"}, "", 2, "FTPServer: \"a b\" is not taken"},
      {{"get", "Port"}, "", 0, "1\n"},
      {{"set", "Port", "7", "Name3", "West field"}, "", 0, "Name3 is West field now, was South\n"},
      {{"set", "FTPPassword"}, "geheim\nrest\n", 0, "FTPPassword: the password is set\n"},
      {{"set", "FTPPassword"}, "", 2, "no password was given"},
      {{"get"}, "", 0, "FTPPassword              (a password, not shown)\n"},
      {{"ports", "assign", "7", home_.Name("tty")}, "", 0, "COM7 is " + home_.Name("tty") + " now\n"},
      {{"ports"}, "", 0, home_.Name("tty") + "  not there  yes       radio\n"},
      {{"set", "AutomaticInterval", "6"}, "", 0, "AutomaticInterval is 6 now (6 days), was 03:00 (3 hours)\n"},
      {{"set", "PageFolder", "."}, "", 0, "PageFolder is /"},
      {{"downlod"}, "", 2, "did you mean download?"}};
  for (const auto& [arguments, input, status, says] : rows) {
    EXPECT_EQ(Run(arguments, input), status) << output_;
    EXPECT_TRUE(Printed(says)) << says << "\n" << output_;
    EXPECT_FALSE(Printed("geheim")) << output_;
  }
  const std::string saved = home_.Read("corvane.ini");
  EXPECT_TRUE(saved.find("Port=7\n") != std::string::npos && saved.find("FTPPassword=geheim\n") != std::string::npos);
  const std::string type = "PATH=$(dirname " CORVANECTL_PATH
                           "):$PATH; source <(corvanectl completion bash); "
                           "t() { COMP_WORDS=(corvanectl --home " +
                           home_.path() +
                           " \"$@\"); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); "
                           "_corvanectl corvanectl; printf '%s|' \"${COMPREPLY[@]}\"; }; ";
  Child shell({"bash", "-c", type + "t downl; t download we; t set FTPP; t status --j"});
  EXPECT_EQ(shell.Wait(), 0);
  EXPECT_EQ(shell.output(), "download|West\\ field|FTPPassword|--json|");
}

TEST_F(CorvanectlTest, SetupAsksWritesAtTheEndOnlyAndCollects) {
  StartStation({"--readings", "20", "--start", "2026/01/01 00:00"});
  const std::string folder = home_.Name("new");
  const std::string stations = home_.Name("tty") + "\nTower, 1\n\nNorth, 1, -\nSouth, 2\n2: South, 2, Tower, Acme\n\n";
  const std::string rest = folder + "/.\n\n" + home_.path() + "\nNorth\n\n\n\n\n\n\n";
  const std::tuple<std::string, int, const char*> rows[] = {
      {"", 1, "nothing is changed"},
      {home_.Name("none") + "\nquit\n", 1, "is not there: plug the adapter in"},
      {home_.Name("none") + "\n\nNorth, one\n\n", 1, "no whole number"},
      {stations + rest, 1, "nothing is changed"},
      {stations + "back\nback\n" + home_.Name("tty") + "\nback\nquit\n", 1, "nothing is changed"},
      {stations + rest + "y\ny\n", 0, "South      1        20   20"}};
  for (const auto& [answers, status, says] : rows) {
    EXPECT_FALSE(std::filesystem::exists(folder + "/corvane.ini")) << says;
    EXPECT_EQ(Run({"--home", folder, "setup"}, answers), status) << output_;
    EXPECT_TRUE(Printed(says)) << output_;
  }
  EXPECT_TRUE(std::filesystem::exists(folder + "/Acme/00002.txt")) << output_;
}

TEST_F(CorvanectlTest, KeepsBesideAProgramThatRunsAndRestoresElsewhere) {
  StartStation({"--readings", "4"});
  EXPECT_EQ(Run({"download"}), 0) << output_;
  WriteSettings("Automatic=1\nFTPPassword=geheim\nBackupDestination=/not/there\n");
  Child run(Command({"run"}));
  EXPECT_TRUE(run.Shows("Running in ")) << run.output();
  const TempFolder other;
  const std::string archive = other.Name("net.zip");
  EXPECT_EQ(Run({"keep", archive, "--with-data"}), 0) << output_;
  EXPECT_TRUE(Printed("It holds the passwords")) << output_;
  EXPECT_FALSE(std::filesystem::exists(archive + ".history.part-wal")) << "only the archive is left";
  EXPECT_EQ(Run({"restore", archive}), 3) << output_;
  EXPECT_TRUE(Printed("is running in " + home_.path() + ": end it first; nothing was restored")) << output_;
  const Words there = {"--home", other.Name("home")};
  const auto run_there = [&](Words words) {
    words.insert(words.begin(), there.begin(), there.end());
    return Run(words);
  };
  EXPECT_EQ(run_there({"restore", archive}), 0) << output_;
  EXPECT_TRUE(Printed("corvanectl set BackupDestination PATH")) << output_;
  EXPECT_TRUE(Printed("Without it the window speaks English.")) << output_;
  EXPECT_TRUE(Printed("MoistureLookupFile") == false) << "bare names need no change: " << output_;
  EXPECT_EQ(other.Read("home/00003.epd"), home_.Read("00003.epd"));
  EXPECT_EQ(run_there({"status"}), 0) << output_;
  EXPECT_TRUE(Printed("12 readings stored") && Printed("\nLast round: download of ")) << output_;
  EXPECT_EQ(run_there({"health", "South"}), 0);
  EXPECT_TRUE(Printed("  download  answered  ")) << output_;
  EXPECT_EQ(run_there({"restore", other.Write("cut.zip", other.Read("net.zip").substr(0, 2000))}), 1);
}

TEST_F(CorvanectlTest, RunDownloadsWhenDueOutlivesAMissingPortAndEndsWithinASecond) {
  for (const bool has_port : {false, true}) {
    WriteSettings("Automatic=1\nNextDownload=1 Jan 2020 00:00\n");
    if (has_port) StartStation({"--readings", "4"});
    Child run(Command({"run"}));
    EXPECT_TRUE(run.Shows(has_port ? "Convert: " + home_.Name("00003.epd") : "Finished...")) << run.output();
    EXPECT_EQ(run.output().find("The port did not open") == std::string::npos, has_port);
    EXPECT_EQ(Readings(), has_port ? 12U : 0U);
    EXPECT_EQ(Run({"download"}), 3);
    EXPECT_TRUE(Printed(" is already running")) << output_;
    EXPECT_EQ(Run({"units"}), 0);
    run.Signal(has_port ? SIGHUP : SIGTERM);
    EXPECT_EQ(run.Wait(1s), 0) << run.output();
    EXPECT_EQ(home_.Read("corvane.ini").find("NextDownload=1 Jan 2020"), std::string::npos);
  }
}

TEST_F(CorvanectlTest, AlertCommandIsToldAndHoldsNothingUp) {
  StartStation({"--readings", "4"});
  const std::string command = "AlertCommand=cat >>" + home_.Name("told");
  WriteSettings("Automatic=1\nNextDownload=1 Jan 2020 00:00\n" + command + "; sleep 60\n");
  Child run(Command({"run"}));
  EXPECT_TRUE(Until([this] { return home_.Read("told").ends_with("}\n"); })) << run.output();
  EXPECT_NE(home_.Read("told").find("The round of 1 Jan 2020 00:00 has not begun"), std::string::npos);
  EXPECT_TRUE(run.Shows("Convert: " + home_.Name("00003.epd"))) << run.output();
  run.Signal(SIGTERM);
  EXPECT_EQ(run.Wait(1s), 0) << run.output();
  WriteSettings(command + "; echo done\n");
  EXPECT_EQ(Run({"download"}), 0) << output_;
  EXPECT_NE(home_.Read("told").find("\"event\": \"round\""), std::string::npos) << "the program waits for its end";
  EXPECT_NE(home_.Read("corvane.log").find("Alert> done"), std::string::npos);
}

TEST_F(CorvanectlTest, SignalEndsWhatRunsWithinASecond) {
  StartStation({"--readings", "300", "--baud", "19200"});
  Child download(Command({"download"}));
  EXPECT_TRUE(Until([this] { return Readings() > 5; }));
  download.Signal(SIGTERM);
  EXPECT_EQ(download.Wait(1s), 128 + SIGTERM) << download.output();
  EXPECT_LT(Readings(), 300U);
  EXPECT_NE(home_.Read("corvane.ini").find("Version="), std::string::npos) << "settings not saved";
  StartStation({"--readings", "300"});
  EXPECT_EQ(Run({"download"}), 0) << output_;
  EXPECT_EQ(Readings(), 900U) << "the next one goes on";

  const ServerProcess server({"faulty_ftp_server.py", "stall_up"});
  WriteSettings(FtpSettings(server) + "[Units]\nftpFile1=1\n");
  home_.Write("00001.epd", std::string(20'000'000, 'x'));
  Child send(Command({"send"}));
  EXPECT_TRUE(send.Shows("Send: " + home_.Name("00001.epd") + "\n")) << send.output();
  send.Signal(SIGTERM);
  EXPECT_EQ(send.Wait(1s), 128 + SIGTERM) << send.output();

  const std::string pipe = home_.Name("pipe");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  const int end = open(pipe.c_str(), O_RDWR | O_CLOEXEC);
  for (const Words& waits : {Words{"script", "-"}, Words{"stations", "import", "-"}}) {
    Words command = Command(waits);
    command.insert(command.begin(), {"sh", "-c", "exec \"$0\" \"$@\" <" + pipe});
    Child reader(command);
    ASSERT_EQ(write(end, "#\n", 2), 2);
    int unread = 2;
    EXPECT_TRUE(Until([&] { return ioctl(end, FIONREAD, &unread) == 0 && unread == 0; })) << reader.output();
    reader.Signal(SIGINT);
    EXPECT_EQ(reader.Wait(1s), 128 + SIGINT) << reader.output();
  }
  close(end);

  std::filesystem::resize_file(home_.Name("00001.epd"), 8'000'000'000);
  const TempFolder other;
  Child keep(Command({"keep", other.Write("net.zip", "former"), "--with-data"}));
  const auto files = [&other] { return std::distance(std::filesystem::directory_iterator(other.path()), {}); };
  EXPECT_TRUE(Until([&] { return files() > 2; })) << "what the library writes: " << keep.output();
  keep.Signal(SIGTERM);
  EXPECT_EQ(keep.Wait(1s), 128 + SIGTERM) << keep.output();
  EXPECT_TRUE(files() == 1 && other.Read("net.zip") == "former");
}

TEST_F(CorvanectlTest, SendsFetchesAndBacksUp) {
  home_.Write("server/f1/00003.zip", "no archive");
  const ServerProcess server({"ftp_server.py", home_.Name("server")});
  WriteSettings(FtpSettings(server));
  EXPECT_EQ(Run({"backup"}), 1);
  EXPECT_TRUE(Printed("switched off")) << output_;
  WriteSettings(
      FtpSettings(server) +
      "ZIPFiles=1\nBackup=1\n[Units]\nNumUnits=3\nClientID1=1\nftpFile1=1\nftpFile2=1\nGetFrom3=3\nClientID3=1\n");
  home_.Write("F1/00001.epd", std::string(5000, 'x'));
  home_.Write("F1/00003.epd", "kept");
  const std::tuple<Words, int, std::vector<std::string>> rows[] = {
      {{"send", "1"}, 0, {"Site 1  f1/00001.zip  ok"}},
      {{"send"}, 1, {"Site 1  f1/00001.zip  ok", "Site 2  00002.zip     there is no file " + home_.Name("00002.epd")}},
      {{"send", "3"}, 1, {"Site 3        not tried: its file is not sent by FTP"}},
      {{"fetch"}, 1, {"00003.zip"}},
      {{"backup"}, 0, {home_.Name("F1/00001.zip") + "  ok"}},
  };
  for (const auto& [arguments, status, says] : rows) {
    EXPECT_EQ(Run(arguments), status) << output_;
    for (const std::string& text : says) EXPECT_TRUE(Printed(text)) << text << "\n" << output_;
  }
  EXPECT_EQ(home_.Read("server/f1/00001.zip"), home_.Read("F1/00001.zip"));
  EXPECT_EQ(home_.Read("F1/00003.epd"), "kept") << "a damaged archive replaces nothing";
}

TEST_F(CorvanectlTest, ScriptsWorkTheWindow) {
  StartStation({"--readings", "6"});
  const char* const script =
      "set Txt_MaxRetries 40\nclick Cmd_DownloadAll 1\nwait-for Lbl_Status Finished 5\nselect Lst_Units 1\n"
      "answer yes\nanswer no\nmenu mnu_SetDate 0\nshow Txt_UnitName\n";
  EXPECT_EQ(Run({"script", "-"}, script), 0) << output_;
  EXPECT_EQ(Readings(), 18U);
  EXPECT_TRUE(Printed("Txt_UnitName: Site 2\n")) << output_;
  EXPECT_TRUE(Printed("Are you really sure ? No\n")) << output_;
  EXPECT_NE(home_.Read("corvane.ini").find("MaxRetries=15"), std::string::npos);
  EXPECT_EQ(Run({"script", "-"}, "set Txt_Prefix a\nwait-for Lbl_Status never 0\nset Txt_Prefix b\n"), 1);
  EXPECT_EQ(Run({"script", "-"}, "set Txt_Prefix c\nset Nope 1\n"), 2);
  EXPECT_NE(home_.Read("corvane.ini").find("Prefix=a"), std::string::npos);
}

}  // namespace
}  // namespace corvane::test
