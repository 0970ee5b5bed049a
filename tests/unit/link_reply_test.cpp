#include "link/reply_handler.h"

#include <gtest/gtest.h>

#include "unit/link_world.h"

namespace corvane::test {
namespace {

class ReplyTest : public LinkTest {};

TEST_F(ReplyTest, ReadsErrorReplies) {
  const struct {
    const char* line;
    int code;
    const char* status;
  } rows[] = {
      {"ERROR 5", 5, "Busy"},
      {"error 1", 1, "Invalid command or format"},
      {"ERROR5x", 5, "Busy"},
      {"ERROR", 6, "HVError"},
      {"ERROR5", 6, "HVError"},
      {"ERROR 7", 7, "HVError 7"},
      {"ERROR abc", 0, "HVError 0"},
      {"ERROR -3", -3, "HVError -3"},
      {"ERROR 99999999999", 32767, "HVError 32767"},
  };
  for (const auto& row : rows) {
    Ask(kGetDate);
    link.HalvexError = false;
    port.ReceiveNow(std::string(row.line) + "\r");
    EXPECT_TRUE(link.HalvexError) << row.line;
    EXPECT_EQ(link.ResultCode, row.code) << row.line;
    EXPECT_EQ(form.Lbl_Status.text(), row.status) << row.line;
    EXPECT_TRUE(Logged(std::string("HV Error received:") + row.line)) << row.line;
  }
  EXPECT_TRUE(link.ContinueOk()) << "an error reply is tried again";
}

TEST_F(ReplyTest, OneLineEndsASettingCommand) {
  Ask(kSetDate, "00000:00001:00WT 100312140509");
  port.ReceiveNow("00000:00001:00WT 100312140509\r");
  EXPECT_EQ(link.State, kSetDate) << "the echo is not the answer";
  EXPECT_FALSE(link.DataPhase);
  port.ReceiveNow("\nDate set\r\n");
  EXPECT_EQ(link.State, kIdle);
  EXPECT_EQ(form.Lbl_HeaderLine.text(), "Date set");
  EXPECT_EQ(form.Lbl_Status.text(), "Date set");
  EXPECT_TRUE(Logged("LineCount = LinesExpected - finish ok"));
  port.ReceiveNow("again\r");
  EXPECT_TRUE(Logged("A-error: ExtraReply:again"));
}

TEST_F(ReplyTest, AReplyBeforeItIsAwaitedIsExtraAndTheWaitStillEnds) {
  port.on_line = [this](const std::string&) { port.ReceiveNow("too soon\r"); };
  Ask(kGetDate);
  exchange.WaitForChangeOfState();
  EXPECT_TRUE(Logged("A-error: ExtraReply:too soon"));
  EXPECT_TRUE(link.Timeout);
}

TEST_F(ReplyTest, ShowsLinesInTheDirectList) {
  form.Chk_Direct.SetTicked(true);
  Ask(kDownload);
  port.ReceiveNow("00000:00001:00rt \r" + Frame("V2,1,2,0,1,x") + "\rERROR 2\rignored\r");
  std::vector<std::string> shown;
  for (std::int64_t row = 0; row < form.Lst_Direct.count(); ++row) shown.push_back(form.Lst_Direct.text(row));
  EXPECT_EQ(shown, lines);
  EXPECT_EQ(shown.size(), 4U);
  EXPECT_EQ(link.LineCount, 1) << "a line after an error reply is ignored";
}

}  // namespace
}  // namespace corvane::test
