#include "posix/posix_loop.h"

#include <csignal>
#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include "support/pty_pair.h"

namespace corvane {
namespace {

TEST(PosixLoop, BlockedTimerDeliversOneTickThenItsGridEvenWhileItsHandlerWaits) {
  PosixLoop loop;
  std::vector<std::int64_t> ticks;
  bool waited = false;
  const std::int64_t start = loop.MonotonicMilliseconds();
  const auto timer = loop.MakeTimer([&] {
    ticks.push_back(loop.MonotonicMilliseconds() - start);
    if (ticks.size() == 1) waited = RunUntil(loop, [&] { return ticks.size() == 2; });
  });
  timer->Start(100);
  while (loop.MonotonicMilliseconds() < start + 290) {
  }
  ASSERT_TRUE(RunUntil(loop, [&] { return waited; }));
  EXPECT_GE(ticks[1], 300);
  EXPECT_LT(ticks[1], 380);
}

TEST(PosixLoop, TimerMayDestroyItselfAndOthers) {
  PosixLoop loop;
  std::string calls;
  std::unique_ptr<Timer> victim = loop.MakeTimer([&] { calls += 'v'; });
  std::unique_ptr<Timer> killer;
  killer = loop.MakeTimer([&] {
    calls += 'k';
    victim.reset();
    killer.reset();
    loop.Post([&] { loop.Post([&] { calls += 'p'; }); });
  });
  killer->Start(1);
  victim->Start(1);
  EXPECT_TRUE(RunUntil(loop, [&] { return calls == "kp"; })) << calls;
}

TEST(PosixLoop, WatchesMayEndEachOtherAndRecurseAndClosedOnesAreDropped) {
  PosixLoop loop;
  const int first = eventfd(1, EFD_NONBLOCK), second = eventfd(1, EFD_NONBLOCK);
  eventfd_t value = 0;
  std::string calls;
  const auto end_both = [&] {
    calls += 'e';
    loop.Unwatch(first);
    loop.Unwatch(second);
  };
  for (const int file : {first, second}) loop.WatchRead(file, end_both);
  loop.Poll();
  loop.WatchRead(first, [&] {
    EXPECT_EQ(eventfd_read(first, &value), 0);
    calls += '(';
    if (calls.size() < 4) {
      EXPECT_EQ(eventfd_write(first, 1), 0);
      loop.Poll();
    }
    calls += ')';
  });
  // What the outer call saw of the second one is out of date once the inner calls have read it.
  loop.WatchRead(second, [&] {
    EXPECT_EQ(eventfd_read(second, &value), 0);
    calls += '2';
  });
  loop.Poll();
  EXPECT_EQ(calls, "e((()2))");
  close(first);
  close(second);
  EXPECT_LE(YieldsIn20Milliseconds(loop), 2);
}

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
