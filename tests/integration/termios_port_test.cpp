#include "serial/termios_port.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

#include "posix/posix_loop.h"
#include "support/pty_pair.h"

namespace corvane {
namespace {

using std::string_literals::operator""s;
using Events = std::vector<int>;
constexpr SerialTimes kTimes{10, 200, 20};

TEST(LineSettings, TakesOnlyWellFormedTexts) {
  for (const char* good : {"1,e,7,2", "4000000,O,5,1.5", "9600,S,6,1"}) EXPECT_TRUE(ParseLineSettings(good)) << good;
  for (const char* bad : {"", "9600,N,8", "9600,N,8,1,", " 9600,N,8,1", "0,N,8,1", "4000001,N,8,1", "99999999999,N,8,1",
                          "9600,X,8,1", "9600,,8,1", "9600,NE,8,1", "9600,N,4,1", "9600,N,9,1", "9600,N,8,1.5"})
    EXPECT_FALSE(ParseLineSettings(bad)) << bad;
}

TEST(ParmrkDecoder, ReadsMarksInEverySplit) {
  const std::string raw = "a\0\xFF\xFF\xFF\0F\xFF\0\0\xFF\xFF\0\xFF\0\xFFz\xFFy"s;
  for (std::size_t piece = 1; piece <= raw.size(); ++piece) {
    ParmrkDecoder decoder;
    std::string text;
    int breaks = 0;
    for (std::size_t at = 0; at < raw.size(); at += piece) breaks += decoder.Decode(raw.substr(at, piece), text).breaks;
    EXPECT_EQ(text + std::to_string(breaks), "a\0\xFF?\xFF\0?z\xFFy1"s) << piece;
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

std::string NumberedLines(std::size_t size) {
  std::string text;
  while (text.size() < size) text += "line " + std::to_string(text.size()) + "\r\n";
  return text;
}

/// A port on a pseudo-terminal that records its events and its data.
class TermiosPortTest : public testing::Test {
 protected:
  TermiosPortTest() {
    RecordAnd([] {});
  }
  void OpenPort() {
    ASSERT_TRUE(port.SetDevice(pty.path()).ok() && port.SetSettings("9600,N,8,1").ok() && port.SetNoHandshaking().ok());
    ASSERT_EQ(port.Open().text(), "");
  }
  bool WaitUntil(const std::function<bool()>& done) { return RunUntil(loop, done); }
  void RecordAnd(const std::function<void()>& also) {
    port.SetEventHandler([this, also](int code) {
      events.push_back(code);
      data += port.ReadAll();
      also();
    });
  }
  Status OpenScripted(const std::string& path, const LineSettings& settings, std::unique_ptr<SerialDevice>& device) {
    Status status = OpenTtyDevice(path, settings, device);
    if (status.ok()) device = std::make_unique<ScriptedDevice>(script, std::move(device));
    return status;
  }

  PtyPair pty;
  PosixLoop loop;
  std::shared_ptr<Script> script = std::make_shared<Script>();
  TermiosPort port{loop, loop, std::bind_front(&TermiosPortTest::OpenScripted, this), kTimes};
  Events events;
  std::string data;
};

TEST_F(TermiosPortTest, DeliversWhatArrivesAfterOpeningEvenInsideTheHandler) {
  pty.Send("stale");
  OpenPort();
  const std::string reply = "\r\n\xFF\0\xFF\xFF\r\n"s;
  bool replied = false;
  RecordAnd([&] {
    if (data != "header") return;
    pty.Send(reply);
    replied = WaitUntil([&] { return data.size() >= 6 + reply.size(); });
  });
  pty.Send("header");
  EXPECT_TRUE(WaitUntil([&] { return replied; }));
  EXPECT_EQ(data, "header" + reply);
}

TEST_F(TermiosPortTest, KeepsWhatNobodyTakesWithinItsLimit) {
  OpenPort();
  port.SetEventHandler([](int) {});
  const std::string sent = NumberedLines(200'000);
  std::size_t at = 0;
  for (int refusals = 0; at < sent.size(); loop.Poll()) {
    const ssize_t taken = write(pty.far_end(), sent.data() + at, std::min<std::size_t>(sent.size() - at, 1000));
    at += static_cast<std::size_t>(std::max<ssize_t>(taken, 0));
    refusals = taken > 0 ? 0 : refusals + 1;
    if (refusals < 3) continue;
    EXPECT_LE(YieldsIn20Milliseconds(loop), 3) << "what is full is not watched";
    const std::string waiting = port.ReadAll();
    EXPECT_LE(waiting.size(), 70'000U);
    data += waiting;
  }
  EXPECT_TRUE(WaitUntil([&] { return (data += port.ReadAll()).size() >= sent.size(); }));
  EXPECT_EQ(data, sent);
}

TEST_F(TermiosPortTest, VanishedDeviceIsOneEventAfterTheLastDataAndNoSpin) {
  OpenPort();
  RecordAnd([this] {
    EXPECT_TRUE(port.IsOpen());
    EXPECT_EQ(port.Write("\x1B").code(), EIO);
    loop.Poll();
  });
  script->raw = "last";
  pty.HangUp();
  EXPECT_TRUE(WaitUntil([&] { return !port.IsOpen(); }));
  EXPECT_EQ(port.Write("\x1B").code(), EBADF);
  EXPECT_LE(YieldsIn20Milliseconds(loop), 2);
  EXPECT_EQ(events, (Events{kPortDataReceived, kPortEndOfInput}));
  EXPECT_EQ(data, "last");
}

TEST_F(TermiosPortTest, StuckOutputIsReportedAndThrownAwayThenWritingGoesOnInOrder) {
  OpenPort();
  ASSERT_TRUE(port.Write(std::string(60'000, 'x')).ok());
  EXPECT_EQ(port.Write(std::string(60'000, 'y')).code(), ENOBUFS);
  EXPECT_TRUE(WaitUntil([&] { return !events.empty(); }));
  static_cast<void>(pty.Take());
  const std::string sent = NumberedLines(60'000);
  for (std::size_t at = 0; at < sent.size(); at += 7'000) ASSERT_TRUE(port.Write(sent.substr(at, 7'000)).ok());
  std::string arrived;
  loop.WatchRead(pty.far_end(), [&] { arrived += pty.Take(); });
  EXPECT_TRUE(WaitUntil([&] { return arrived.ends_with(sent); }));
  EXPECT_LT(arrived.size(), 30'000 + sent.size());
  EXPECT_EQ(events, Events{kPortTransmitFull});
}

TEST_F(TermiosPortTest, RefusalsSayWhatToDo) {
  OpenPort();
  TermiosPort second(loop, loop);
  const std::pair<std::string, std::string> kRows[] = {
      {"", "no device is set for this port: choose a device or another port"},
      {"/dev/ttyUSB999", "/dev/ttyUSB999 is not there: plug the adapter in or choose another port"},
      {"/dev/null", "/dev/null is not a serial port: choose another port"},
      {pty.path(), pty.path() + " is in use by another program: close that program or choose another port"}};
  for (const auto& [device, text] : kRows) {
    const Status set = second.SetDevice(device);
    EXPECT_EQ((set.ok() ? second.Open() : set).text(), text);
  }
  EXPECT_EQ(second.SetSettings("fast").text(), "\"fast\" is no line setting: write it like 9600,N,8,1");
  port.Close();
  EXPECT_TRUE(second.SetSettings("1234567,E,7,2").ok() && second.Open().ok());
}

TEST_F(TermiosPortTest, LineEventsComeAfterTheDataInOrder) {
  using Counters = std::optional<LineCounters>;
  const Counters none = LineCounters{}, all{{1, 1, 1, 1, 1, 1, 1, 1, 1}}, busy{{.cts = 4, .framing = 7, .breaks = 2}};
  const std::tuple<const char*, Counters, Counters, std::string, std::string, Events> kRows[] = {
      {"old counts mean nothing", busy, busy, "a", "a~", {2}},
      {"counters beat marks", none, LineCounters{.parity = 1}, "\xFF\0F"s, "?~", {2, 1009}},
      {"everything", none, all, "a", "a~", {2, 1004, 1009, 1006, 1008, 1001, 3, 4, 5, 6}},
      {"line change without input", none, LineCounters{.dsr = 1, .ring = 2}, "", "", {4, 6}},
      {"mark without counters", {}, {}, "a\xFF\0F\xFF\0\0b"s, "a?b~", {2, 1004, 1001}}};
  for (const auto& [name, before, after, raw, text, expected] : kRows) {
    script->counters = before;
    events.clear();
    data.clear();
    OpenPort();
    script->counters = after;
    script->raw = raw;
    if (!raw.empty()) pty.Send("~");
    WaitUntil([&, wanted = expected.size()] { return events.size() >= wanted; });
    loop.Poll();
    EXPECT_EQ(events, expected) << name;
    EXPECT_EQ(data, text) << name;
    port.Close();
  }
}

TEST_F(TermiosPortTest, ClosingInTheHandlerDropsTheRest) {
  script->counters = LineCounters{};
  OpenPort();
  RecordAnd([this] { port.Close(); });
  script->counters = LineCounters{.framing = 1, .overrun = 1};
  EXPECT_TRUE(WaitUntil([&] { return !port.IsOpen(); }));
  loop.Poll();
  EXPECT_EQ(events, Events{kPortFraming});
}

TEST_F(TermiosPortTest, StuckDeviceHoldsUpNeitherCloseNorTheNextOpen) {
  OpenPort();
  const auto stuck = std::exchange(script, std::make_shared<Script>());
  stuck->pending_output = 5;
  stuck->may_close = false;
  constexpr std::int64_t kSlowComputer = 500;
  const std::int64_t begin = loop.MonotonicMilliseconds();
  port.Close();
  OpenPort();
  EXPECT_LT(loop.MonotonicMilliseconds() - begin, kTimes.close_wait + kSlowComputer);
  stuck->may_close = true;
  stuck->may_close.notify_all();
}

}  // namespace
}  // namespace corvane
