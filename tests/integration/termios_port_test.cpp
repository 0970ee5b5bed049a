#include "posix/termios_port.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "posix/posix_loop.h"
#include "support/pty_pair.h"

namespace corvane {
namespace {

using std::string_literals::operator""s;
using Events = std::vector<int>;

TEST(LineSettings, TakesOnlyWellFormedTexts) {
  struct Row {
    const char* text;
    bool good;
  };
  for (const Row& row : std::vector<Row>{{"9600,N,8,1", true},      {"1,e,7,2", true},
                                         {"4000000,O,5,1.5", true}, {"12345,m,6,1", true},
                                         {"9600,S,8,1", true},      {"", false},
                                         {"9600,N,8", false},       {"9600,N,8,1,", false},
                                         {"9600,N,8,1 ", false},    {" 9600,N,8,1", false},
                                         {"0,N,8,1", false},        {"-9600,N,8,1", false},
                                         {"4000001,N,8,1", false},  {"99999999999,N,8,1", false},
                                         {"9600,X,8,1", false},     {"9600,,8,1", false},
                                         {"9600,NE,8,1", false},    {"9600,N,4,1", false},
                                         {"9600,N,9,1", false},     {"9600,N,8,1.5", false},
                                         {"9600,N,8,0", false}}) {
    EXPECT_EQ(ParseLineSettings(row.text).has_value(), row.good) << row.text;
  }
  const LineSettings settings = ParseLineSettings("19200,o,7,2").value_or(LineSettings{});
  EXPECT_EQ(settings.baud, 19200);
  EXPECT_EQ(settings.parity, Parity::Odd);
  EXPECT_EQ(settings.data_bits, 7);
  EXPECT_TRUE(settings.long_stop);
}

TEST(ParmrkDecoder, ReadsMarksInEverySplit) {
  struct Row {
    std::string raw;
    std::string text;
    int breaks;
    int damaged;
  };
  for (const Row& row : std::vector<Row>{{"plain\r\n", "plain\r\n", 0, 0},
                                         {"a\0b"s, "a\0b"s, 0, 0},
                                         {"a\xFF\xFF"s + "b", "a\xFF"s + "b", 0, 0},
                                         {"\xFF\xFF\xFF\xFF", "\xFF\xFF", 0, 0},
                                         {"a\xFF\0Fb"s, "a?b", 0, 1},
                                         {"a\xFF\0\0b"s, "ab", 1, 0},
                                         {"\xFF\0\xFFx"s, "?x", 0, 1},
                                         {"\xFF\xFF\0\xFF\0P\xFF\0\0"s, "\xFF\0?"s, 1, 1},
                                         {"\xFFz", "\xFFz", 0, 0}}) {
    for (std::size_t piece = 1; piece <= row.raw.size(); ++piece) {
      ParmrkDecoder decoder;
      std::string text;
      int breaks = 0;
      int damaged = 0;
      for (std::size_t at = 0; at < row.raw.size(); at += piece) {
        const LineMarks marks = decoder.Decode(std::string_view(row.raw).substr(at, piece), text);
        breaks += marks.breaks;
        damaged += marks.damaged;
      }
      EXPECT_EQ(text, row.text) << piece;
      EXPECT_EQ(breaks, row.breaks) << row.text;
      EXPECT_EQ(damaged, row.damaged) << row.text;
    }
  }
}

/// A port on the near end of a pseudo-terminal that records its events and its data.
class PtyPortTest : public testing::Test {
 protected:
  PtyPortTest() {
    port.SetEventHandler([this](int code) {
      events.push_back(code);
      data += port.ReadAll();
    });
  }
  void OpenPort(TermiosPort& which) const {
    ASSERT_TRUE(which.SetDevice(pty.path()).ok());
    ASSERT_TRUE(which.SetSettings("9600,N,8,1").ok());
    ASSERT_TRUE(which.SetNoHandshaking().ok());
    const Status status = which.Open();
    ASSERT_TRUE(status.ok()) << status.text();
  }

