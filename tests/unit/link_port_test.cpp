#include "link/port_link.h"

#include <gtest/gtest.h>

#include "unit/link_world.h"

namespace corvane::test {
namespace {

class PortLinkTest : public LinkTest {
 protected:
  PortLinkTest() {
    port_link.line_received = [this] { lines.push_back(link.ReplyLine); };
  }
};

TEST(PortDevicesTest, GivesTheDeviceOfANumber) {
  PortDevices devices;
  devices.Assign(3, "/dev/serial/by-id/radio");
  devices.Assign(5, "/dev/x");
  devices.Assign(5, "");
  const struct {
    int number;
    const char* device;
  } rows[] = {{1, "/dev/ttyS0"},
              {3, "/dev/serial/by-id/radio"},
              {4, "/dev/ttyS3"},
              {5, "/dev/ttyUSB0"},
              {20, "/dev/ttyUSB15"},
              {21, "/dev/ttyACM0"},
              {36, "/dev/ttyACM15"},
              {37, ""},
              {0, ""},
              {-1, ""}};
  for (const auto& row : rows) EXPECT_EQ(devices.DeviceOf(row.number), row.device) << row.number;
}

TEST_F(PortLinkTest, OpensThePortOfASelector) {
  link.ReceiveBuffer = "old";
  link.ReplyLine = "old";
  EXPECT_TRUE(port_link.OpenPort(0));
  EXPECT_TRUE(port_link.IsOpen());
  EXPECT_EQ(port.device, "/dev/ttyS2");
  EXPECT_EQ(port.settings, "9600,N,8,1");
  EXPECT_EQ(link.ReceiveBuffer + link.ReplyLine, "");
  EXPECT_TRUE(port_link.OpenPort(0)) << "an open port is closed and opened again";
  EXPECT_EQ(port.opens, 2);
  port_link.ClosePort();
  EXPECT_TRUE(port_link.OpenPort(99));
  EXPECT_FALSE(port_link.IsOpen());
  EXPECT_EQ(port_link.LastIndex(), 99);
}

TEST_F(PortLinkTest, SaysWhyThePortDidNotOpen) {
  const struct {
    const char* name;
    std::function<void()> fault;
    const char* step;
    const char* reason;
  } rows[] = {
      {"device missing",
       [this] {
         port.open_result = {2, "/dev/ttyS2 is not there"};
       },
       ".PortOpen = True", "/dev/ttyS2 is not there"},
      {"settings",
       [this] {
         port.settings_result = {22, "no line settings"};
       },
       ".Settings = 9600,N,8,1", "no line settings"},
      {"no absolute device", [this] { devices.Assign(3, "ttyUSB0"); }, ".CommPort = Get_Value(Cmb_Port(ai_Index))",
       "must begin with \"/\""},
      {"no device", [this] { form.Cmb_Port[0].Add("40", 40), form.Cmb_Port[0].SetCurrent(1); },
       ".CommPort = Get_Value(Cmb_Port(ai_Index))", "COM40 stands for no device"},
      {"nothing chosen", [this] { form.Cmb_Port[0].SetCurrent(-1); }, ".CommPort = Get_Value(Cmb_Port(ai_Index))",
       "No port is chosen"},
  };
  for (const auto& row : rows) {
    port.open_result = port.settings_result = Status::Ok();
    devices.Assign(3, "");
    row.fault();
    EXPECT_FALSE(port_link.OpenPort(0)) << row.name;
    EXPECT_FALSE(port_link.IsOpen()) << row.name;
    EXPECT_TRUE(Logged(std::string("A-error: OpenPort: ") + row.step + " [")) << row.name;
    EXPECT_NE(form.Lbl_Status.text().find(row.reason), std::string::npos) << form.Lbl_Status.text();
  }
}

TEST_F(PortLinkTest, CutsLines) {
  using Texts = std::vector<std::string>;
  const struct {
    const char* name;
    Texts pieces;
    Texts lines;
    const char* left;
  } rows[] = {
      {"two pieces", {"2010/3", "/12\r\n"}, {"2010/3/12"}, "\n"},
      {"line feed of the line before", {"one\r\n", "two\r"}, {"one", "two"}, ""},
      {"two lines in one event", {"one\r\ntwo\r\nthr"}, {"one", "two"}, "\nthr"},
      {"control characters only", {"\n\t\x02\r"}, {""}, ""},
      {"control characters inside stay",
       {"\x02"
        "a\tb\r"},
       {"a\tb"},
       ""},
      {"single characters", {"a", "b", "\r", "c", "\r"}, {"ab", "c"}, ""},
      {"bytes above 127",
       {"\xff"
        "a\r"},
       {"\xff"
        "a"},
       ""},
  };
  for (const auto& row : rows) {
    ASSERT_TRUE(port_link.OpenPort(0));
    lines.clear();
    for (const std::string& piece : row.pieces) port.ReceiveNow(piece);
    EXPECT_EQ(lines, row.lines) << row.name;
    EXPECT_EQ(link.ReceiveBuffer, row.left) << row.name;
  }
}

TEST_F(PortLinkTest, ShowsWhatArrives) {
  ASSERT_TRUE(port_link.OpenPort(0));
  form.Chk_ShowReply.SetTicked(true);
  port.ReceiveNow("ab\rc");
  EXPECT_EQ(form.Lbl_Reply.text(), "ab[13]c");
  EXPECT_TRUE(Logged("R>ab[13]c"));
  EXPECT_TRUE(Logged("R>ab\r\n"));
}

TEST_F(PortLinkTest, NestedEventsOnlyAppend) {
  ASSERT_TRUE(port_link.OpenPort(0));
  port_link.line_received = [this] {
    lines.push_back(link.ReplyLine + "(");
    if (lines.size() == 1) port.ReceiveNow("three\rfour");
    lines.push_back(")");
  };
  port.ReceiveNow("one\rtwo\r");
  EXPECT_EQ(lines, (std::vector<std::string>{"one(", ")", "two(", ")", "three(", ")"}));
  EXPECT_EQ(link.ReceiveBuffer, "four");
}

TEST_F(PortLinkTest, ThePortMayGoWhileLinesAreCut) {
  ASSERT_TRUE(port_link.OpenPort(0));
  port_link.line_received = [this] {
    lines.push_back(link.ReplyLine);
    port_link.ClearBeforeCommand("nested");
    port.Event(kPortEndOfInput);
    port_link.ClosePort();
  };
  port.ReceiveNow("one\rtwo\rthree");
  EXPECT_EQ(lines, std::vector<std::string>{"one"});
  EXPECT_EQ(link.ReceiveBuffer, "");
}

TEST_F(PortLinkTest, HandlesEventCodes) {
  const struct {
    int code;
    bool fails;
    int overruns;
    const char* logged;
  } rows[] = {
      {kPortCtsChanged, false, 0, "R>CommsError:Change in CTS"},
      {1, false, 0, "R>CommsError:SThreshold reached"},
      {kPortBreak, false, 0, "R>Break received"},
      {kPortOverrun, false, 1, "A-error: Overrun - data lost Buffer size:4"},
      {kPortFraming, true, 0, "A-error: Framing error Buffer size:4"},
      {kPortParity, true, 0, "A-error: Parity Error Buffer size:4"},
      {kPortEndOfInput, true, 0, "A-error: EOF in input Buffer size:4"},
      {kPortTransmitFull, true, 0, "A-error: Transmit buffer full Buffer size:4"},
      {kPortUnexpected, true, 0, "A-error: Unexpected error retrieving DCB Buffer size:4"},
      {4711, false, 0, ""},
  };
  for (const auto& row : rows) {
    Ask(kDownload);
    link.HalvexError = false;
    link.OverunCount = 0;
    link.OverunFlag = false;
    const int escapes = port.escapes;
    port.ReceiveNow("half");
    port.Event(row.code);
    EXPECT_TRUE(Logged(row.logged)) << row.code;
    EXPECT_EQ(link.HalvexError, row.fails) << row.code;
    EXPECT_EQ(link.OverunCount, row.overruns) << row.code;
    EXPECT_EQ(link.OverunFlag, row.overruns > 0) << row.code;
    EXPECT_EQ(port.escapes - escapes, row.fails ? 1 : 0) << row.code;
    EXPECT_EQ(link.Aborted, row.fails) << row.code;
    EXPECT_EQ(link.ReceiveBuffer, row.fails ? "" : "half") << row.code;
  }
  EXPECT_EQ(link.ResultCode, 9);
  EXPECT_EQ(link.ResultTextOf(9), "Unexpected error retrieving DCB");
  EXPECT_TRUE(Logged("SwitchOnAllTrace because: CommsError: Framing error"));
}

TEST_F(PortLinkTest, ALineThatNeverEndsIsReportedOnce) {
  Ask(kDownload);
  for (int piece = 0; piece < 1000; ++piece) port.ReceiveNow(std::string(1000, 'x'));
  EXPECT_EQ(TimesLogged("A-error: Receive buffer overflow"), 1);
  EXPECT_EQ(port.escapes, 1);
  EXPECT_EQ(link.ResultTextOf(link.ResultCode), "Receive buffer overflow");
  EXPECT_LE(link.ReceiveBuffer.size(), PortLink::kLargestBuffer);
  port.ReceiveNow("tail\rgood\r");
  EXPECT_EQ(lines, std::vector<std::string>{"good"}) << "the rest of the long line is not a line";
  std::string many;
  for (int line = 0; line < 50000; ++line) many += "line\r\n";
  port.ReceiveNow(many);
  EXPECT_EQ(lines.size(), 50001U) << "many whole lines are no overflow";
}

TEST_F(PortLinkTest, ClearsBeforeACommand) {
  Ask(kDownload);
  link.Timeout = link.HalvexError = true;
  form.Lbl_Tries[0].SetText("2");
  bars.Download.Initialise(10);
  bars.Download.SetValue(5);
  port.ReceiveNow("partial");
  port_link.ClearBeforeCommand("here");
  EXPECT_FALSE(link.Timeout || link.HalvexError);
  EXPECT_EQ(form.lbl_CountDown.text() + form.Lbl_Tries[0].text(), "");
  EXPECT_FALSE(form.Lbl_Tries[1].visible());
  EXPECT_FALSE(form.Cmd_Close.enabled());
  EXPECT_EQ(form.Bar_Download.value(), 0);
  EXPECT_TRUE(Logged("ClearBeforeCommand:here"));
  EXPECT_EQ(link.ReceiveBuffer, "partial") << "only opening and errors empty the buffer";
  loop.Advance(100000);
  EXPECT_FALSE(link.Timeout) << "the count-down is off";
}

}  // namespace
}  // namespace corvane::test
