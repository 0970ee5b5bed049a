// Drives the real program against the simulated base station.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <functional>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "support/temp_folder.h"

namespace corvane {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Words = std::vector<std::string>;

/// A program as a child process, both outputs collected together.
class Child {
 public:
  explicit Child(Words command, const std::string& input = "") {
    int in[2];
    int out[2];
    EXPECT_EQ(pipe2(in, O_CLOEXEC) + pipe2(out, O_CLOEXEC), 0);
    std::vector<char*> words;
    for (std::string& word : command) words.push_back(word.data());
    words.push_back(nullptr);
    process_ = fork();
    if (process_ == 0) {
      dup2(in[0], STDIN_FILENO);
      dup2(out[1], STDOUT_FILENO);
      dup2(out[1], STDERR_FILENO);
      unsetenv("CORVANE_HOME");
      execv(words[0], words.data());
      _exit(127);
    }
    EXPECT_EQ(write(in[1], input.data(), input.size()), static_cast<ssize_t>(input.size()));
    for (const int end : {in[0], in[1], out[1]}) close(end);
    out_ = out[0];
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  ~Child() {
    if (status_ < 0) {
      kill(process_, SIGKILL);
      waitpid(process_, nullptr, 0);
    }
    close(out_);
  }

  void Signal(int signal) const { kill(process_, signal); }
  /// Reads until the output holds `text`; false after `limit`.
  bool Shows(const std::string& text, Clock::duration limit = 10s) {
    return ReadUntil([&] { return output_.find(text) != std::string::npos; }, limit);
  }
  /// Waits for the end and returns the exit status; -1 when it has not ended within `limit`.
  int Wait(Clock::duration limit = 20s) {
    ReadUntil([this] { return ended_; }, limit);
    int status = 0;
    if (!ended_ || waitpid(process_, &status, 0) != process_) return -1;
    return status_ = WIFEXITED(status) ? WEXITSTATUS(status) : 256 + WTERMSIG(status);
  }
  [[nodiscard]] const std::string& output() const { return output_; }

 private:
  bool ReadUntil(const std::function<bool()>& done, Clock::duration limit) {
    const auto deadline = Clock::now() + limit;
    while (!done() && !ended_ && Clock::now() < deadline) {
      pollfd readable{out_, POLLIN, 0};
      if (poll(&readable, 1, 50) != 1) continue;
      char block[4096];
      const ssize_t length = read(out_, block, sizeof block);
      if (length > 0) output_.append(block, static_cast<std::size_t>(length));
      ended_ = length <= 0;
    }
    return done();
  }

  pid_t process_ = -1;
  int out_ = -1;
  int status_ = -1;
  bool ended_ = false;
  std::string output_;
};

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
  void StartStation(const Words& more) {
    Words command = {CORVANE_BASESTATION_PATH, "--link", home_.Name("tty"), "--units", "1,2@1,3"};
    command.insert(command.end(), more.begin(), more.end());
    station_ = std::make_unique<Child>(command);
    ASSERT_TRUE(station_->Shows("ready: "));
  }
  [[nodiscard]] Words Command(const Words& arguments) const {
    Words command = {CORVANECTL_PATH, "--home", home_.path()};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return command;
  }
  /// Runs a command to its end; its output is kept.
  int Run(const Words& arguments, const std::string& input = "") {
    Child program(Command(arguments), input);
    const int status = program.Wait();
    output_ = program.output();
    return status;
  }
  /// The reading lines of the raw files of units 1 to 3.
  [[nodiscard]] std::vector<std::string> Readings() const {
    std::vector<std::string> readings;
    for (int unit = 1; unit <= 3; ++unit) {
      std::istringstream file(home_.Read("0000" + std::to_string(unit) + ".epd"));
      std::string line;
      std::getline(file, line);
      while (std::getline(file, line)) readings.push_back(std::to_string(unit) + " " + line);
    }
    return readings;
  }
  [[nodiscard]] bool Printed(const std::string& text) const { return output_.find(text) != std::string::npos; }