  PtyPair pty;
  PosixLoop loop;
  TermiosPort port{loop, loop, OpenTtyDevice, SerialTimes{.write_stall = 50}};
  Events events;
  std::string data;
};

TEST_F(PtyPortTest, DeliversWhatArrivesAfterOpening) {
  pty.Send("stale");
  OpenPort(port);
  for (const std::string& piece : {"first li"s, "ne\r\nsecond"s, "\r\n\xFF\0\xFF\xFF\r\n"s}) {
    pty.Send(piece);
    const std::size_t wanted = data.size() + piece.size();
    EXPECT_TRUE(RunUntil(loop, [&] { return data.size() >= wanted; }));
  }
  EXPECT_EQ(data, "first line\r\nsecond\r\n\xFF\0\xFF\xFF\r\n"s);
  EXPECT_EQ(events, Events(events.size(), kPortDataReceived));
}

TEST_F(PtyPortTest, KeepsWhatNobodyTakesWithinItsLimit) {
  OpenPort(port);
  port.SetEventHandler([](int) {});
  std::string sent;
  for (int refusals = 0; sent.size() < 200'000;) {
    const std::string line = "line " + std::to_string(sent.size()) + "\r\n";
    const ssize_t taken = write(pty.far_end(), line.data(), line.size());
    sent.append(line, 0, static_cast<std::size_t>(std::max<ssize_t>(taken, 0)));
    if (taken == std::ssize(line)) continue;
    loop.Poll();
    if (taken > 0 || ++refusals < 3) continue;
    const std::string waiting = port.ReadAll();
    EXPECT_LE(waiting.size(), 70'000U);
    data += waiting;
    refusals = 0;
  }
  EXPECT_TRUE(RunUntil(loop, [&] { return (data += port.ReadAll()).size() >= sent.size(); }));
  EXPECT_EQ(data, sent);
}

TEST_F(PtyPortTest, VanishedDeviceIsOneEventAndNoSpin) {
  OpenPort(port);
  port.SetEventHandler([this](int code) {
    events.push_back(code);
    EXPECT_TRUE(port.IsOpen());
    EXPECT_EQ(port.Write("\x1B").code(), EIO);
    loop.Poll();
  });
  pty.HangUp();
  EXPECT_TRUE(RunUntil(loop, [&] { return !port.IsOpen(); }));
  EXPECT_EQ(port.Write("\x1B").code(), EBADF);
  int yields = 0;
  bool ticked = false;
  const auto timer = loop.MakeTimer([&] { ticked = true; });
  timer->Start(20);
  for (; !ticked; ++yields) loop.Yield();
  EXPECT_LE(yields, 2);
  EXPECT_EQ(events, Events{kPortEndOfInput});
  EXPECT_EQ(port.Open().text(), pty.path() + " is not there: plug the adapter in or choose another port");
}

TEST_F(PtyPortTest, HandlerMayReopenOnAnotherDevice) {
  OpenPort(port);
  const PtyPair other;
  port.SetEventHandler([&](int code) {
    events.push_back(code);
    data += port.ReadAll();
    if (code != kPortEndOfInput) return;
    port.Close();
    EXPECT_TRUE(port.SetDevice(other.path()).ok());
    EXPECT_TRUE(port.Open().ok());
  });
  pty.HangUp();
  EXPECT_TRUE(RunUntil(loop, [&] { return !events.empty(); }));
  EXPECT_TRUE(port.IsOpen());
  other.Send("back\r");
  EXPECT_TRUE(RunUntil(loop, [&] { return data == "back\r"; }));
}

TEST_F(PtyPortTest, WaitInsideTheHandlerGetsItsReply) {
  OpenPort(port);
  bool replied = false;
  port.SetEventHandler([&](int) {
    data += port.ReadAll();
    if (data != "header\r") return;
    pty.Send("reply\r");
    replied = RunUntil(loop, [&] { return data == "header\rreply\r"; });
  });
  pty.Send("header\r");
  EXPECT_TRUE(RunUntil(loop, [&] { return replied; }));
}

TEST_F(PtyPortTest, WritesInOrderBeyondWhatTheDeviceTakes) {
  OpenPort(port);
  std::string sent;
  std::string arrived;
  while (sent.size() < 60'000) {
    const std::string line = "line " + std::to_string(sent.size()) + "\r";
    ASSERT_TRUE(port.Write(line).ok());
    sent += line;
  }
  loop.WatchRead(pty.far_end(), [&] { arrived += pty.Take(); });
  EXPECT_TRUE(RunUntil(loop, [&] { return arrived.size() >= sent.size(); }));
  EXPECT_EQ(arrived, sent);
  EXPECT_TRUE(events.empty());
}

TEST_F(PtyPortTest, StuckOutputIsReportedAndThrownAway) {
  OpenPort(port);
  ASSERT_TRUE(port.Write(std::string(60'000, 'x')).ok());
  EXPECT_EQ(port.Write(std::string(60'000, 'y')).code(), ENOBUFS);
  EXPECT_TRUE(RunUntil(loop, [&] { return !events.empty(); }));
  EXPECT_EQ(events, Events{kPortTransmitFull});
  static_cast<void>(pty.Take());
  ASSERT_TRUE(port.Write("fresh").ok());
  std::string arrived;
  EXPECT_TRUE(RunUntil(loop, [&] { return (arrived += pty.Take()).ends_with("fresh"); }));
  EXPECT_LT(arrived.size(), 30'000U);
}

TEST_F(PtyPortTest, OneProgramAtATime) {
  OpenPort(port);
  TermiosPort second(loop, loop);
  ASSERT_TRUE(second.SetDevice(pty.path()).ok());
  EXPECT_EQ(second.Open().text(),
            pty.path() + " is in use by another program: close that program or choose another port");
  EXPECT_FALSE(port.SetSettings("19200,N,8,1").ok());
  EXPECT_FALSE(port.Open().ok());
  port.Close();
  OpenPort(second);
}

TEST_F(PtyPortTest, OddSpeedsAreTaken) {
  for (const char* settings : {"12345,N,8,1", "1234567,E,7,2", "50,M,5,1.5"}) {
    ASSERT_TRUE(port.SetDevice(pty.path()).ok());
    ASSERT_TRUE(port.SetSettings(settings).ok());
    EXPECT_TRUE(port.Open().ok()) << settings;
    port.Close();
  }
}

TEST_F(PtyPortTest, RefusalsSayWhatToDo) {
  struct Row {
    std::string device;
    std::string text;
  };
  for (const Row& row : std::vector<Row>{
           {"/dev/ttyUSB999", "/dev/ttyUSB999 is not there: plug the adapter in or choose another port"},
           {"/dev/null", "/dev/null is not a serial port: choose another port"},
           {"/", "/ is not a serial port: choose another port"},
       }) {
    ASSERT_TRUE(port.SetDevice(row.device).ok());
    EXPECT_EQ(port.Open().text(), row.text);
    EXPECT_FALSE(port.IsOpen());
  }
  EXPECT_EQ(port.SetDevice("").text(), "no device is set for this port: choose a device or another port");
  EXPECT_EQ(port.SetSettings("fast").text(), "\"fast\" is no line setting: write it like 9600,N,8,1");
}

TEST_F(PtyPortTest, MissingRightNamesTheGroupThatGivesIt) {
  struct Row {
    mode_t mode;
    gid_t group;
    std::string advice;
  };
  constexpr gid_t kSomeGroup = 1;
  const std::string group_name = getgrgid(kSomeGroup)->gr_name;
  const std::string administrator = "ask the administrator for the right to read and write it";
  const uid_t self = geteuid();
  if (self != 0) GTEST_SKIP() << "only root can give a device to another group";
  ASSERT_EQ(setgroups(0, nullptr), 0);
  ASSERT_TRUE(port.SetDevice(pty.path()).ok());
  for (const Row& row : {Row{0660, kSomeGroup, "add yourself to the group " + group_name + " and log in again"},
                         Row{0640, kSomeGroup, administrator}, Row{0660, 0, administrator}}) {
    ASSERT_EQ(chown(pty.path().c_str(), 0, row.group), 0);
    ASSERT_EQ(chmod(pty.path().c_str(), row.mode), 0);
    ASSERT_EQ(setegid(65534), 0);
    ASSERT_EQ(seteuid(65534), 0);
    const std::string text = port.Open().text();
    ASSERT_EQ(seteuid(self), 0);
    ASSERT_EQ(setegid(0), 0);
    EXPECT_EQ(text, "no permission to use " + pty.path() + ": " + row.advice);
  }
}

/// What a scripted device shares with its test.
struct Script {
  std::optional<LineCounters> counters = LineCounters{};
  int pending_output = 0;
  bool released = false;
  std::atomic<bool> may_close = true;
  std::atomic<bool> closed = false;
};

/// Plays any counters over the bytes of a pipe, which may carry marks.
class ScriptedDevice : public SerialDevice {
 public:
  ScriptedDevice(Script& script, int descriptor) : script_(script), descriptor_(descriptor) {}
  ~ScriptedDevice() override {
    script_.may_close.wait(false);
    close(descriptor_);
    script_.closed = true;
    script_.closed.notify_all();
  }
  [[nodiscard]] int Descriptor() const override { return descriptor_; }
  [[nodiscard]] ssize_t Read(char* into, std::size_t size) override {
    const ssize_t got = read(descriptor_, into, size);
    return got < 0 ? -errno : got;
  }
  [[nodiscard]] ssize_t Write(std::string_view) override { return -EAGAIN; }
  [[nodiscard]] std::optional<LineCounters> Counters() override { return script_.counters; }
  [[nodiscard]] int PendingOutput() override { return script_.pending_output; }
  void DiscardOutput() override {}
  void Release() override { script_.released = true; }

 private:
  Script& script_;
  int descriptor_;
};

class ScriptedPortTest : public testing::Test {
 protected:
  ScriptedPortTest() {
    EXPECT_TRUE(port.SetDevice("scripted").ok());
    port.SetEventHandler([this](int code) {
      events.push_back(code);
      data += port.ReadAll();
    });
  }
  ~ScriptedPortTest() override {
    port.Close();
    if (far_end >= 0) close(far_end);
  }
  void OpenPort(const std::string& settings = "9600,N,8,1") {
    ASSERT_TRUE(port.SetSettings(settings).ok());
    ASSERT_TRUE(port.Open().ok());
  }

  Script script;
  int far_end = -1;
  PosixLoop loop;
  TermiosPort port{loop, loop,
                   [this](const std::string&, const LineSettings&, std::unique_ptr<SerialDevice>& device) {
                     int ends[2] = {-1, -1};
                     EXPECT_EQ(pipe2(ends, O_NONBLOCK | O_CLOEXEC), 0);
                     if (far_end >= 0) close(far_end);
                     far_end = ends[1];
                     device = std::make_unique<ScriptedDevice>(script, ends[0]);
                     return Status::Ok();
                   },
                   SerialTimes{.counter_interval = 10, .close_wait = 20}};
  Events events;
  std::string data;
};

TEST_F(ScriptedPortTest, LineEventsComeAfterTheDataInOrder) {
  struct Row {
    const char* name;
    const char* settings;
    std::optional<LineCounters> before;
    std::optional<LineCounters> after;
    std::string raw;
    std::string text;
    Events events;
  };
  const LineCounters busy{.cts = 4, .framing = 7, .breaks = 2};
  const LineCounters all{1, 1, 1, 1, 1, 1, 1, 1, 1};
  const std::vector<Row> rows = {
      {"old counts mean nothing", "9600,N,8,1", busy, busy, "a\r", "a\r", {2}},
      {"framing", "9600,N,8,1", LineCounters{}, LineCounters{.framing = 3}, "a\xFF\0Fb"s, "a?b", {2, 1004}},
      {"counters beat marks", "9600,N,8,1", LineCounters{}, LineCounters{.parity = 1}, "a\xFF\0F"s, "a?", {2, 1009}},
      {"break without data", "9600,N,8,1", LineCounters{}, LineCounters{.breaks = 1}, "\xFF\0\0"s, "", {1001}},
      {"everything", "9600,N,8,1", LineCounters{}, all, "a", "a", {2, 1004, 1009, 1006, 1008, 1001, 3, 4, 5, 6}},
      {"line change without input", "9600,N,8,1", LineCounters{}, LineCounters{.dsr = 1, .ring = 2}, "", "", {4, 6}},
      {"mark without counters", "9600,N,8,1", {}, {}, "a\xFF\0F\xFF\0\0b"s, "a?b", {2, 1004, 1001}},
      {"mark with parity", "9600,E,7,1", {}, {}, "\xFF\0F"s, "?", {2, 1009}},
  };
  for (const Row& row : rows) {
    script.counters = row.before;
    events.clear();
    data.clear();
    OpenPort(row.settings);
    script.counters = row.after;
    EXPECT_EQ(write(far_end, row.raw.data(), row.raw.size()), std::ssize(row.raw));
    EXPECT_TRUE(RunUntil(loop, [&] { return events.size() >= row.events.size(); })) << row.name;
    loop.Poll();
    EXPECT_EQ(events, row.events) << row.name;
    EXPECT_EQ(data, row.text) << row.name;
    port.Close();
  }
}

TEST_F(ScriptedPortTest, LastDataComesBeforeTheEnd) {
  OpenPort();
  ASSERT_EQ(write(far_end, "last", 4), 4);
  close(std::exchange(far_end, -1));
  EXPECT_TRUE(RunUntil(loop, [&] { return !port.IsOpen(); }));
  EXPECT_EQ(events, (Events{kPortDataReceived, kPortEndOfInput}));
  EXPECT_EQ(data, "last");
}

TEST_F(ScriptedPortTest, ClosingInTheHandlerDropsTheRest) {
  OpenPort();
  port.SetEventHandler([this](int code) {
    events.push_back(code);
    port.Close();
  });
  script.counters = LineCounters{.framing = 1, .overrun = 1};
  ASSERT_EQ(write(far_end, "x", 1), 1);
  EXPECT_TRUE(RunUntil(loop, [&] { return !port.IsOpen(); }));
  loop.Poll();
  EXPECT_EQ(events, Events{kPortDataReceived});
  EXPECT_EQ(port.ReadAll(), "");
}

TEST_F(ScriptedPortTest, StuckDeviceDoesNotHoldUpClose) {
  OpenPort();
  script.pending_output = 5;
  script.may_close = false;
  port.Close();
  EXPECT_FALSE(port.IsOpen());
  EXPECT_TRUE(script.released);
  EXPECT_FALSE(script.closed);
  script.may_close = true;
  script.may_close.notify_all();
  script.closed.wait(false);
}

}  // namespace
}  // namespace corvane
