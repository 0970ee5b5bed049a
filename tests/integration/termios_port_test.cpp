#include "posix/termios_port.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <grp.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include "posix/posix_loop.h"
#include "support/pty_pair.h"

namespace corvane {
namespace {

using std::string_literals::operator""s;
using Events = std::vector<int>;

TEST(LineSettings, TakesOnlyWellFormedTexts) {
  for (const char* good : {"9600,N,8,1", "1,e,7,2", "4000000,O,5,1.5", "12345,m,6,1", "9600,S,8,1"}) {
    EXPECT_TRUE(ParseLineSettings(good)) << good;
  }
  for (const char* bad : {"", "9600,N,8", "9600,N,8,1,", "9600,N,8,1 ", " 9600,N,8,1", "0,N,8,1", "-9600,N,8,1",
                          "4000001,N,8,1", "99999999999,N,8,1", "9600,X,8,1", "9600,,8,1", "9600,NE,8,1", "9600,N,4,1",
                          "9600,N,9,1", "9600,N,8,1.5", "9600,N,8,0"}) {
    EXPECT_FALSE(ParseLineSettings(bad)) << bad;
  }
  const LineSettings settings = ParseLineSettings("19200,o,7,2").value_or(LineSettings{});
  EXPECT_EQ(std::tie(settings.baud, settings.parity, settings.data_bits, settings.long_stop),
            std::make_tuple(19200, Parity::Odd, 7, true));
}

TEST(ParmrkDecoder, ReadsMarksInEverySplit) {
  const std::string raw = "a\0\xFF\xFF\xFF\0F\xFF\0\0\xFF\xFF\0\xFF\0\xFFz\xFFy"s;
  for (std::size_t piece = 1; piece <= raw.size(); ++piece) {
    ParmrkDecoder decoder;
    std::string text;
    LineMarks marks;
    for (std::size_t at = 0; at < raw.size(); at += piece) {
      const LineMarks found = decoder.Decode(std::string_view(raw).substr(at, piece), text);
      marks.breaks += found.breaks;
      marks.damaged += found.damaged;
    }
    EXPECT_EQ(text, "a\0\xFF?\xFF\0?z\xFFy"s) << piece;
    EXPECT_EQ(marks.breaks, 1) << piece;
    EXPECT_EQ(marks.damaged, 2) << piece;
  }
}

/// What a test lays over the real device; the device may outlive the test that closed it.
struct Script {
  std::optional<LineCounters> counters;
  std::string raw;  ///< read before what the device has
  int pending_output = 0;
  std::atomic<bool> may_close = true;
};

class ScriptedDevice : public SerialDevice {
 public:
  ScriptedDevice(std::shared_ptr<Script> script, std::unique_ptr<SerialDevice> device)
      : script_(std::move(script)), device_(std::move(device)) {}
  ~ScriptedDevice() override { script_->may_close.wait(false); }
  [[nodiscard]] int Descriptor() const override { return device_->Descriptor(); }
  [[nodiscard]] ssize_t Read(char* into, std::size_t size) override {
    if (script_->raw.empty()) return device_->Read(into, size);
    return static_cast<ssize_t>(std::exchange(script_->raw, {}).copy(into, size));
  }
  [[nodiscard]] ssize_t Write(std::string_view text) override { return device_->Write(text); }
  [[nodiscard]] std::optional<LineCounters> Counters() override { return script_->counters; }
  [[nodiscard]] int PendingOutput() override { return script_->pending_output; }
  void DiscardOutput() override { device_->DiscardOutput(); }
  void Release() override { device_->Release(); }

 private:
  std::shared_ptr<Script> script_;
  std::unique_ptr<SerialDevice> device_;
};

/// A port on a pseudo-terminal that records its events and its data.
class TermiosPortTest : public testing::Test {
 protected:
  TermiosPortTest() {
    port.SetEventHandler([this](int code) {
      events.push_back(code);
      data += port.ReadAll();
    });
  }
  void OpenPort(const std::string& settings = "9600,N,8,1") {
    ASSERT_TRUE(port.SetDevice(pty.path()).ok() && port.SetSettings(settings).ok() && port.SetNoHandshaking().ok());
    const Status status = port.Open();
    ASSERT_TRUE(status.ok()) << status.text();
  }
  Status OpenScripted(const std::string& path, const LineSettings& settings, std::unique_ptr<SerialDevice>& device) {
    Status status = OpenTtyDevice(path, settings, device);
    if (status.ok() && script) device = std::make_unique<ScriptedDevice>(script, std::move(device));
    return status;
  }