  test::TempFolder home_;
  std::unique_ptr<Child> station_;
  std::string output_;
};

TEST_F(CorvanectlTest, SecondRoundBringsOnlyWhatIsNew) {
  home_.Write("faults.txt", "unit 2 download 1: error 2\n");
  StartStation({"--readings", "20", "--advance", "3", "--script", home_.Name("faults.txt")});
  EXPECT_EQ(Run({"download"}), 0) << output_;
  EXPECT_TRUE(Printed("Download: Site 2 (2/3)\n")) << output_;
  EXPECT_TRUE(Printed("\nSite 2      2        20   20  2010-03-12 04:45  ok\n")) << output_;
  EXPECT_EQ(std::count(output_.begin(), output_.end(), '\r'), 0);
  EXPECT_EQ(output_.find("12 Mar 2010"), std::string::npos) << "a line for a reading: " << output_;
  EXPECT_EQ(Readings().size(), 60U);

  EXPECT_EQ(Run({"download", "--quiet"}), 0) << output_;
  EXPECT_EQ(output_, "");
  const std::vector<std::string> readings = Readings();
  EXPECT_EQ(readings.size(), 69U);
  EXPECT_EQ(std::set<std::string>(readings.begin(), readings.end()).size(), 69U);

  EXPECT_EQ(Run({"download", "south", "1"}), 0) << output_;
  EXPECT_EQ(Readings().size(), 75U);
  EXPECT_EQ(Run({"convert"}), 0) << output_;
  EXPECT_TRUE(Printed("South         26          0")) << output_;
  const std::string calibrated = home_.Read("00003.txt");
  EXPECT_EQ(std::count(calibrated.begin(), calibrated.end(), '\n'), 27);
}

TEST_F(CorvanectlTest, ExitStatusTellsWhatHappened) {
  StartStation({"--readings", "5"});
  home_.Write("file", "");
  struct Row {
    Words arguments;
    int status;
    const char* says;
  };
  const Row rows[] = {
      {{"--help"}, 0, "Exit status:"},
      {{"units"}, 0, "North"},
      {{"get-date", "--unit", "north"}, 0, "2010/3/12 "},
      {{"test-port"}, 0, "answered"},
      {{"set-date", "--yes"}, 0, "Set date: South"},
      {{"set-date"}, 1, "nobody can be asked here"},
      {{"convert", "1"}, 1, "no raw file"},
      {{"convert", "--file", "00009.epd"}, 1, "no unit has a raw file of that name"},
      {{"download", "Nobody"}, 2, "there is no unit \"Nobody\""},
      {{"downlaod"}, 2, "there is no command"},
      {{"run"}, 3, "corvanectl run --automatic"},
      {{"--home", home_.Name("file"), "download"}, 3, "cannot be used"},
      {{"--home", home_.Name("file"), "units"}, 3, "is no folder"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(Run(row.arguments), row.status) << row.says << "\n" << output_;
    EXPECT_TRUE(Printed(row.says)) << output_;
  }
  station_.reset();
  EXPECT_EQ(Run({"download"}), 1);
  EXPECT_TRUE(Printed("The port did not open: ")) << output_;
  EXPECT_TRUE(Printed("not asked: the port did not open")) << output_;
}

TEST_F(CorvanectlTest, SilenceOfAUnitEndsTheSessionWithAProblem) {
  home_.Write("faults.txt", "unit 2 download 1-9: silence\n");
  StartStation({"--readings", "5", "--script", home_.Name("faults.txt")});
  EXPECT_EQ(Run({"download", "--quiet"}), 1);
  EXPECT_TRUE(Printed("Site 2: waited 2 secs")) << output_;
  EXPECT_TRUE(Printed("not asked")) << output_;
}

TEST_F(CorvanectlTest, RunOutlivesAMissingPortAndEndsWithinASecond) {
  WriteSettings("Automatic=1\nNextDownload=1 Jan 2020 00:00\n");
  Child run(Command({"run"}));
  ASSERT_TRUE(run.Shows("Next download: ")) << run.output();
  EXPECT_TRUE(run.Shows("Finished...")) << run.output();
  EXPECT_NE(run.output().find("The port did not open"), std::string::npos);

  EXPECT_EQ(Run({"download"}), 3);
  EXPECT_TRUE(Printed(" is already running")) << output_;
  EXPECT_EQ(Run({"units"}), 0);

  run.Signal(SIGTERM);
  EXPECT_EQ(run.Wait(1s), 0) << run.output();
  EXPECT_EQ(home_.Read("corvane.ini").find("NextDownload=1 Jan 2020"), std::string::npos);
}

TEST_F(CorvanectlTest, RunDownloadsWhenItIsDue) {
  WriteSettings("Automatic=1\nNextDownload=1 Jan 2020 00:00\n");
  StartStation({"--readings", "4"});
  Child run(Command({"run"}));
  EXPECT_TRUE(run.Shows("Convert: " + home_.Name("00003.epd"))) << run.output();
  EXPECT_EQ(Readings().size(), 12U);
  run.Signal(SIGHUP);
  EXPECT_EQ(run.Wait(1s), 0) << run.output();
}

TEST_F(CorvanectlTest, SignalEndsADownloadAndTheNextOneGoesOn) {
  StartStation({"--readings", "300", "--baud", "19200"});
  Child download(Command({"download"}));
  const auto some_arrived = [this] { return Readings().size() > 5; };
  for (const auto deadline = Clock::now() + 10s; !some_arrived() && Clock::now() < deadline;) usleep(20'000);
  download.Signal(SIGTERM);
  EXPECT_EQ(download.Wait(1s), 128 + SIGTERM) << download.output();
  EXPECT_LT(Readings().size(), 300U);
  EXPECT_NE(home_.Read("corvane.ini").find("Version="), std::string::npos) << "settings not saved";

  station_.reset();
  StartStation({"--readings", "300"});
  EXPECT_EQ(Run({"download"}), 0) << output_;
  const std::vector<std::string> readings = Readings();
  EXPECT_EQ(std::set<std::string>(readings.begin(), readings.end()).size(), 900U);
  EXPECT_EQ(readings.size(), 900U);
}

TEST_F(CorvanectlTest, ScriptsWorkTheWindow) {
  StartStation({"--readings", "6"});
  EXPECT_EQ(Run({"script", "-"},
                "set Txt_MaxRetries 40\nclick Cmd_DownloadAll 1\nwait-for Lbl_Status Finished 5\nselect Lst_Units 1\n"
                "answer yes\nanswer no\nmenu mnu_SetDate 0\nshow Txt_UnitName\n"),
            0)
      << output_;
  EXPECT_EQ(Readings().size(), 18U);
  EXPECT_TRUE(Printed("Txt_UnitName: Site 2\n")) << output_;
  EXPECT_TRUE(Printed("Are you really sure ? No\n")) << output_;
  EXPECT_NE(home_.Read("corvane.ini").find("MaxRetries=15"), std::string::npos);

  const std::string script = home_.Write("s.txt", "set Txt_Prefix a\nwait-for Lbl_Status never 0\nset Txt_Prefix b\n");
  EXPECT_EQ(Run({"script", script}), 1);
  EXPECT_TRUE(Printed(script + ":2: ")) << output_;
  EXPECT_NE(home_.Read("corvane.ini").find("Prefix=a"), std::string::npos);
  EXPECT_EQ(Run({"script", "-"}, "set Txt_Prefix c\nset Nope 1\n"), 2);
  EXPECT_NE(home_.Read("corvane.ini").find("Prefix=a"), std::string::npos);
}

}  // namespace
}  // namespace corvane
