// The commands of share/alerts, run as the program runs them, against servers on this computer.
#include <cstdlib>
#include <optional>

#include <gtest/gtest.h>

#include "history/alert_book.h"
#include "history/alert_message.h"
#include "posix/posix_command_runner.h"
#include "posix/posix_loop.h"
#include "support/child.h"

namespace corvane::test {
namespace {

/// What the program has to tell behind a round: of a silent unit, or only that the round is over.
std::string Message(bool silent, const std::string& ending = "") {
  NetworkStatus status;
  status.now = {1'780'000'000, 7200};
  status.last.key = 1;
  status.last.began = status.last.ended = status.now;
  status.last.ending = ending;
  status.last_round = "download";
  status.sentence = "1 unit";
  UnitStatus unit;
  unit.key = 1;
  unit.name = "S\xC3\xBC\x64 \"1\"\\ $(date)\n";
  unit.state = silent ? UnitState::Silent : UnitState::Fine;
  if (silent) unit.why = "Asked twice, no answer";
  status.units.push_back(unit);
  return AlertMessage(LookAtAlerts({}, {status, "", {}, true, true}).events, status);
}

class AlertExamples : public testing::Test {
 protected:
  /// Runs an example with settings of the environment; returns how it ended and what it printed.
  std::string Run(const std::string& example, const std::string& message,
                  const std::vector<std::pair<std::string, std::string>>& settings) {
    setenv("CORVANE_ALERTS", "/nowhere", 1);
    for (const auto& [name, value] : settings) setenv(name.c_str(), value.c_str(), 1);
    std::optional<CommandEnding> ending;
    runner_.Start(TEST_SERVERS_DIR "/../../share/alerts/" + example, message, 20,
                  [&](const CommandEnding& how) { ending = how; });
    while (!ending) loop_.Yield();
    for (const auto& [name, value] : settings) unsetenv(name.c_str());
    return std::to_string(ending->exit_code) + " " + ending->output;
  }

  PosixLoop loop_;
  PosixCommandRunner runner_{loop_, loop_};
};

TEST_F(AlertExamples, MailGoesToAMailServer) {
  const ServerProcess server({"alert_receiver.py", "smtp"});
  const std::vector<std::pair<std::string, std::string>> settings = {{"MAIL_TO", "her@example.org"},
                                                                     {"MAIL_FROM", "it@example.org"},
                                                                     {"SENDMAIL", TEST_SERVERS_DIR "/sendmail.py"},
                                                                     {"SMTP_PORT", std::to_string(server.port())}};
  EXPECT_EQ(Run("mail", Message(false), settings), "0 ") << "a round alone is worth no mail";
  EXPECT_EQ(Run("mail", Message(true), settings), "0 ");
  ASSERT_TRUE(server.Shows("Last round: download")) << server.output();
  const std::string mail = server.output();
  // "Corvane: S", "\u00fcd \"1\"\\ $(da" and "te)[10] is silent" in words of eleven characters.
  for (const char* part : {"rcpt TO:<her@example.org>",
                           "Subject: =?UTF-8?B?Q29ydmFuZTogU8O8?=", "\nS\xC3\xBC\x64 \"1\"\\ $(date)[10] is silent\n",
                           "  S\xC3\xBC\x64 \"1\"\\ $(date)[10]: Asked "}) {
    EXPECT_NE(mail.find(part), std::string::npos) << part << "\n" << mail;
  }
  EXPECT_EQ(mail.find("From: it@example.org"), mail.rfind("From: it@example.org")) << "one mail";
  EXPECT_NE(Run("mail", Message(true), {}).find("MAIL_TO: is not set"), std::string::npos);
}

TEST_F(AlertExamples, ChatHookPostsJson) {
  const ServerProcess server({"alert_receiver.py", "http"});
  const std::string url = "http://127.0.0.1:" + std::to_string(server.port()) + "/hook?key=1";
  EXPECT_EQ(Run("chat-hook", Message(false), {{"CHAT_URL", url}}), "0 ");
  EXPECT_EQ(Run("chat-hook", Message(true), {{"CHAT_URL", url}, {"CHAT_FIELD", "content"}}), "0 ");
  ASSERT_TRUE(server.Shows("}"));
  EXPECT_NE(
      server.output().find("POST /hook?key=1 {\n  \"content\": \"S\xC3\xBC\x64 \\\"1\\\"\\\\ $(date)[10] is silent\\n"),
      std::string::npos)
      << server.output();
  const ServerProcess refuses({"alert_receiver.py", "http", "500"});
  const std::string other = "http://127.0.0.1:" + std::to_string(refuses.port()) + "/";
  EXPECT_EQ(Run("chat-hook", Message(true), {{"CHAT_URL", other}}).substr(0, 9), "22 curl: ");
}

TEST_F(AlertExamples, DeadMansSwitchIsFedByRoundsThatWentToTheirEnd) {
  const ServerProcess server({"alert_receiver.py", "http"});
  const std::string url = "http://127.0.0.1:" + std::to_string(server.port());
  std::string no_round = Message(true);
  no_round.replace(no_round.find("\"event\": \"round\""), 16, "\"event\": \"digest\"");
  EXPECT_EQ(Run("dead-mans-switch", no_round, {{"PING_URL", url + "/no"}}), "0 ");
  EXPECT_EQ(Run("dead-mans-switch", Message(false, "no port"), {{"PING_URL", url + "/no"}}), "0 ");
  EXPECT_EQ(Run("dead-mans-switch", Message(true), {{"PING_URL", url + "/good"}}), "0 ");
  EXPECT_EQ(
      Run("dead-mans-switch", Message(true, "no port"), {{"PING_URL", url + "/no"}, {"PING_FAIL_URL", url + "/early"}}),
      "0 ");
  ASSERT_TRUE(server.Shows("/early"));
  EXPECT_TRUE(server.output().ends_with("\nGET /good \nGET /early \n")) << server.output();
}

}  // namespace
}  // namespace corvane::test
