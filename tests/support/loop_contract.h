// What every event loop on real time and real descriptors keeps; one suite for each of them.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include "support/pty_pair.h"

namespace corvane {

template <class Loop>
class LoopContract : public testing::Test {
 protected:
  Loop loop;
};
TYPED_TEST_SUITE_P(LoopContract);

TYPED_TEST_P(LoopContract, BlockedTimerDeliversOneTickThenItsGridEvenWhileItsHandlerWaits) {
  std::vector<std::int64_t> ticks;
  bool waited = false;
  const std::int64_t start = this->loop.MonotonicMilliseconds();
  const auto timer = this->loop.MakeTimer([&] {
    ticks.push_back(this->loop.MonotonicMilliseconds() - start);
    if (ticks.size() == 1) waited = RunUntil(this->loop, [&] { return ticks.size() == 2; });
  });
  timer->Start(100);
  while (this->loop.MonotonicMilliseconds() < start + 290) {
  }
  ASSERT_TRUE(RunUntil(this->loop, [&] { return waited; }));
  EXPECT_GE(ticks[1], 300);
  EXPECT_LT(ticks[1], 410);
}

TYPED_TEST_P(LoopContract, TimerMayDestroyItselfAndOthers) {
  std::string calls;
  std::unique_ptr<Timer> victim = this->loop.MakeTimer([&] { calls += 'v'; });
  std::unique_ptr<Timer> killer;
  killer = this->loop.MakeTimer([&] {
    calls += 'k';
    victim.reset();
    killer.reset();
    this->loop.Post([&] { this->loop.Post([&] { calls += 'p'; }); });
  });
  killer->Start(1);
  victim->Start(1);
  EXPECT_TRUE(RunUntil(this->loop, [&] { return calls == "kp" || calls == "vkp"; })) << calls;
}

TYPED_TEST_P(LoopContract, StoppedTimerDropsATickThatWasDue) {
  int ticks = 0;
  const auto timer = this->loop.MakeTimer([&ticks] { ++ticks; });
  timer->Start(1);
  const std::int64_t start = this->loop.MonotonicMilliseconds();
  while (this->loop.MonotonicMilliseconds() < start + 5) {
  }
  timer->Stop();
  for (int pass = 0; pass < 3; ++pass) this->loop.Poll();
  EXPECT_EQ(ticks, 0);
  EXPECT_FALSE(timer->Running());
  EXPECT_EQ(timer->Interval(), 1);
}

TYPED_TEST_P(LoopContract, WatchesMayEndEachOtherAndRecurseAndClosedOnesAreDropped) {
  const int first = eventfd(1, EFD_NONBLOCK), second = eventfd(1, EFD_NONBLOCK);
  eventfd_t value = 0;
  std::string calls;
  const auto end_both = [&] {
    calls += 'e';
    this->loop.Unwatch(first);
    this->loop.Unwatch(second);
  };
  for (const int file : {first, second}) this->loop.WatchRead(file, end_both);
  EXPECT_TRUE(RunUntil(this->loop, [&] { return calls == "e"; }));
  this->loop.WatchRead(first, [&] {
    EXPECT_EQ(eventfd_read(first, &value), 0);
    calls += '(';
    if (calls.size() < 4) {
      EXPECT_EQ(eventfd_write(first, 1), 0);
      this->loop.Poll();
    }
    calls += ')';
  });
  // What the outer call saw of the second one is out of date once the inner calls have read it.
  this->loop.WatchRead(second, [&] {
    EXPECT_EQ(eventfd_read(second, &value), 0);
    calls += '2';
  });
  EXPECT_TRUE(RunUntil(this->loop, [&] { return calls.size() == 8; })) << calls;
  EXPECT_EQ(calls.substr(0, 4), "e(((") << "a handler that waits is called again";
  this->loop.Unwatch(first);
  this->loop.Unwatch(second);
  close(first);
  close(second);
  EXPECT_LE(YieldsIn20Milliseconds(this->loop), 3) << "a descriptor that is gone must not make the loop spin";
}

REGISTER_TYPED_TEST_SUITE_P(LoopContract, BlockedTimerDeliversOneTickThenItsGridEvenWhileItsHandlerWaits,
                            TimerMayDestroyItselfAndOthers, StoppedTimerDropsATickThatWasDue,
                            WatchesMayEndEachOtherAndRecurseAndClosedOnesAreDropped);

}  // namespace corvane
