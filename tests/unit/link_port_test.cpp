#include "link/port_link.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "link/port_choices.h"
#include "unit/link_world.h"

namespace corvane::test {
namespace {

class PortLinkTest : public LinkTest {
 protected:
  PortLinkTest() {
    port_link.line_received = [this] { lines.push_back(link.ReplyLine); };
  }
  using Texts = std::vector<std::string>;
};

TEST(PortDevicesTest, GivesTheDeviceOfANumber) {
  PortDevices devices;
  devices.Assign(3, "/dev/serial/by-id/radio");
  devices.Assign(5, "/dev/x");
  devices.Assign(5, "");
  EXPECT_EQ(devices.DeviceOf(3), "/dev/serial/by-id/radio");
  const std::pair<int, const char*> rows[] = {{1, "/dev/ttyS0"},     {4, "/dev/ttyS3"},    {5, "/dev/ttyUSB0"},
                                              {20, "/dev/ttyUSB15"}, {21, "/dev/ttyACM0"}, {36, "/dev/ttyACM15"}};
  for (const auto& [number, device] : rows) EXPECT_EQ(devices.DeviceOf(number), device) << number;
  for (const int number : {37, 0, -1}) EXPECT_EQ(devices.DeviceOf(number), "") << number;
}

TEST_F(PortLinkTest, PortNumbersAreShownWithTheirDevices) {
  PortChoices choices(devices, port);
  const std::string radio = "/dev/serial/by-id/radio";
  const std::string lengthy = "/dev/serial/by-id/" + std::string(120, 'x');
  port.devices_there = {{radio, "/dev/ttyUSB0", ""},
                        {lengthy, "/dev/ttyUSB1", ""},
                        {"/dev/ttyS0", "/dev/ttyS0", "no permission to use /dev/ttyS0"}};
  EXPECT_TRUE(choices.Assign(40, " " + radio + " ").ok());
  for (const char* refused : {"ttyUSB0", "/dev/tty\nUSB0", lengthy.c_str()}) {
    EXPECT_FALSE(choices.Assign(3, refused).ok()) << refused;
  }
  EXPECT_FALSE(choices.Assign(51, radio).ok());

  const std::tuple<int, bool, const char*> rows[] = {
      {1, false, "COM1   /dev/ttyS0   (no permission)"}, {3, false, "COM3   /dev/ttyS2   (not there)"},
      {5, false, "COM5   /dev/ttyUSB0   (there)"},       {40, true, "COM40   /dev/serial/by-id/radio   (there)"},
      {50, false, "COM50   no device assigned"},
  };
  const std::vector<PortChoice> all = choices.LookAtAll();
  ASSERT_EQ(all.size(), 50U);
  for (const auto& [number, own, text] : rows) {
    const PortChoice& choice = all[static_cast<std::size_t>(number - 1)];
    EXPECT_EQ(choice.text, text);
    EXPECT_EQ(choice.own, own) << text;
    EXPECT_EQ(choice.problem.empty(), choice.presence == "there") << text;
  }
  Texts found;
  for (const DeviceChoice& choice : choices.Devices()) found.push_back(choice.path + "|" + choice.ports);
  EXPECT_EQ(found, (Texts{radio + "|COM5, COM40", "/dev/ttyUSB1|COM6", "/dev/ttyS0|COM1"}));
  EXPECT_TRUE(choices.Assign(40, "").ok());
  EXPECT_EQ(choices.Look(40).device, "");
}

TEST_F(PortLinkTest, OpensThePortOfASelectorWithEmptyBuffers) {
  link.ReceiveBuffer = link.ReplyLine = "old";
  EXPECT_TRUE(port_link.OpenPort(0));
  EXPECT_EQ(port.device + " " + port.settings, "/dev/ttyS2 9600,N,8,1");
  EXPECT_EQ(link.ReceiveBuffer + link.ReplyLine, "");
  EXPECT_TRUE(port_link.OpenPort(0)) << "an open port is closed and opened again";
  EXPECT_EQ(port.opens, 2);
}

TEST_F(PortLinkTest, SaysWhyThePortDidNotOpen) {
  form.Cmb_Port[0].Add("40", 40);
  const std::tuple<std::function<void()>, const char*, const char*> rows[] = {
      {[this] { port.open_result = Status(2, "not there"); }, ".PortOpen = True", "not there"},
      {[this] { port.settings_result = Status(22, "bad settings"); }, ".Settings = 9600,N,8,1", "bad settings"},
      {[this] { devices.Assign(3, "ttyUSB0"); }, ".CommPort = Get_Value(Cmb_Port(ai_Index))", "must begin with \"/\""},
      {[this] { form.Cmb_Port[0].SetCurrent(1); }, ".CommPort = ", "COM40 stands for no device"},
      {[this] { form.Cmb_Port[0].SetCurrent(-1); }, ".CommPort = ", "No port is chosen"},
  };
  for (const auto& [fault, step, reason] : rows) {
    fault();
    EXPECT_FALSE(port_link.OpenPort(0) || port_link.IsOpen()) << reason;
    EXPECT_TRUE(Logged(std::string("A-error: OpenPort: ") + step)) << reason;
    EXPECT_NE(form.Lbl_Status.text().find(reason), std::string::npos) << form.Lbl_Status.text();
  }
}

TEST_F(PortLinkTest, CutsLines) {
  const std::tuple<const char*, Texts, Texts, const char*> rows[] = {
      {"two pieces", {"2010/3", "/12\r\n"}, {"2010/3/12"}, "\n"},
      {"line feed of the line before", {"one\r\n", "two\r"}, {"one", "two"}, ""},
      {"two lines in one event", {"one\r\ntwo\r\nthr"}, {"one", "two"}, "\nthr"},
      {"control characters only", {"\n\t\002\r"}, {""}, ""},
      {"control characters inside stay", {"\002a\tb\r"}, {"a\tb"}, ""},
      {"single characters", {"a", "b", "\r", "c", "\r"}, {"ab", "c"}, ""},
      {"bytes above 127", {"\377a\r"}, {"\377a"}, ""},
  };
  form.Chk_ShowReply.SetTicked(true);
  ASSERT_TRUE(port_link.OpenPort(0));
  for (const auto& [name, pieces, cut, left] : rows) {
    lines.clear();
    link.ReceiveBuffer.clear();
    for (const std::string& piece : pieces) port.ReceiveNow(piece);
    EXPECT_EQ(lines, cut) << name;
    EXPECT_EQ(link.ReceiveBuffer, left) << name;
  }
  EXPECT_EQ(form.Lbl_Reply.text(), "[255]a[13]");
  EXPECT_TRUE(Logged("R>two\r\n"));
}

TEST_F(PortLinkTest, NestedEventsOnlyAppend) {
  ASSERT_TRUE(port_link.OpenPort(0));
  port_link.line_received = [this] {
    lines.push_back(link.ReplyLine + "(");
    if (lines.size() == 1) port.ReceiveNow("three\rfour");
    lines.push_back(")");
  };
  port.ReceiveNow("one\rtwo\r");
  EXPECT_EQ(lines, (Texts{"one(", ")", "two(", ")", "three(", ")"}));
  EXPECT_EQ(link.ReceiveBuffer, "four");

  lines.clear();
  port_link.line_received = [] { throw std::runtime_error("the line cannot be taken"); };
  EXPECT_THROW(port.ReceiveNow("\rfive\rsix"), std::runtime_error);
  port_link.line_received = [this] { lines.push_back(link.ReplyLine); };
  port.ReceiveNow("\rseven\r");
  EXPECT_EQ(lines, (Texts{"five", "six", "seven"})) << "an exception costs the line that it was thrown for, no other";
}

TEST_F(PortLinkTest, ThePortMayGoWhileLinesAreCut) {
  ASSERT_TRUE(port_link.OpenPort(0));
  port_link.line_received = [this] {
    lines.push_back(link.ReplyLine);
    port.Event(kPortEndOfInput);
    port_link.ClosePort();
  };
  port.ReceiveNow("one\rtwo\rthree");
  EXPECT_EQ(lines, Texts{"one"});
  EXPECT_EQ(link.ReceiveBuffer, "");
}

TEST_F(PortLinkTest, HandlesEventCodes) {
  const std::tuple<int, bool, int, const char*> rows[] = {
      {kPortCtsChanged, false, 0, "R>CommsError:Change in CTS"},
      {kPortBreak, false, 0, "R>Break received"},
      {kPortOverrun, false, 1, "A-error: Overrun - data lost Buffer size:4"},
      {kPortFraming, true, 1, "A-error: Framing error Buffer size:4"},
      {kPortParity, true, 1, "A-error: Parity Error Buffer size:4"},
      {kPortEndOfInput, true, 1, "A-error: EOF in input Buffer size:4"},
  };
  for (const auto& [code, fails, overruns, logged] : rows) {
    Ask(kDownload);
    port.escapes = 0;
    link.HalvexError = false;
    port.ReceiveNow("half");
    port.Event(code);
    EXPECT_TRUE(Logged(logged)) << code;
    EXPECT_EQ(link.HalvexError, fails) << code;
    EXPECT_EQ(link.Aborted, fails) << code;
    EXPECT_EQ(link.OverunCount, overruns) << code;
    EXPECT_EQ(port.escapes, fails ? 1 : 0) << code;
    EXPECT_EQ(link.ReceiveBuffer, fails ? "" : "half") << code;
  }
  EXPECT_EQ(link.ResultTextOf(link.ResultCode), "EOF in input");
  EXPECT_TRUE(Logged("SwitchOnAllTrace because: CommsError: Framing error"));
}

TEST_F(PortLinkTest, ALineThatNeverEndsIsReportedOnce) {
  Ask(kDownload);
  for (int piece = 0; piece < 1000; ++piece) port.ReceiveNow(std::string(1000, 'x'));
  EXPECT_EQ(TimesLogged("A-error: Receive buffer overflow"), 1);
  EXPECT_EQ(port.escapes, 1);
  EXPECT_LE(link.ReceiveBuffer.size(), PortLink::kLargestBuffer);
  port.ReceiveNow("tail\rgood\r");
  EXPECT_EQ(lines, Texts{"good"}) << "the rest of the long line is not a line";
  std::string many;
  for (int line = 0; line < 50000; ++line) many += "line\r\n";
  port.ReceiveNow(many);
  EXPECT_EQ(lines.size(), 50001U) << "many whole lines are no overflow";
}

TEST_F(PortLinkTest, ClearsBeforeACommand) {
  Ask(kDownload);
  link.Timeout = link.HalvexError = true;
  port.ReceiveNow("partial");
  port_link.ClearBeforeCommand("here");
  EXPECT_FALSE(link.Timeout || link.HalvexError);
  EXPECT_FALSE(form.Cmd_Close.enabled());
  EXPECT_EQ(link.ReceiveBuffer, "partial") << "only opening and errors empty the buffer";
  loop.Advance(100000);
  EXPECT_FALSE(link.Timeout) << "the count-down is off";
}

}  // namespace
}  // namespace corvane::test
