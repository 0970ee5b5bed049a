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

/// A pipe whose reading end becomes ready when it is filled.
class Pipe {
 public:
  Pipe() { EXPECT_EQ(pipe2(ends_, O_NONBLOCK | O_CLOEXEC), 0); }
  ~Pipe() {
    close(ends_[0]);
    close(ends_[1]);
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;

  [[nodiscard]] int in() const { return ends_[0]; }
  [[nodiscard]] int out() const { return ends_[1]; }
  void Fill() const { EXPECT_EQ(write(ends_[1], "x", 1), 1); }
  void Drain() const {
    char byte = 0;
    EXPECT_EQ(read(ends_[0], &byte, 1), 1);
  }

 private:
  int ends_[2] = {-1, -1};
};

TEST(PosixLoop, TimerTicksOnWhileItsOwnHandlerWaits) {
  PosixLoop loop;
  int ticks = 0;
  bool waited = false;
  const auto timer = loop.MakeTimer([&] {
    if (++ticks > 1) return;
    waited = RunUntil(loop, [&] { return ticks == 5; });
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

TEST(PosixLoop, TimersAndTasksMayEndEachOther) {
  PosixLoop loop;
  std::string calls;
  std::unique_ptr<Timer> victim = loop.MakeTimer([&] { calls += 'v'; });
  std::unique_ptr<Timer> killer;
  killer = loop.MakeTimer([&] {
    calls += 'k';
    victim.reset();
    killer.reset();
    loop.Post([&] {
      calls += 'p';
      loop.Post([&] { calls += 'q'; });
    });
  });
  killer->Start(1);
  victim->Start(2);
  const std::int64_t start = loop.MonotonicMilliseconds();
  while (loop.MonotonicMilliseconds() < start + 5) {
  }
  loop.Poll();
  EXPECT_EQ(calls, "kp");
  EXPECT_TRUE(RunUntil(loop, [&] { return calls == "kpq"; }));
}

TEST(PosixLoop, WatchesMayEndEachOtherAndRecurse) {
  PosixLoop loop;
  const Pipe first;
  const Pipe second;
  std::string calls;
  loop.WatchRead(first.in(), [&] {
    calls += '1';
    loop.Unwatch(second.in());
    loop.Unwatch(first.in());
  });
  loop.WatchRead(second.in(), [&] {
    calls += '2';
    loop.Unwatch(first.in());
    loop.Unwatch(second.in());
  });
  first.Fill();
  second.Fill();
  loop.Poll();
  loop.Poll();
  EXPECT_EQ(calls.size(), 1U);

  calls.clear();
  loop.WatchRead(first.in(), [&] {
    first.Drain();
    calls += '(';
    if (calls.size() < 3) {
      first.Fill();
      loop.Poll();
    }
    calls += ')';
  });
  loop.WatchWrite(first.out(), [&] {
    calls += 'w';
    loop.WatchWrite(first.out(), {});
  });
  // What the outer call saw of the second pipe is out of date once the inner calls have read it.
  loop.WatchRead(second.in(), [&] {
    second.Drain();
    calls += '2';
  });
  EXPECT_TRUE(RunUntil(loop, [&] { return calls.size() == 8; })) << calls;
  loop.Poll();
  EXPECT_EQ(calls, "((()w2))");
}

TEST(PosixLoop, ClosedDescriptorIsDroppedInsteadOfSpinning) {
  PosixLoop loop;
  {
    const Pipe pipe;
    loop.WatchRead(pipe.in(), [] { ADD_FAILURE() << "nothing to read"; });
  }
  int yields = 0;
  bool ticked = false;
  const auto timer = loop.MakeTimer([&] { ticked = true; });
  timer->Start(20);
  for (; !ticked; ++yields) loop.Yield();
  EXPECT_LE(yields, 2);
}

TEST(PosixLoop, WaitsOnlyAsLongAsItMust) {
  PosixLoop loop;
  ASSERT_TRUE(loop.WatchSignals({SIGHUP}, [](int) {}).ok());
  const std::int64_t start = loop.MonotonicMilliseconds();
  const auto elapsed = [&] { return loop.MonotonicMilliseconds() - start; };
  loop.Poll();
  EXPECT_LT(elapsed(), 500);
  loop.Yield();
  EXPECT_GE(elapsed(), 900);
  EXPECT_LT(elapsed(), 1500);
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
  EXPECT_FALSE(loop.WatchSignals({SIGINT}, [](int) {}).ok());
}

TEST(PosixLoop, NowFollowsTheTimeZone) {
  const char* earlier = std::getenv("TZ");
  const std::string kept = earlier != nullptr ? earlier : "";
  setenv("TZ", "UTC0", 1);
  const PosixLoop universal;
  const DateTime at_zero = universal.Now();
  EXPECT_NEAR(static_cast<double>(at_zero - DateTime::FromCivil(1970, 1, 1)), static_cast<double>(time(nullptr)), 2);
  setenv("TZ", "XXX-3:30", 1);
  const PosixLoop eastern;
  EXPECT_NEAR(static_cast<double>(eastern.Now() - at_zero), 3.5 * 3600, 2);
  earlier != nullptr ? setenv("TZ", kept.c_str(), 1) : unsetenv("TZ");
}

}  // namespace
}  // namespace corvane
