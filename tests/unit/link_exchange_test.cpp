#include "link/exchange.h"

#include <gtest/gtest.h>

#include "unit/link_world.h"

namespace corvane::test {
namespace {

TEST(CommandLineTest, BuildsLinesAndParameters) {
  Registry registry;
  registry.Relays.Append({"Hill", 4, 0});
  registry.Relays.Append({"Same ID as a unit", 7, 2});
  const auto line = [&](std::int32_t id, std::int32_t relay, std::int16_t command, const char* parameters) {
    Unit unit;
    unit.ID = id;
    unit.RelayID = relay;
    return BuildCommandLine(registry, unit, command, parameters);
  };
  EXPECT_EQ(line(123, 4, kGetDate, ""), "00004:00123:00rt ") << "no parameters keep the blank";
  EXPECT_EQ(line(7, 4, kReadMemory, ""), "00004:00007:03rm ") << "the style of the relay with the unit's own ID";
  EXPECT_EQ(line(123, 7, kDownload, "1003121405"), "00007:00123:00rr 1003121405") << "not the style of its relay";
  EXPECT_EQ(line(1234567, 0, kSetMode, "A"), "00000:1234567:00SM A");
  EXPECT_EQ(line(123, 4, kTestBaseStation, "x"), "");
  EXPECT_EQ(DownloadParameters(DateTime()), "0001010000");
  EXPECT_EQ(DownloadParameters(DateTime::FromCivil(2010, 3, 12, 14, 5)), "1003121405");
  const std::pair<const char*, const char*> rows[] = {{"1:00", "3C"}, {"15", "0F"},  {"255", "FF"}, {"256", "00"},
                                                      {"4:20", "04"}, {"2.5", "03"}, {"-1", "FF"},  {"1e300", "00"}};
  for (const auto& [text, digits] : rows) EXPECT_EQ(LogPeriodParameters(text), digits) << text;
}

class ExchangeTest : public LinkTest {};

TEST_F(ExchangeTest, SendsSlowlyUntilCancelled) {
  form.Chk_PauseOnSend.SetTicked(true);
  Ask(kGetDate, "12345678901234567890");
  EXPECT_EQ(loop.MonotonicMilliseconds(), 200);
  loop.After(35, [this] { link.UserCancel = true; });
  Ask(kGetDate, "abcdefghij");
  EXPECT_EQ(port.written, "12345678901234567890\rabcd");
}

TEST_F(ExchangeTest, EndsTheWait) {
  const auto every_second = [this](const std::string& text) {
    for (int second = 1; second < 1000; ++second) port.Receive(text, second * 1000);
  };
  const std::string header = Frame("V2,1,2,1,3,x") + "\r";
  const std::tuple<const char*, std::int16_t, std::int64_t, std::function<void()>> rows[] = {
      {"reply", kGetDate, 300, [&] { port.Receive("2010/3/12 14:05\r", 300); }},
      {"each event restarts the count-down", kGetDate, 85000, [&] { port.Receive("half", 40000); }},
      {"echo keeps the reply time-out", kGetDate, 46000, [&] { port.Receive("00000:00001:00rt \r", 1000); }},
      {"the header brings the data time-out", kDownload, 21000, [&] { port.Receive(header, 1000); }},
      {"noise without a line end", kDownload, 449000 + 45000, [&] { every_second("noise"); }},
      {"lines after an abort", kDownload, 45000, [&] { every_second("no header\r"); }},
      {"cancel", kGetDate, 500, [&] { loop.After(500, [this] { link.UserCancel = true; }); }},
      {"the program closes", kGetDate, 500, [&] { loop.After(500, [this] { flags.closing = true; }); }},
      {"error reply", kDownload, 700, [&] { port.Receive("ERROR 2\r", 700); }},
      {"hang-up", kDownload, 900, [&] { loop.After(900, [this] { port.Event(kPortEndOfInput); }); }},
  };
  for (const auto& [name, command, expected, script] : rows) {
    link.UserCancel = flags.closing = false;
    download.OutputFileName = folder.Name("00001.epd");
    port_link.ClearEverything();
    const std::int64_t start = loop.MonotonicMilliseconds();
    script();
    Ask(command);
    exchange.WaitForChangeOfState();
    EXPECT_EQ(loop.MonotonicMilliseconds() - start, expected) << name;
    exchange.SetStateFinished();
    port_link.ClosePort();
    loop.Advance(1000000);
  }
}

TEST_F(ExchangeTest, TimeOutSaysSoAndStopsTheUnit) {
  form.Lst_Units.Add("North field");
  form.Lst_Units.SetCurrent(0);
  Ask(kGetDate);
  EXPECT_EQ(port.written, "00000:00001:00rt \r");
  exchange.WaitForChangeOfState();
  EXPECT_EQ(loop.MonotonicMilliseconds(), 45000);
  EXPECT_FALSE(link.ContinueOk());
  EXPECT_EQ(form.Lbl_Status.text(), "North field: waited 45 secs");
  loop.Advance(60000);
  EXPECT_EQ(port.escapes, 1) << "the count-down has run out once";
}

TEST_F(ExchangeTest, AClosedPortEndsTheExchangeAtOnce) {
  exchange.SendCommand("00000:00001:00rt ");
  exchange.SetState(kGetDate);
  exchange.WaitForChangeOfState();
  EXPECT_EQ(loop.MonotonicMilliseconds(), 0);
  EXPECT_EQ(TimesLogged("A-error: Not sent: the port is closed"), 1);
}

TEST_F(ExchangeTest, PausesUntilCancelledOrClosed) {
  pauser.Pause(2500);
  EXPECT_EQ(loop.MonotonicMilliseconds(), 2500);
  EXPECT_EQ(form.Lbl_Status.text(), "pause 2.5 secs...");
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
