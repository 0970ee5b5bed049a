#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "support/world.h"

namespace corvane::test {
namespace {

/// A started world with one port and "Direct terminal" ticked; the base station is silent.
class DirectTerminalTest : public ::testing::Test {
 protected:
  DirectTerminalTest() {
    world.port.on_line = nullptr;
    form.Chk_Direct.SetTicked(true);
    form.Txt_Timeout[1].SetText("5");
    form.Txt_Direct.SetText("st 1");
  }
  [[nodiscard]] std::vector<std::string> Rows() const {
    std::vector<std::string> rows;
    for (std::int64_t row = 0; row < form.Lst_Direct.count(); ++row) rows.push_back(form.Lst_Direct.text(row));
    return rows;
  }
  /// True when the terminal has given everything back.
  [[nodiscard]] bool Over() {
    return !world.port.IsOpen() && !world.app().slot().Taken() && !world.app().link().DirectListening &&
           form.Cmd_Convert.enabled();
  }

  World world{"[Ports]\nCOM1=/dev/base\n"};
  Form& form = world.Start().form();
};

TEST_F(DirectTerminalTest, ShowsWhatIsSentAndWhatArrivesUntilTheLineIsSilent) {
  world.port.Receive("st 1\r\nok 1\r\n", 1000);
  world.port.Receive("ERROR 3\r\nhalf", 4000);
  world.port.Receive(" a line\r\n", 8000);
  form.Cmd_Direct.Click();
  EXPECT_EQ(Rows(), (std::vector<std::string>{">st 1", "st 1", "ok 1", "ERROR 3", "half a line"}));
  EXPECT_EQ(world.port.written, "st 1\r");
  EXPECT_EQ(world.loop.MonotonicMilliseconds(), 13000);
  EXPECT_TRUE(Over());
  EXPECT_FALSE(world.Logged("A-error"));
  EXPECT_EQ(form.Lbl_Status.text(), "Direct terminal: the port is closed");
  EXPECT_EQ(world.app().flags().problems, 0);
}

TEST_F(DirectTerminalTest, SendsTheNextLineInTheSameSession) {
  world.loop.After(4000, [&] {
    EXPECT_FALSE(form.Cmd_Convert.enabled());
    form.Txt_Direct.SetText("");
    form.Cmd_Direct.Click();
  });
  form.Cmd_Direct.Click();
  EXPECT_EQ(world.port.written, "st 1\r\r");
  EXPECT_EQ(world.port.opens, 1);
  EXPECT_EQ(world.loop.MonotonicMilliseconds(), 9000);
  EXPECT_EQ(Rows(), (std::vector<std::string>{">st 1", ">"}));
}

struct EndCase {
  const char* name;
  std::function<void()> after_a_second;
  int escapes;
  std::int64_t problems;
};

TEST_F(DirectTerminalTest, Ends) {
  const std::vector<EndCase> rows = {
      {"cancel", [this] { form.Cmd_Cancel.Click(); }, 1, 0},
      {"unticked", [this] { form.Chk_Direct.SetTicked(false); }, 0, 0},
      {"port error", [this] { world.port.Event(kPortFraming); }, 1, 1},
      {"close", [this] { world.app().commands().Close(false); }, 3, 0},
  };
  for (const EndCase& row : rows) {
    SCOPED_TRACE(row.name);
    form.Chk_Direct.SetTicked(true);
    world.port.escapes = 0;
    const std::int64_t begin = world.loop.MonotonicMilliseconds();
    world.loop.After(1000, [&] { row.after_a_second(); });
    form.Cmd_Direct.Click();
    EXPECT_EQ(world.loop.MonotonicMilliseconds() - begin, 1000);
    EXPECT_TRUE(Over());
    EXPECT_EQ(world.port.escapes, row.escapes);
    EXPECT_EQ(world.app().flags().problems, row.problems);
  }
}

TEST_F(DirectTerminalTest, WaitIsHeldWithinItsLimits) {
  for (const auto& [text, seconds] :
       {std::pair("0", 1), std::pair("-7", 1), std::pair("x", 1), std::pair("2.5", 2), std::pair("99999", 600)}) {
    form.Txt_Timeout[1].SetText(text);
    const std::int64_t begin = world.loop.MonotonicMilliseconds();
    form.Cmd_Direct.Click();
    EXPECT_EQ((world.loop.MonotonicMilliseconds() - begin) / 1000, seconds) << text;
  }
}

TEST_F(DirectTerminalTest, ANoisyLineGivesThePortBackInTheEnd) {
  for (int second = 1; second < 5000; ++second) world.port.Receive("noise", second * 1000);
  form.Cmd_Direct.Click();
  EXPECT_LE(world.loop.MonotonicMilliseconds(), 3605000);
  EXPECT_TRUE(Over());
}

TEST_F(DirectTerminalTest, TakesTextOnlyWhileItCanSendIt) {
  const auto enabled = [&] { return form.Cmd_Direct.enabled() && form.Txt_Direct.enabled(); };
  EXPECT_TRUE(enabled());
  form.Chk_Direct.SetTicked(false);
  EXPECT_FALSE(form.Cmd_Direct.enabled() || form.Txt_Direct.enabled());
  form.Chk_Direct.SetTicked(true);
  bool during_download = true;
  world.loop.After(10, [&] { during_download = enabled(); });
  form.mnu_Download.Click(1);
  EXPECT_FALSE(during_download);
  EXPECT_TRUE(enabled());
}

}  // namespace
}  // namespace corvane::test
