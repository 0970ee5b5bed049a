#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr char kAll[] = "00000:00001:00rr 0001010000";
constexpr char kHeader[] = "$V2,00001,4,3,3,2010/3/12 00:30,12270,28759,100*7D\r\n";
constexpr char kLine1[] = "$2010/3/12 00:00,12276,28805,0,2139,2320,28515*2F\r\n";
constexpr char kLine2[] = "$2010/3/12 00:15,12273,28783,1,2139,2304,28514*29\r\n";
constexpr char kLine3[] = "$2010/3/12 00:30,12270,28759,2,2139,2287,28514*23\r\n";
constexpr char kOk[] = "OK\r\n";
constexpr char kReady[] = " ready\r\n";

std::string Sum(std::initializer_list<std::string> lines) {
  std::string sum;
  for (const std::string& line : lines) sum += line;
  return sum;
}

/// The program as a child process, and the application's end of its line.
class Base {
 public:
  explicit Base(std::vector<std::string> arguments) {
    int out[2];
    int errors[2];
    EXPECT_EQ(pipe2(out, O_CLOEXEC) + pipe2(errors, O_CLOEXEC), 0);
    arguments.insert(arguments.begin(), {CORVANE_BASESTATION_PATH, "--idle-exit", "60"});
    std::vector<char*> words;
    for (std::string& argument : arguments) words.push_back(argument.data());
    words.push_back(nullptr);
    child_ = fork();
    if (child_ == 0) {
      dup2(out[1], STDOUT_FILENO);
      dup2(errors[1], STDERR_FILENO);
      execv(words[0], words.data());
      _exit(127);
    }
    close(out[1]);
    close(errors[1]);
    out_ = out[0];
    errors_ = errors[0];
    const std::string line = TakeFrom(out_, [](const std::string& text) { return text.ends_with('\n'); });
    if (line.starts_with("ready: ")) Open(line.substr(7, line.size() - 8));
  }
  Base(const Base&) = delete;
  Base& operator=(const Base&) = delete;
  ~Base() {
    Stop();
    for (const int fd : {line_, out_, errors_}) close(fd);
  }