  PtyPair pty;
  PosixLoop loop;
  std::shared_ptr<Script> script;
  TermiosPort port{loop, loop, std::bind_front(&TermiosPortTest::OpenScripted, this), SerialTimes{10, 50, 20}};
  Events events;
  std::string data;
};

TEST_F(TermiosPortTest, DeliversWhatArrivesAfterOpening) {
  pty.Send("stale");
  OpenPort();
  for (const std::string& piece : {"first li"s, "ne\r\nsecond"s, "\r\n\xFF\0\xFF\xFF\r\n"s}) {
    pty.Send(piece);
    const std::size_t wanted = data.size() + piece.size();
    EXPECT_TRUE(RunUntil(loop, [&] { return data.size() >= wanted; }));
  }
  EXPECT_EQ(data, "first line\r\nsecond\r\n\xFF\0\xFF\xFF\r\n"s);
  EXPECT_EQ(events, Events(events.size(), kPortDataReceived));

  pty.Send("late");
  std::string waiting;
  for (int tries = 0; waiting.size() < 4 && tries < 2000; ++tries) {
    poll(nullptr, 0, 1);
    waiting += port.ReadAll();
  }
  EXPECT_EQ(waiting, "late") << "what the device holds is taken without the loop";
}

TEST_F(TermiosPortTest, KeepsWhatNobodyTakesWithinItsLimit) {
  OpenPort();
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

TEST_F(TermiosPortTest, VanishedDeviceIsOneEventAndNoSpin) {
  OpenPort();
  port.SetEventHandler([this](int code) {
    events.push_back(code);
    EXPECT_TRUE(port.IsOpen());
    EXPECT_EQ(port.Write("\x1B").code(), EIO);
    loop.Poll();
  });
  pty.HangUp();
  EXPECT_TRUE(RunUntil(loop, [&] { return !port.IsOpen(); }));
  EXPECT_EQ(port.Write("\x1B").code(), EBADF);
  EXPECT_LE(YieldsIn20Milliseconds(loop), 2);
  EXPECT_EQ(events, Events{kPortEndOfInput});
  EXPECT_EQ(port.Open().text(), pty.path() + " is not there: plug the adapter in or choose another port");
}

TEST_F(TermiosPortTest, HandlerMayReopenOnAnotherDevice) {
  OpenPort();
  const PtyPair other;
  port.SetEventHandler([&](int code) {
    data += port.ReadAll();
    if (code != kPortEndOfInput) return;
    port.Close();
    EXPECT_TRUE(port.SetDevice(other.path()).ok() && port.Open().ok());
    other.Send("back");
  });
  pty.HangUp();
  EXPECT_TRUE(RunUntil(loop, [&] { return data == "back"; }));
}

TEST_F(TermiosPortTest, WaitInsideTheHandlerGetsItsReply) {
  OpenPort();
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

TEST_F(TermiosPortTest, WritesInOrderBeyondWhatTheDeviceTakes) {
  OpenPort();
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

TEST_F(TermiosPortTest, StuckOutputIsReportedAndThrownAway) {
  OpenPort();
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

TEST_F(TermiosPortTest, OneProgramAtATime) {
  OpenPort();
  TermiosPort second(loop, loop);
  ASSERT_TRUE(second.SetDevice(pty.path()).ok());
  EXPECT_EQ(second.Open().text(),
            pty.path() + " is in use by another program: close that program or choose another port");
  EXPECT_FALSE(port.SetSettings("19200,N,8,1").ok());
  EXPECT_FALSE(port.Open().ok());
  port.Close();
  ASSERT_TRUE(second.SetSettings("1234567,E,7,2").ok());
  EXPECT_TRUE(second.Open().ok());
}

TEST_F(TermiosPortTest, RefusalsSayWhatToDo) {
  const std::string no_port = " is not a serial port: choose another port";
  for (const auto& [device, text] : std::vector<std::pair<std::string, std::string>>{
           {"/dev/ttyUSB999", "/dev/ttyUSB999 is not there: plug the adapter in or choose another port"},
           {"/dev/null", "/dev/null" + no_port},
           {"/", "/" + no_port}}) {
    ASSERT_TRUE(port.SetDevice(device).ok());
    EXPECT_EQ(port.Open().text(), text);
    EXPECT_FALSE(port.IsOpen());
  }
  EXPECT_EQ(port.SetDevice("").text(), "no device is set for this port: choose a device or another port");
  EXPECT_EQ(port.SetSettings("fast").text(), "\"fast\" is no line setting: write it like 9600,N,8,1");
}

TEST_F(TermiosPortTest, MissingRightNamesTheGroupThatGivesIt) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give a device to another group";
  constexpr gid_t kSomeGroup = 1;
  ASSERT_EQ(chown(pty.path().c_str(), 0, kSomeGroup), 0);
  ASSERT_EQ(chmod(pty.path().c_str(), 0660), 0);
  ASSERT_TRUE(port.SetDevice(pty.path()).ok());
  ASSERT_EQ(setgroups(0, nullptr), 0);
  ASSERT_EQ(setegid(65534), 0);
  ASSERT_EQ(seteuid(65534), 0);
  const std::string text = port.Open().text();
  ASSERT_EQ(seteuid(0), 0);
  ASSERT_EQ(setegid(0), 0);
  EXPECT_EQ(text, "no permission to use " + pty.path() + ": add yourself to the group " +
                      getgrgid(kSomeGroup)->gr_name + " and log in again");
}

TEST_F(TermiosPortTest, LineEventsComeAfterTheDataInOrder) {
  struct Row {
    const char* name;
    const char* settings;
    std::optional<LineCounters> before, after;
    std::string raw, text;
    Events events;
  };
  constexpr const char* kPlain = "9600,N,8,1";
  const LineCounters none;
  const LineCounters busy{.cts = 4, .framing = 7, .breaks = 2};
  const LineCounters all{1, 1, 1, 1, 1, 1, 1, 1, 1};
  for (const Row& row :
       std::vector<Row>{{"old counts mean nothing", kPlain, busy, busy, "a", "a~", {2}},
                        {"framing", kPlain, none, LineCounters{.framing = 3}, "a\xFF\0Fb"s, "a?b~", {2, 1004}},
                        {"counters beat marks", kPlain, none, LineCounters{.parity = 1}, "\xFF\0F"s, "?~", {2, 1009}},
                        {"break", kPlain, none, LineCounters{.breaks = 1}, "\xFF\0\0"s, "~", {2, 1001}},
                        {"everything", kPlain, none, all, "a", "a~", {2, 1004, 1009, 1006, 1008, 1001, 3, 4, 5, 6}},
                        {"line change without input", kPlain, none, LineCounters{.dsr = 1, .ring = 2}, "", "", {4, 6}},
                        {"mark without counters", kPlain, {}, {}, "a\xFF\0F\xFF\0\0b"s, "a?b~", {2, 1004, 1001}},
                        {"mark with parity", "9600,E,7,1", {}, {}, "\xFF\0F"s, "?~", {2, 1009}}}) {
    script = std::make_shared<Script>();
    script->counters = row.before;
    events.clear();
    data.clear();
    OpenPort(row.settings);
    script->counters = row.after;
    script->raw = row.raw;
    if (!row.raw.empty()) pty.Send("~");
    EXPECT_TRUE(RunUntil(loop, [&] { return events.size() >= row.events.size(); })) << row.name;
    loop.Poll();
    EXPECT_EQ(events, row.events) << row.name;
    EXPECT_EQ(data, row.text) << row.name;
    port.Close();
  }
}

TEST_F(TermiosPortTest, LastDataComesBeforeTheEnd) {
  script = std::make_shared<Script>();
  OpenPort();
  script->raw = "last";
  pty.HangUp();
  EXPECT_TRUE(RunUntil(loop, [&] { return !port.IsOpen(); }));
  EXPECT_EQ(events, (Events{kPortDataReceived, kPortEndOfInput}));
  EXPECT_EQ(data, "last");
}

TEST_F(TermiosPortTest, ClosingInTheHandlerDropsTheRest) {
  script = std::make_shared<Script>();
  script->counters = LineCounters{};
  OpenPort();
  port.SetEventHandler([this](int code) {
    events.push_back(code);
    port.Close();
  });
  script->counters = LineCounters{.framing = 1, .overrun = 1};
  EXPECT_TRUE(RunUntil(loop, [&] { return !port.IsOpen(); }));
  loop.Poll();
  EXPECT_EQ(events, Events{kPortFraming});
}

TEST_F(TermiosPortTest, StuckDeviceHoldsUpNeitherCloseNorTheNextOpen) {
  const auto stuck = std::make_shared<Script>();
  script = stuck;
  OpenPort();
  stuck->pending_output = 5;
  stuck->may_close = false;
  port.Close();
  EXPECT_FALSE(port.IsOpen());
  script = nullptr;
  OpenPort();
  stuck->may_close = true;
  stuck->may_close.notify_all();
}

}  // namespace
}  // namespace corvane
