#include "link/exchange.h"

#include <gtest/gtest.h>

#include "unit/link_world.h"

namespace corvane::test {
namespace {

TEST(CommandLineTest, BuildsLines) {
  Registry registry;
  registry.Relays.Append({"Direct", 0, 0});
  registry.Relays.Append({"Hill", 4, 0});
  registry.Relays.Append({"Same ID as a unit", 7, 2});
  const auto unit = [](std::int32_t id, std::int32_t relay) {
    Unit made;
    made.ID = id;
    made.RelayID = relay;
    return made;
  };
  const struct {
    const char* name;
    Unit unit;
    std::int16_t command;
    const char* parameters;
    const char* line;
  } rows[] = {
      {"no parameters keep the blank", unit(123, 4), kGetDate, "", "00004:00123:00rt "},
      {"download", unit(123, 4), kDownload, "1003121405", "00004:00123:00rr 1003121405"},
      {"set date", unit(123, 4), kSetDate, "100312140509", "00004:00123:00WT 100312140509"},
      {"log period", unit(123, 4), kSetLogPeriod, "0F", "00004:00123:00WI 0F"},
      {"the style of the relay with the unit's own ID", unit(7, 4), kReadMemory, "", "00004:00007:03rm "},
      {"not the style of its relay", unit(123, 7), kGetDate, "", "00007:00123:00rt "},
      {"large IDs", unit(1234567, 0), kSetMode, "A", "00000:1234567:00SM A"},
      {"test base station", unit(123, 4), kTestBaseStation, "x", ""},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(BuildCommandLine(registry, row.unit, row.command, row.parameters), row.line) << row.name;
  }
}

TEST(CommandLineTest, BuildsParameters) {
  EXPECT_EQ(DownloadParameters(DateTime()), "0001010000");
  EXPECT_EQ(DownloadParameters(DateTime::FromCivil(2010, 3, 12, 14, 5)), "1003121405");
  const struct {
    const char* text;
    const char* digits;
  } rows[] = {{"00:15", "0F"}, {"1:00", "3C"}, {"15", "0F"}, {"255", "FF"},  {"256", "00"},  {"4:20", "04"},
              {"2.5", "03"},   {"-1", "FF"},   {"", "00"},   {"soon", "00"}, {"1e300", "00"}};
  for (const auto& row : rows) EXPECT_EQ(LogPeriodParameters(row.text), row.digits) << row.text;
}

class ExchangeTest : public LinkTest {};

TEST_F(ExchangeTest, SendsALineAndItsCarriageReturn) {
  Ask(kGetDate);
  EXPECT_EQ(port.written, "00000:00001:00rt \r");
  EXPECT_EQ(form.Lbl_Send.text(), "00000:00001:00rt ");
  EXPECT_TRUE(Logged("S>00000:00001:00rt "));
  exchange.SetState(kTestBaseStation);
  exchange.SendCommand("");
  EXPECT_EQ(port.written, "00000:00001:00rt \r\r");
}

TEST_F(ExchangeTest, SendsSlowlyUntilCancelled) {
  form.Chk_PauseOnSend.SetTicked(true);
  Ask(kGetDate, "12345678901234567890");
  EXPECT_EQ(port.written, "12345678901234567890\r");
  EXPECT_EQ(loop.MonotonicMilliseconds(), 200);
  loop.After(35, [this] { link.UserCancel = true; });
  Ask(kGetDate, "abcdefghij");
  exchange.WaitForChangeOfState();
  EXPECT_EQ(port.written, "12345678901234567890\rabcd");
}

TEST_F(ExchangeTest, EndsTheWait) {
  const auto every_second = [this](const std::string& text) {
    for (int second = 1; second < 1000; ++second) port.Receive(text, second * 1000);
  };
  const struct {
    const char* name;
    std::int16_t command;
    std::int64_t expected;  // milliseconds
    std::function<void()> script;
  } rows[] = {
      {"reply", kGetDate, 300, [this] { port.Receive("2010/3/12 14:05\r", 300); }},
      {"silence: the reply time-out", kGetDate, 45000, [] {}},
      {"each event restarts the count-down", kGetDate, 85000, [this] { port.Receive("half", 40000); }},
      {"echo keeps the reply time-out", kGetDate, 46000, [this] { port.Receive("00000:00001:00rt \r", 1000); }},
      {"the header brings the data time-out", kDownload, 21000,
       [this] { port.Receive(Frame("V2,1,2,1,3,x") + "\r", 1000); }},
      {"noise without a line end", kDownload, 449000 + 45000, [&] { every_second("noise"); }},
      {"lines after an abort", kDownload, 45000, [&] { every_second("no header\r"); }},
      {"a probe", kTestBaseStation, 2000, [this] { link.TestingPort = true; }},
      {"cancel", kGetDate, 500, [this] { loop.After(500, [this] { link.UserCancel = true; }); }},
      {"the program closes", kGetDate, 500, [this] { loop.After(500, [this] { flags.closing = true; }); }},
      {"error reply", kDownload, 700, [this] { port.Receive("ERROR 2\r", 700); }},
      {"hang-up", kDownload, 900, [this] { loop.After(900, [this] { port.Event(kPortEndOfInput); }); }},
  };
  for (const auto& row : rows) {
    link.UserCancel = flags.closing = link.TestingPort = false;
    download.OutputFileName = folder.Name("00001.epd");
    port_link.ClearEverything();
    const std::int64_t start = loop.MonotonicMilliseconds();
    row.script();
    Ask(row.command);
    exchange.WaitForChangeOfState();
    EXPECT_EQ(loop.MonotonicMilliseconds() - start, row.expected) << row.name;
    exchange.SetStateFinished();
    port_link.ClosePort();
    loop.Advance(1000000);
  }
}

TEST_F(ExchangeTest, TimeOutSaysSoAndStopsTheUnit) {
  Ask(kGetDate);
  exchange.WaitForChangeOfState();
  EXPECT_TRUE(link.Timeout);
  EXPECT_FALSE(link.ContinueOk());
  EXPECT_EQ(form.Lbl_Status.text(), "North field: waited 45 secs");
  EXPECT_EQ(port.escapes, 1);
  EXPECT_TRUE(Logged("North field: waiting 44"));
  loop.Advance(60000);
  EXPECT_EQ(port.escapes, 1) << "the count-down has run out once";
}

TEST_F(ExchangeTest, AClosedPortEndsTheExchangeAtOnce) {
  exchange.SendCommand("00000:00001:00rt ");
  exchange.SetState(kGetDate);
  exchange.WaitForChangeOfState();
  EXPECT_EQ(loop.MonotonicMilliseconds(), 0);
  EXPECT_EQ(link.ResultTextOf(link.ResultCode), "the port is closed");
  EXPECT_EQ(TimesLogged("A-error: Not sent: the port is closed"), 1);
}

TEST_F(ExchangeTest, Pauses) {
  const struct {
    std::int64_t milliseconds;
    bool traced;
    const char* status;
  } rows[] = {{100, false, ""}, {500, true, ""}, {2500, true, "pause 2.5 secs..."}, {0, false, ""}, {-1, false, ""}};
  for (const auto& row : rows) {
    form.Lbl_Status.SetText("");
    const std::int64_t start = loop.MonotonicMilliseconds();
    pauser.Pause(row.milliseconds);
    EXPECT_EQ(loop.MonotonicMilliseconds() - start, std::max<std::int64_t>(0, row.milliseconds));
    EXPECT_EQ(form.Lbl_Status.text(), row.status);
    EXPECT_EQ(Logged("PAUSE START: " + std::to_string(row.milliseconds)), row.traced) << row.milliseconds;
  }
  EXPECT_EQ(TimesLogged("PAUSE END"), 2);
  for (bool* flag : {&link.UserCancel, &flags.closing}) {
    const std::int64_t start = loop.MonotonicMilliseconds();
    loop.After(40, [flag] { *flag = true; });
    pauser.Pause(60000);
    EXPECT_EQ(loop.MonotonicMilliseconds() - start, 40);
    *flag = false;
  }
}

}  // namespace
}  // namespace corvane::test
