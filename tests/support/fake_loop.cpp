#include "support/fake_loop.h"

#include <algorithm>
#include <limits>

namespace corvane::test {
namespace {

constexpr std::int64_t kNever = std::numeric_limits<std::int64_t>::max();

}  // namespace

class FakeLoop::FakeTimer : public Timer {
 public:
  FakeTimer(FakeLoop& loop, std::function<void()> on_tick) : loop_(loop), on_tick_(std::move(on_tick)) {
    loop_.timers_.push_back(this);
  }
  ~FakeTimer() override { std::erase(loop_.timers_, this); }

  void Start(std::int64_t milliseconds) override {
    interval_ = std::max<std::int64_t>(1, milliseconds);
    due_ = loop_.milliseconds_ + interval_;
  }
  void Stop() override { due_ = kNever; }
  [[nodiscard]] bool Running() const override { return due_ != kNever; }
  [[nodiscard]] std::int64_t Interval() const override { return interval_; }

  [[nodiscard]] std::int64_t due() const { return due_; }
  void Tick() {
    due_ += interval_;
    const std::function<void()> on_tick = on_tick_;
    on_tick();
  }

 private:
  FakeLoop& loop_;
  std::function<void()> on_tick_;
  std::int64_t interval_ = 0;
  std::int64_t due_ = kNever;
};

std::unique_ptr<Timer> FakeLoop::MakeTimer(std::function<void()> on_tick) {
  return std::make_unique<FakeTimer>(*this, std::move(on_tick));
}

bool FakeLoop::RunPosted() {
  if (posted_.empty()) return false;
  const std::function<void()> task = std::move(posted_.front());
  posted_.pop_front();
  task();
  return true;
}

bool FakeLoop::RunEarliest(std::int64_t limit) {
  const auto timer = std::min_element(timers_.begin(), timers_.end(),
                                      [](const FakeTimer* a, const FakeTimer* b) { return a->due() < b->due(); });
  const auto delayed = std::min_element(delayed_.begin(), delayed_.end(),
                                        [](const Delayed& a, const Delayed& b) { return a.when < b.when; });
  const std::int64_t timer_due = timer == timers_.end() ? kNever : (*timer)->due();
  const std::int64_t task_due = delayed == delayed_.end() ? kNever : delayed->when;
  const std::int64_t due = std::min(timer_due, task_due);
  if (due == kNever || due > limit) return false;
  milliseconds_ = std::max(milliseconds_, due);
  if (task_due <= timer_due) {
    const std::function<void()> task = std::move(delayed->task);
    delayed_.erase(delayed);
    task();
  } else {
    (*timer)->Tick();
  }
  return true;
}

void FakeLoop::Yield() {
  ++yields_;
  if (RunPosted() || RunEarliest(kNever - 1)) return;
  throw std::logic_error("this wait would hang for ever: nothing is pending and no timer runs");
}

void FakeLoop::Poll() {
  while (RunPosted() || RunEarliest(milliseconds_)) {
  }
}

void FakeLoop::Advance(std::int64_t milliseconds) {
  const std::int64_t end = milliseconds_ + milliseconds;
  while (RunPosted() || RunEarliest(end)) {
  }
  milliseconds_ = std::max(milliseconds_, end);
}

void FakeLoop::After(std::int64_t milliseconds, std::function<void()> task) {
  delayed_.push_back({milliseconds_ + milliseconds, std::move(task)});
}

}  // namespace corvane::test
