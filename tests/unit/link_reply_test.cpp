#include "link/reply_handler.h"

#include <gtest/gtest.h>

#include "unit/link_world.h"

namespace corvane::test {
namespace {

class ReplyTest : public LinkTest {};

TEST_F(ReplyTest, ReadsErrorReplies) {
  const std::tuple<const char*, int, const char*> rows[] = {
      {"error 1", 1, "Invalid command or format"},
      {"ERROR5x", 5, "Busy"},
      {"ERROR5", 6, "HVError"},
      {"ERROR 7", 7, "HVError 7"},
      {"ERROR abc", 0, "HVError 0"},
      {"ERROR 99999999999", 32767, "HVError 32767"},
  };
  for (const auto& [line, code, status] : rows) {
    Ask(kGetDate);
    link.HalvexError = false;
    port.ReceiveNow(std::string(line) + "\r");
    EXPECT_TRUE(link.HalvexError) << line;
    EXPECT_EQ(link.ResultCode, code) << line;
    EXPECT_EQ(form.Lbl_Status.text(), status) << line;
  }
  EXPECT_TRUE(link.ContinueOk()) << "an error reply is tried again";
}

TEST_F(ReplyTest, OneLineEndsASettingCommand) {
  Ask(kSetDate, "00000:00001:00WT 100312140509");
  port.ReceiveNow("00000:00001:00WT 100312140509\r");
  EXPECT_EQ(link.State, kSetDate) << "the echo is not the answer";
  port.ReceiveNow("\nDate set\r\n");
  EXPECT_EQ(link.State, kIdle);
  EXPECT_EQ(form.Lbl_HeaderLine.text(), "Date set");
  EXPECT_EQ(form.Lbl_Status.text(), "Date set");
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
  EXPECT_EQ(form.Lst_Direct.count(), 4);
  EXPECT_EQ(form.Lst_Direct.text(3), "ignored");
  EXPECT_EQ(link.LineCount, 1) << "a line after an error reply is ignored";
}

}  // namespace
}  // namespace corvane::test
