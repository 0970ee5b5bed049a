// What the command runner keeps on every event loop; one suite for each of them.
#pragma once

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <optional>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "posix/posix_command_runner.h"
#include "support/child.h"
#include "support/pty_pair.h"

namespace corvane {

/// Whether a process is there and has not ended.
inline bool Lives(const std::string& process) {
  const std::string test = "grep -qs '^State:.[^ZX]' /proc/" + process + "/status";
  return std::system(test.c_str()) == 0;
}

template <class Loop>
class RunnerContract : public testing::Test {
 protected:
  void Start(const std::string& command, const std::string& input = "", std::int64_t seconds = 20) {
    ending.reset();
    runner.Start(command, input, seconds, [this](const CommandEnding& how) { ending = how; });
  }
  bool Ends() {
    return RunUntil(loop, [this] { return ending.has_value(); });
  }

  Loop loop;
  std::optional<CommandEnding> ending;
  PosixCommandRunner runner{loop, loop, {100, 1000}};
};
TYPED_TEST_SUITE_P(RunnerContract);

TYPED_TEST_P(RunnerContract, CommandsEndAsTheyDoAndInTime) {
  struct Row {
    const char* name;
    std::string command;
    std::string input;
    std::int64_t seconds;
    int exit_code;
    int status;
    std::string output;
  };
  const std::string much(1'000'000, 'x');
  const Row rows[] = {
      {"takes its input", "cat", "{\"a\": 1}\n", 20, 0, 0, "{\"a\": 1}\n"},
      {"takes much input", "wc -c", much, 20, 0, 0, "1000000\n"},
      {"fails", "echo out; echo wrong >&2; exit 3", "", 20, 3, 0, "out\nwrong\n"},
      {"is not there", "/no/such/program 2>/dev/null", "", 20, 127, 0, ""},
      {"cannot be started", much, "", 20, 0, E2BIG, ""},
      {"reads nothing", "exit 0", much, 20, 0, 0, ""},
      {"closes its input", "exec <&-; head -c 100000 /dev/zero | wc -c", much, 20, 0, 0, "100000\n"},
      {"floods", "yes | head -c 3000000; exit 4", "", 20, 4, 0, "y\n..."},
      {"hangs", "echo here; sleep 60", "", 1, 128 + SIGTERM, ETIMEDOUT, "here\n"},
      {"floods for ever", "exec yes", much, 1, 128 + SIGTERM, ETIMEDOUT, "y\n..."},
      {"cannot be asked to end", "trap '' TERM; while :; do sleep 60; done", "", 1, 128 + SIGKILL, ETIMEDOUT, ""},
      {"gets no signal blocked or ignored", "kill -PIPE $$; echo lives", "", 20, 128 + SIGPIPE, 0, ""},
      {"gets no descriptor of ours", "exec ls /proc/self/fd", "", 20, 0, 0, "0\n1\n2\n3\n"},
  };
  const int leaks = open("/dev/null", O_RDWR);
  std::signal(SIGPIPE, SIG_DFL);
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    if (row.exit_code == 128 + SIGPIPE) std::signal(SIGPIPE, SIG_IGN);
    this->Start(row.command, row.input, row.seconds);
    EXPECT_TRUE(this->runner.Running());
    ASSERT_TRUE(this->Ends());
    EXPECT_FALSE(this->runner.Running());
    EXPECT_EQ(this->ending->exit_code, row.exit_code);
    EXPECT_EQ(this->ending->status.code(), row.status) << this->ending->status.text();
    if (row.output.ends_with("...")) {
      EXPECT_EQ(this->ending->output.size(), 1000);
      EXPECT_TRUE(this->ending->output.starts_with(row.output.substr(0, row.output.size() - 3)));
    } else {
      EXPECT_EQ(this->ending->output, row.output);
    }
  }
  close(leaks);
  EXPECT_TRUE(test::Until([] { return waitpid(-1, nullptr, WNOHANG) < 0 && errno == ECHILD; })) << "zombies";
}

TYPED_TEST_P(RunnerContract, WhatItLeavesBehindEndsWithIt) {
  this->Start("sleep 60 & echo $!; trap '' TERM; (while :; do sleep 60; done) & echo $!");
  ASSERT_TRUE(this->Ends()) << "children hold it";
  const std::string& output = this->ending->output;
  const std::string first = output.substr(0, output.find('\n'));
  const std::string second = output.substr(first.size() + 1, output.size() - first.size() - 2);
  EXPECT_TRUE(test::Until([&] { return !Lives(first) && !Lives(second); })) << output;
}

TYPED_TEST_P(RunnerContract, StopEndsItWithoutAWordAndAnEndMayStartTheNext) {
  const test::TempFolder folder;
  const std::string tells = "exec 2>&-; echo $$ > " + folder.Name("new") + "; mv " + folder.Name("new") + " ";
  this->Start(tells + folder.Name("first") + "; sleep 60");
  ASSERT_TRUE(test::Until([&] { return !folder.Read("first").empty(); }));
  EXPECT_TRUE(Lives(folder.Read("first").substr(0, folder.Read("first").size() - 1)));
  this->runner.Stop();
  EXPECT_FALSE(this->runner.Running());

  std::string order;
  this->runner.Start("echo 1", "", 20, [&](const CommandEnding& first) {
    order += first.output;
    this->runner.Start("echo 2", "", 20, [&](const CommandEnding& second) { order += second.output; });
  });
  EXPECT_TRUE(RunUntil(this->loop, [&] { return order == "1\n2\n"; })) << order;
  EXPECT_FALSE(this->ending.has_value());
  std::string last;
  {
    PosixCommandRunner gone(this->loop, this->loop);
    gone.Start(tells + folder.Name("last") + "; sleep 60", "", 20, [](const CommandEnding&) { FAIL(); });
    ASSERT_TRUE(test::Until([&] { return !folder.Read("last").empty(); }));
    last = folder.Read("last").substr(0, folder.Read("last").size() - 1);
  }
  EXPECT_TRUE(test::Until([&] { return !Lives(last); }));
  EXPECT_LE(YieldsIn20Milliseconds(this->loop), 3) << "nothing may be left to make the loop spin";
}

REGISTER_TYPED_TEST_SUITE_P(RunnerContract, CommandsEndAsTheyDoAndInTime, WhatItLeavesBehindEndsWithIt,
                            StopEndsItWithoutAWordAndAnEndMayStartTheNext);

}  // namespace corvane
