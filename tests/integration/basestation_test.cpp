#include <fcntl.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <memory>
#include <tuple>
#include <utility>

#include "support/child.h"

namespace corvane::test {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

const std::string kAll = "00000:00001:00rr 0001010000";
const std::string kEcho = kAll + "\r\n";
const std::string kHeader = "$V2,00001,4,3,3,2010/3/12 00:30,12270,28759,100*7D\r\n";
const std::string kLine1 = "$2010/3/12 00:00,12276,28805,0,2139,2320,28515*2F\r\n";
const std::string kLine2 = "$2010/3/12 00:15,12273,28783,1,2139,2304,28514*29\r\n";
const std::string kLine3 = "$2010/3/12 00:30,12270,28759,2,2139,2287,28514*23\r\n";
const std::string kOk = "OK\r\n";
const std::string kClean = kHeader + kLine1 + kLine2 + kLine3 + kOk;

/// The program as a child process, and the application's end of its line.
class BaseStation : public testing::Test {
 protected:
  ~BaseStation() override { close(line_); }

  /// Runs the program with these rules for unit 1, which holds three readings of one sensor, and unit 7 behind relay 4,
  /// instead of one that runs already, until it is ready or says why not.
  void Start(const std::string& more = "", const std::string& rules = "") {
    child_.reset();
    child_ = std::make_unique<Child>(Words{"sh", "-c",
                                           "exec '" CORVANE_BASESTATION_PATH
                                           "' --idle-exit 60 --units 1,7@4 --readings 3 --sensors 1 --link " +
                                               port_ + " --script " + folder_.Write("script", rules) + " " + more});
    Open([this] { return child_->output().ends_with('\n'); });
  }
  void Open(const std::function<bool()>& ready) {
    EXPECT_TRUE(Until(ready));
    close(line_);
    line_ = open(port_.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  }
  int End(int signal) {
    child_->Signal(signal);
    return child_->Wait();
  }
  void Send(const std::string& bytes) const {
    EXPECT_EQ(write(line_, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  }
  /// What arrives until it holds this and has this size, or the line hangs up, at most 2 seconds.
  std::string Take(const std::string& wanted, std::size_t least = 0) const {
    std::string text;
    const auto come = [&] {
      char bytes[4096];
      const ssize_t size = read(line_, bytes, sizeof bytes);
      text.append(bytes, static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
      return size == 0 || (size < 0 && errno != EAGAIN) || (text.size() >= least && text.find(wanted) != text.npos);
    };
    Until(come, 2s);
    return text;
  }
  /// The answer to a command line, without its echo: all that comes before the answer to an empty command, which is
  /// sent as soon as the answer holds what is expected.
  std::string Ask(const std::string& line, const std::string& wanted = kOk) const {
    Send(line + "\r");
    std::string text = Take(wanted);
    Send("\r");
    text += Take(" ready\r\n");
    const std::size_t last = text.rfind("\r\nCorvane base station ");
    const bool complete = last != text.npos && text.starts_with(line + "\r\n");
    return complete ? text.substr(line.size() + 2, last - line.size() - 2) : "unexpected: " + text;
  }

  TempFolder folder_;
  const std::string port_ = folder_.Name("port");
  std::unique_ptr<Child> child_;
  int line_ = -1;
};

TEST_F(BaseStation, AnswersEveryCommand) {
  const std::pair<std::string, std::string> rows[] = {
      {kAll, kClean},
      {"00000:00001:00rr 1003120015", "$V2,00001,4,3,1,2010/3/12 00:30,12270,28759,100*7F\r\n" + kLine3 + kOk},
      {"00000:00001:00rr 1003120030", "$V2,00001,4,3,0,2010/3/12 00:30,12270,28759,100*7E\r\nOK\r\n"},
      {"00004:00007:01rt ", "2010/3/12 00:30:00\r\n"},
      {"00000:00007:00rt ", "ERROR 2\r\n"},  // not behind this relay
      {"nonsense", "ERROR 1\r\n"},
      {"00000:00001:00xx ", "ERROR 1\r\n"},
      {"00000:00001:00rr 1002300000", "ERROR 1\r\n"},  // no date
      {"00000:00001:00WT 100312140509", kOk},
      {"00000:00001:00rt ", "2010/3/12 14:05:09\r\n"},
      {"00000:00001:00WI 1E", kOk},
      {"00000:00001:00rm ", "Readings 3, last 2010/3/12 00:30, log period 30 min\r\n"},
      {"00000:00001:00SM Normal mode", kOk},
  };
  Start();
  for (const auto& [line, answer] : rows) EXPECT_EQ(Ask(line, answer), answer) << line;

  Start("--no-echo --baud 9600");
  const auto start = std::chrono::steady_clock::now();
  Send(kAll + "\r");
  EXPECT_EQ(Take(kOk), kClean);
  EXPECT_GE(std::chrono::steady_clock::now() - start,
            std::chrono::milliseconds(kClean.size() * 10'000 / 9600 * 9 / 10));
}

TEST_F(BaseStation, SecondDownloadBringsOnlyWhatIsNew) {
  const std::string state = " --state " + folder_.Name("state");
  Start("--advance 1" + state);
  Ask(kAll);
  const std::string fourth = Ask("00000:00001:00rr 1003120030");
  EXPECT_NE(fourth.find("\r\n$2010/3/12 00:45,"), std::string::npos) << fourth;
  child_->Signal(SIGUSR1);
  EXPECT_TRUE(Ask("00000:00001:00rr 1003120045").starts_with("$V2,00001,4,3,2,2010/3/12 01:15"));
  Ask("00000:00001:00WT 100401120000");
  EXPECT_EQ(End(SIGTERM), 0);
  Start("--advance 0" + state);
  child_->Signal(SIGUSR1);
  EXPECT_TRUE(Ask("00000:00001:00rr 1003120115").starts_with("$V2,00001,4,3,2,2010/4/1 12:15"));
}

TEST_F(BaseStation, MakesTheFaultsOfItsScript) {
  const auto with = [](const std::string& part, const std::string& instead) {
    return std::string(kClean).replace(kClean.find(part), part.size(), instead);
  };
  const std::pair<std::string, std::string> rows[] = {
      {"unit 1-2,5 download 1,3-: error 3 after 1", kHeader + kLine1 + "ERROR 3\r\n"},
      {"unit 1 any 2-: error 3", kClean},
      {"unit 2- download: error 3", kClean},
      {"unit 1 download: silence after 2", kHeader + kLine1 + kLine2},
      {"unit 1 download: no-ok", with(kOk, "")},
      {"unit 1 download: bad-checksum line 2", with("*29", "*20")},
      {"unit 1 download: lower-checksum", with("*2F", "*2f")},
      {"unit 1 download: wrong-items line 3", with(",28514*23", "*35")},
      {"unit 1 download: bad-date", with(kLine1, "$2010/13/12 00:00,12276,28805,0,2139,2320,28515*1E\r\n")},
      {"unit 1 download: future-date line 3", with(kLine3, "$2099/3/12 00:30,12270,28759,2,2139,2287,28514*22\r\n")},
      {"unit 1 download: header $A,1*00", with(kHeader, "$A,1*00\r\n")},
      {"unit 1 download: reply OK\\r\\n\\x41\\\\", "OK\r\nA\\\r\n"},
      {"unit 1 download: pieces random", kClean},
  };
  for (const auto& [rule, answer] : rows) {
    Start("", "\n" + rule + "\r\n# remark");
    EXPECT_EQ(Ask(kAll, answer), answer) << rule;
  }
  const std::tuple<std::string, std::size_t, std::size_t> noises[] = {
      {"noise 5 line 2", (kEcho + kHeader + kLine1).size(), 5},
      {"noise-within 3 line 1", (kEcho + kHeader).size() + 25, 3},
      {"flood 1000000 line 1", (kEcho + kHeader).size(), 1000000}};
  for (const auto& [rule, at, bytes] : noises) {
    Start("", "unit 1 download: " + rule);
    Send(kAll + "\r");
    std::string text = Take("", (kEcho + kClean).size() + bytes);
    EXPECT_EQ(text.substr(at, bytes).find_first_of("\r\n"), text.npos) << rule;
    EXPECT_EQ(text.erase(at, bytes), kEcho + kClean) << rule;
  }
  Start("--faults wrong-items=1");
  EXPECT_NE(Ask(kAll), kClean);
}

TEST_F(BaseStation, UnitThatIsSilentBabblesOrIsStoppedAnswersTheNextAttempt) {
  Start("", "unit 1 download 1: silence\nunit 1 download 2: error 2\nunit 1 download 3: babble after 1");
  Send(kAll + "\r\x1b");
  EXPECT_EQ(Ask(kAll, "ERROR 2\r\n"), "ERROR 2\r\n");
  Send(kAll + "\r");
  const std::string start = kEcho + kHeader + kLine1;
  const std::string babble = Take(start, start.size() + 2);
  EXPECT_TRUE(babble.starts_with(start)) << babble;
  Send(kAll + "\r");
  EXPECT_TRUE(Take(kOk).ends_with("\r\n" + kEcho + kClean));

  Start("--units 1 --readings 1000000");
  Send(kAll + "\r");
  EXPECT_NE(Take(kLine3), "");
  Send("00000:00001:00rt \r");
  EXPECT_NE(Take("\r\nERROR 5\r\n$"), "");
  Send("\x1b");
  EXPECT_TRUE(Take("\r\nERROR 4\r\n").ends_with("\r\nERROR 4\r\n"));
}

TEST_F(BaseStation, LinkComesBackAfterAHangUpAndIsReplacedAndRemovedOnlyWhenItIsItsOwn) {
  fs::create_symlink("/dev/pts/999999", port_);
  Start("", "unit 1 download 1: hang-up after 2 back 20");
  Send(kAll + "\r");
  EXPECT_EQ(Take(kOk), kEcho + kHeader + kLine1 + kLine2);
  Open([this] { return fs::exists(port_); });
  EXPECT_EQ(Ask(kAll), kClean);
  EXPECT_EQ(End(SIGINT), 0);
  EXPECT_FALSE(fs::is_symlink(port_));

  folder_.Write("port", "precious");
  Start();
  EXPECT_EQ(child_->Wait(), 3);
  EXPECT_EQ(folder_.Read("port"), "precious");
}

TEST_F(BaseStation, ExitStatusAndOutputTellWhy) {
  const std::tuple<std::string, int, std::string> rows[] = {
      {"--idle-exit 1", 0, "ready: /"},
      {"--wrong", 2, "unknown argument \"--wrong\""},
      {"--script " + folder_.Write("rules", "unit 1 any: no-ok\nunit 1 al: no-ok"), 3, "line 2: there is no command"},
      {"--state " + folder_.Write("state", "seed 9 sensors 3\n"), 3, "other options"},
      {"--link /nowhere/port", 3, "cannot make the link"}};
  for (const auto& [arguments, status, message] : rows) {
    Start(arguments);
    EXPECT_EQ(child_->Wait(), status) << message;
    EXPECT_TRUE(child_->Shows(message)) << child_->output();
  }
}

}  // namespace
}  // namespace corvane::test
