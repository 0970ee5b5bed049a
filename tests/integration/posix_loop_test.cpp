#include "posix/posix_loop.h"

#include <csignal>
#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

#include "support/pty_pair.h"

namespace corvane {
namespace {

struct Pipe {
  Pipe() { EXPECT_EQ(pipe2(ends, O_NONBLOCK | O_CLOEXEC), 0); }
  ~Pipe() {
    close(ends[0]);
    close(ends[1]);
  }
  void Fill() const { EXPECT_EQ(write(ends[1], "x", 1), 1); }
  void Drain() const {
    char byte = 0;
    EXPECT_EQ(read(ends[0], &byte, 1), 1);
  }
  int ends[2] = {-1, -1};
};

TEST(PosixLoop, TimerTicksOnWhileItsOwnHandlerWaits) {
  PosixLoop loop;
  int ticks = 0;
  bool waited = false;
  const auto timer = loop.MakeTimer([&] {
    if (++ticks == 1) waited = RunUntil(loop, [&] { return ticks == 5; });
  });
  timer->Start(2);
  EXPECT_TRUE(RunUntil(loop, [&] { return waited; }));
}

TEST(PosixLoop, BlockedTimerDeliversOneTickThenItsGrid) {
  PosixLoop loop;
  std::vector<std::int64_t> ticks;
  const std::int64_t start = loop.MonotonicMilliseconds();
  const auto timer = loop.MakeTimer([&] { ticks.push_back(loop.MonotonicMilliseconds() - start); });
  timer->Start(100);
  while (loop.MonotonicMilliseconds() < start + 290) {
  }
  loop.Poll();
  loop.Poll();
  ASSERT_EQ(ticks.size(), 1U);
  ASSERT_TRUE(RunUntil(loop, [&] { return ticks.size() == 2; }));
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

TEST(PosixLoop, WatchesMayEndEachOtherAndRecurse) {
  PosixLoop loop;
  const Pipe first;
  const Pipe second;
  std::string calls;
  const auto end_both = [&] {
    calls += 'e';
    loop.Unwatch(first.ends[0]);
    loop.Unwatch(second.ends[0]);
  };
  loop.WatchRead(first.ends[0], end_both);
  loop.WatchRead(second.ends[0], end_both);
  first.Fill();
  second.Fill();
  loop.Poll();
  loop.Poll();
  EXPECT_EQ(calls, "e");

  calls.clear();
  loop.WatchRead(first.ends[0], [&] {
    first.Drain();
    calls += '(';
    if (calls.size() < 3) {
      first.Fill();
      loop.Poll();
    }
    calls += ')';
  });
  loop.WatchWrite(first.ends[1], [&] {
    calls += 'w';
    loop.WatchWrite(first.ends[1], {});
  });
  // What the outer call saw of the second pipe is out of date once the inner calls have read it.
  loop.WatchRead(second.ends[0], [&] {
    second.Drain();
    calls += '2';
  });
  loop.Poll();
  EXPECT_EQ(calls, "((()w2))");
}

TEST(PosixLoop, ClosedDescriptorIsDroppedInsteadOfSpinning) {
  PosixLoop loop;
  loop.WatchRead(Pipe().ends[0], [] { ADD_FAILURE() << "nothing to read"; });
  EXPECT_LE(YieldsIn20Milliseconds(loop), 2);
}

TEST(PosixLoop, WaitThatOnlyASignalCouldEndComesBack) {
  PosixLoop loop;
  ASSERT_TRUE(loop.WatchSignals({SIGHUP}, [](int) {}).ok());
  loop.Poll();
  const std::int64_t start = loop.MonotonicMilliseconds();
  loop.Yield();
  EXPECT_NEAR(static_cast<double>(loop.MonotonicMilliseconds() - start), 1000, 300);
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
