#include "posix/posix_loop.h"

#include <csignal>
#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

#include "support/loop_contract.h"

namespace corvane {
namespace {

INSTANTIATE_TYPED_TEST_SUITE_P(Posix, LoopContract, PosixLoop);

TEST(PosixLoop, SignalsArriveAsEvents) {
  PosixLoop loop;
  std::vector<int> seen;
  std::signal(SIGUSR2, SIG_IGN);
  ASSERT_TRUE(loop.WatchSignals({SIGTERM, SIGHUP, SIGUSR2}, [&](int signal) { seen.push_back(signal); }).ok());
  kill(getpid(), SIGTERM);
  kill(getpid(), SIGUSR2);
  EXPECT_TRUE(seen.empty());
  EXPECT_TRUE(RunUntil(loop, [&] { return !seen.empty(); }));
  kill(getpid(), SIGHUP);
  EXPECT_TRUE(RunUntil(loop, [&] { return seen.size() == 2; }));
  EXPECT_EQ(seen, (std::vector<int>{SIGTERM, SIGHUP}));

  const std::int64_t start = loop.MonotonicMilliseconds();
  loop.Yield();
  EXPECT_LE(loop.MonotonicMilliseconds() - start, 1300) << "a wait that only a signal could end must come back";
}

TEST(PosixLoop, NowFollowsTheTimeZone) {
  setenv("TZ", "UTC0", 1);
  const DateTime universal = PosixLoop().Now();
  EXPECT_NEAR(static_cast<double>(universal - DateTime::FromCivil(1970, 1, 1)), static_cast<double>(time(nullptr)), 2);
  setenv("TZ", "XXX-3:30", 1);
  EXPECT_NEAR(static_cast<double>(PosixLoop().Now() - universal), 3.5 * 3600, 2);
  unsetenv("TZ");
}

}  // namespace
}  // namespace corvane