  void Open(const std::string& device) {
    if (line_ >= 0) close(line_);
    device_ = device;
    line_ = open(device.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  }

  /// Ends the program and returns its exit status, 128 and more after a signal.
  int Stop(int signal = SIGTERM) {
    if (child_ > 0) {
      kill(child_, signal);
      Wait();
    }
    return status_;
  }
  /// Waits for the program to end by itself.
  int Wait() {
    int status = 0;
    if (child_ > 0) waitpid(child_, &status, 0);
    child_ = -1;
    return status_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  }
  void Signal(int signal) const { kill(child_, signal); }

  void Send(const std::string& bytes) const {
    EXPECT_EQ(write(line_, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  }
  /// What arrives until the condition holds or the line hangs up, at most 2 seconds.
  std::string TakeUntil(const std::function<bool(const std::string&)>& done) { return TakeFrom(line_, done, &reads_); }
  std::string TakeThrough(const std::string& end) {
    return TakeUntil([&end](const std::string& text) { return text.ends_with(end); });
  }
  using Done = std::function<bool(const std::string&)>;
  /// The answer to a command line, without its echo: all that comes before the answer to an empty command, which is
  /// sent as soon as the answer is `done`.
  std::string Ask(const std::string& line, const Done& done) {
    const std::string echo = line + "\r\n";
    Send(line + "\r");
    std::string text =
        TakeUntil([&](const std::string& all) { return all.starts_with(echo) && done(all.substr(echo.size())); });
    Send("\r");
    text += TakeThrough(kReady);
    const std::size_t end = text.rfind("\r\nCorvane base station ");
    return end == text.npos || !text.starts_with(echo) ? "unexpected: " + text
                                                       : text.substr(echo.size(), end - echo.size());
  }
  std::string Ask(const std::string& line, const std::string& end = kOk) {
    return Ask(line, [&end](const std::string& answer) { return answer.ends_with(end); });
  }

  std::string Errors() const {
    return TakeFrom(errors_, [](const std::string&) { return false; });
  }
  std::string Device() const { return device_; }
  std::size_t reads() const { return reads_; }

 private:
  static std::string TakeFrom(int fd, const std::function<bool(const std::string&)>& done,
                              std::size_t* reads = nullptr) {
    std::string text;
    const auto limit = Clock::now() + 2s;
    while (!done(text) && Clock::now() < limit) {
      pollfd file{fd, POLLIN, 0};
      char bytes[4096];
      if (poll(&file, 1, 100) <= 0) continue;
      const ssize_t size = read(fd, bytes, sizeof bytes);
      if (size <= 0) break;
      text.append(bytes, static_cast<std::size_t>(size));
      if (reads != nullptr) ++*reads;
    }
    return text;
  }
  pid_t child_ = -1;
  int status_ = -1;
  int line_ = -1;
  int out_ = -1;
  int errors_ = -1;
  std::size_t reads_ = 0;
  std::string device_;
};

class BaseStation : public testing::Test {
 protected:
  void SetUp() override {
    char name[] = "/tmp/basestation_test_XXXXXX";
    ASSERT_NE(mkdtemp(name), nullptr);
    folder_ = name;
  }
  void TearDown() override { fs::remove_all(folder_); }

  std::string Path(const std::string& name) const { return (folder_ / name).string(); }
  std::string Write(const std::string& name, const std::string& text) const {
    std::ofstream(folder_ / name, std::ios::binary) << text;
    return Path(name);
  }
  /// A base station with a unit 1 that holds three readings of one sensor, and a unit 7 behind relay 4.
  static std::vector<std::string> Small(std::vector<std::string> more = {}) {
    more.insert(more.end(), {"--units", "1,7@4", "--readings", "3", "--sensors", "1"});
    return more;
  }

  fs::path folder_;
};

TEST_F(BaseStation, AnswersEveryCommand) {
  const struct {
    const char* name;
    std::string line;
    std::string answer;
  } kRows[] = {
      {"all data", kAll, Sum({kHeader, kLine1, kLine2, kLine3, kOk})},
      {"later than the second reading", "00000:00001:00rr 1003120015",
       Sum({"$V2,00001,4,3,1,2010/3/12 00:30,12270,28759,100*7F\r\n", kLine3, kOk})},
      {"nothing new", "00000:00001:00rr 1003120030", "$V2,00001,4,3,0,2010/3/12 00:30,12270,28759,100*7E\r\nOK\r\n"},
      {"get date behind a relay", "00004:00007:01rt ", "2010/3/12 00:30:00\r\n"},
      {"unit is not behind this relay", "00000:00007:00rt ", "ERROR 2\r\n"},
      {"no such unit", "00000:00009:00rr 0001010000", "ERROR 2\r\n"},
      {"no address", "nonsense", "ERROR 1\r\n"},
      {"no such command", "00000:00001:00xx ", "ERROR 1\r\n"},
      {"blank after the code is missing", "00000:00001:00rt", "ERROR 1\r\n"},
      {"password style in lower case", "00000:00001:0art ", "ERROR 1\r\n"},
      {"start date that is none", "00000:00001:00rr 1002300000", "ERROR 1\r\n"},
      {"set date", "00000:00001:00WT 100312140509", "OK\r\n"},
      {"the date that was set", "00000:00001:00rt ", "2010/3/12 14:05:09\r\n"},
      {"set date without seconds", "00000:00001:00WT 1003121405", "ERROR 1\r\n"},
      {"set log period", "00000:00001:00WI 1E", "OK\r\n"},
      {"log period of nothing", "00000:00001:00WI 00", "ERROR 1\r\n"},
      {"read memory", "00000:00001:00rm ", "Readings 3, last 2010/3/12 00:30, log period 30 min\r\n"},
      {"set mode", "00000:00001:00SM Normal mode", "OK\r\n"},
      {"set delays", "00000:00001:00SD 1,2,3", "OK\r\n"},
  };
  Base base(Small());
  for (const auto& row : kRows) EXPECT_EQ(base.Ask(row.line, row.answer), row.answer) << row.name;
}

TEST_F(BaseStation, EchoCanBeLeftOut) {
  Base base(Small({"--no-echo"}));
  base.Send("00000:00001:00rt \r");
  EXPECT_EQ(base.TakeThrough("\n"), "2010/3/12 00:30:00\r\n");
}

TEST_F(BaseStation, SecondDownloadBringsOnlyWhatIsNew) {
  const std::string later = "00000:00001:00rr 1003120030";
  const auto dates = [](const std::string& answer) {
    std::string found;
    for (std::size_t at = answer.find("$2"); at != answer.npos; at = answer.find("$2", at + 1)) {
      found += answer.substr(at + 1, answer.find(',', at) - at - 1) + ";";
    }
    return found;
  };
  {
    Base base(Small({"--advance", "1", "--state", Path("state")}));
    base.Ask(kAll);
    EXPECT_EQ(dates(base.Ask(later)), "2010/3/12 00:45;");
    base.Signal(SIGUSR1);
    EXPECT_EQ(dates(base.Ask("00000:00001:00rr 1003120045")), "2010/3/12 01:00;2010/3/12 01:15;");
    base.Ask("00000:00001:00WT 100401120000");
    EXPECT_EQ(base.Stop(), 0);
  }
  Base again(Small({"--advance", "0", "--state", Path("state")}));
  again.Signal(SIGUSR1);
  EXPECT_EQ(dates(again.Ask("00000:00001:00rr 1003120115")), "2010/3/12 01:30;2010/4/1 12:15;");
}

TEST_F(BaseStation, EscapeStopsADownload) {
  Base base({"--units", "1", "--readings", "1000000", "--interval", "1"});
  base.Send("\x1b");
  base.Send(std::string(kAll) + "\r");
  const std::string start = base.TakeUntil([](const std::string& text) { return text.size() > 20000; });
  ASSERT_TRUE(start.starts_with(std::string(kAll) + "\r\n$V2,00001,4,9,1000000,")) << start.substr(0, 100);
  base.Send("\x1b");
  const std::string end = base.TakeThrough("\r\nERROR 4\r\n");
  EXPECT_TRUE(end.ends_with("\r\nERROR 4\r\n"));
  EXPECT_EQ(base.Ask("00000:00001:00rr 9901010000").substr(0, 16), "$V2,00001,4,9,0,");
}

TEST_F(BaseStation, CommandDuringADownloadIsRefused) {
  Base base({"--units", "1", "--readings", "100000"});
  base.Send(std::string(kAll) + "\r");
  base.TakeUntil([](const std::string& text) { return text.size() > 1000; });
  base.Send("00000:00001:00rt \r");
  const std::string busy = "\r\nERROR 5\r\n$";
  EXPECT_NE(base.TakeUntil([&](const std::string& text) { return text.find(busy) != text.npos; }).find(busy),
            std::string::npos);
}

TEST_F(BaseStation, MakesTheFaultsOfItsScript) {
  const std::string clean = Sum({kHeader, kLine1, kLine2, kLine3, kOk});
  const struct {
    const char* rule;
    std::string answer;
  } kRows[] = {
      {"unit 1 download: error 3", "ERROR 3\r\n"},
      {"unit 1 any: error", "ERROR\r\n"},
      {"unit 1-2,5 download 1,3-: error 3 after 1", Sum({kHeader, kLine1, "ERROR 3\r\n"})},
      {"unit 1 download 2-: error 3", clean},
      {"unit 2- download: error 3", clean},
      {"unit 1 get-date: error 3", clean},
      {"unit 1 download: silence after 0", kHeader},
      {"unit 1 download: silence after 2", Sum({kHeader, kLine1, kLine2})},
      {"unit 1 download: no-ok", Sum({kHeader, kLine1, kLine2, kLine3})},
      {"unit 1 download: bad-checksum line 2",
       Sum({kHeader, kLine1, "$2010/3/12 00:15,12273,28783,1,2139,2304,28514*20\r\n", kLine3, kOk})},
      {"unit 1 download: lower-checksum",
       Sum({kHeader, "$2010/3/12 00:00,12276,28805,0,2139,2320,28515*2f\r\n", kLine2, kLine3, kOk})},
      {"unit 1 download: wrong-items line 3",
       Sum({kHeader, kLine1, kLine2, "$2010/3/12 00:30,12270,28759,2,2139,2287*35\r\n", kOk})},
      {"unit 1 download: bad-date",
       Sum({kHeader, "$2010/13/12 00:00,12276,28805,0,2139,2320,28515*1E\r\n", kLine2, kLine3, kOk})},
      {"unit 1 download: future-date line 3",
       Sum({kHeader, kLine1, kLine2, "$2099/3/12 00:30,12270,28759,2,2139,2287,28514*22\r\n", kOk})},
      {"unit 1 download: header $A,1*00", Sum({"$A,1*00\r\n", kLine1, kLine2, kLine3, kOk})},
      {"unit 1 download: reply OK\\r\\n\\x41\\\\", "OK\r\nA\\\r\n"},
      {"unit 1 download: delay 50 line 2", clean},
      {"unit 1 download: pieces random", clean},
      {"# only a remark", clean},
  };
  for (const auto& row : kRows) {
    Base base(Small({"--script", Write("script", std::string("\n") + row.rule + "\r\n")}));
    EXPECT_EQ(base.Ask(kAll, row.answer), row.answer) << row.rule;
  }
}

TEST_F(BaseStation, NoiseComesWhereTheScriptSays) {
  const struct {
    const char* rule;
    std::string before;
    std::size_t bytes;
    std::string after;
  } kRows[] = {
      {"noise 5 line 2", Sum({kHeader, kLine1}), 5, Sum({kLine2, kLine3, kOk})},
      {"noise line 99", Sum({kHeader, kLine1, kLine2, kLine3}), 8, kOk},
      {"noise-within 3 line 1", kHeader + std::string(kLine1).substr(0, 25), 3,
       Sum({std::string(kLine1).substr(25), kLine2, kLine3, kOk})},
      {"flood 1000000 line 1", kHeader, 1000000, Sum({kLine1, kLine2, kLine3, kOk})},
  };
  for (const auto& row : kRows) {
    Base base(Small({"--script", Write("script", std::string("unit 1 download: ") + row.rule)}));
    const std::size_t size = row.before.size() + row.bytes + row.after.size();
    const std::string answer = base.Ask(kAll, [size](const std::string& so_far) { return so_far.size() >= size; });
    ASSERT_EQ(answer.size(), size) << row.rule;
    EXPECT_TRUE(answer.starts_with(row.before)) << row.rule;
    EXPECT_TRUE(answer.ends_with(row.after)) << row.rule;
    EXPECT_EQ(answer.substr(row.before.size(), row.bytes).find_first_of("\r\n"), std::string::npos) << row.rule;
  }
}

TEST_F(BaseStation, SilentUnitAnswersTheNextAttempt) {
  Base base(Small({"--script", Write("script", "unit 1 download 1: silence\nunit 1 download 2: error 2\n")}));
  base.Send(std::string(kAll) + "\r\x1b");
  EXPECT_EQ(base.Ask(kAll, "ERROR 2\r\n"), "ERROR 2\r\n");
  EXPECT_TRUE(base.Ask(kAll).ends_with(kOk));
}

TEST_F(BaseStation, BabbleGoesOnUntilTheNextCommand) {
  Base base(Small({"--script", Write("script", "unit 1 download: babble after 1")}));
  base.Send(std::string(kAll) + "\r");
  const std::string start = Sum({std::string(kAll), "\r\n", kHeader, kLine1});
  const auto babbled = [&](const std::string& text) { return text.size() >= start.size() + 2; };
  EXPECT_TRUE(base.TakeUntil(babbled).starts_with(start));
  base.Send("\x1b");
  EXPECT_EQ(base.TakeUntil([](const std::string& text) { return text.size() >= 2; }).find("ERROR"), std::string::npos);
  base.Send("00000:00001:00rt \r");
  EXPECT_TRUE(base.TakeThrough("30:00\r\n").ends_with("\r\n00000:00001:00rt \r\n2010/3/12 00:30:00\r\n"));
}

TEST_F(BaseStation, PiecesArriveOneByOne) {
  Base base(Small({"--script", Write("script", "unit 1 download: pieces 1")}));
  base.Send(std::string(kAll) + "\r");
  const std::string text = base.TakeThrough(kOk);
  EXPECT_TRUE(text.ends_with(Sum({kLine3, kOk})));
  EXPECT_GE(base.reads(), text.size() / 8);
}

TEST_F(BaseStation, HangsUpAndComesBackUnderTheSameName) {
  const std::string script = Write("script", "unit 1 download 1: hang-up after 2 back 20");
  Base base(Small({"--link", Path("port"), "--script", script}));
  const fs::path first = fs::read_symlink(Path("port"));
  base.Send(std::string(kAll) + "\r");
  EXPECT_EQ(base.TakeThrough(kOk), Sum({std::string(kAll), "\r\n", kHeader, kLine1, kLine2}));
  for (const auto limit = Clock::now() + 2s; !fs::exists(Path("port")) && Clock::now() < limit;) usleep(1000);
  base.Open(Path("port"));
  EXPECT_TRUE(base.Ask(kAll).ends_with(Sum({kLine3, kOk})));
}

TEST_F(BaseStation, RandomFaultsFollowFromTheSeed) {
  const auto run = [](const std::string& faults, const std::string& seed) {
    Base base(Small({"--faults", faults, "--seed", seed}));
    std::string text;
    for (int i = 0; i < 4; ++i) text += base.Ask("00000:00001:00rr 1003120015");
    return text;
  };
  EXPECT_EQ(run("wrong-items=0.5,bad-date=0.5", "3"), run("wrong-items=0.5,bad-date=0.5", "3"));
  EXPECT_NE(run("wrong-items=1", "3"), run("wrong-items=0", "3"));
}

TEST_F(BaseStation, PacesItsBytesLikeASlowLine) {
  Base base(Small({"--baud", "9600"}));
  const auto start = Clock::now();
  const std::size_t bytes = base.Ask(kAll).size();
  EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(bytes * 10 * 1000 / 9600 * 9 / 10));
}

TEST_F(BaseStation, LinkIsReplacedAndRemovedOnlyWhenItIsItsOwn) {
  fs::create_symlink("/dev/pts/999999", Path("port"));
  Base base(Small({"--link", Path("port")}));
  EXPECT_EQ(base.Device(), Path("port"));
  EXPECT_TRUE(fs::is_character_file(Path("port")));
  EXPECT_EQ(base.Stop(SIGINT), 0);
  EXPECT_FALSE(fs::is_symlink(Path("port")));

  Write("port", "precious");
  Base refused(Small({"--link", Path("port")}));
  EXPECT_EQ(refused.Wait(), 3);
  EXPECT_TRUE(fs::is_regular_file(Path("port")));
}

TEST_F(BaseStation, EndsWhenIdle) {
  Base base(Small({"--idle-exit", "1"}));
  EXPECT_EQ(base.Wait(), 0);
}

TEST_F(BaseStation, RefusesWhatItCannotDo) {
  const struct {
    std::vector<std::string> arguments;
    int status;
    const char* message;
  } kRows[] = {
      {{"--help"}, 0, ""},
      {{"--wrong"}, 2, "unknown argument \"--wrong\""},
      {{"--units"}, 2, "--units needs a value"},
      {{"--units", "0"}, 2, "\"0\" is no number or list"},
      {{"--units", "1-3,2"}, 2, "unit 2 is listed twice"},
      {{"--units=1@x"}, 2, "names no relay"},
      {{"--readings", "-1"}, 2, "--readings: \"-1\" is not a number from 0"},
      {{"--start", "2010/02/30 00:00"}, 2, "--start: \"2010/02/30 00:00\" is not a date"},
      {{"--readings", "4000000"}, 2, "choose fewer"},
      {{"--faults", "rain=0.5"}, 2, "no random fault \"rain\""},
      {{"--faults", "silence=2"}, 2, "a probability from 0 to 1"},
      {{"--script", "/nowhere"}, 3, "cannot read the script /nowhere"},
      {{"--script", Write("a", "unit 1 download: error 2\nunit 1 downlaod: no-ok")},
       3,
       "line 2: there is no command \"downlaod\""},
      {{"--script", Write("b", "unit 1 download: bad-checksum 5")}, 3, "does not understand \"5\""},
      {{"--script", Write("c", "unit x download: no-ok")}, 3, "\"x\" is neither"},
      {{"--script", Write("d", "unit 1 download no-ok")}, 3, "a rule reads"},
      {{"--state", Write("e", "seed 9 sensors 3\n")}, 3, "other options"},
      {{"--link", "/nowhere/port"}, 3, "cannot make the link"},
  };
  for (const auto& row : kRows) {
    Base base(row.arguments);
    EXPECT_EQ(base.Wait(), row.status) << row.message;
    EXPECT_NE(base.Errors().find(row.message), std::string::npos) << row.message;
  }
}

}  // namespace
