#include "posix/posix_loop.h"

#include <algorithm>
#include <utility>

namespace corvane {

namespace {

constexpr std::int64_t kNanosecondsPerMillisecond = 1'000'000;
constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;
constexpr std::int64_t kLongestIntervalMilliseconds = 1'000'000'000'000;
constexpr std::int64_t kForEver = -1;

std::int64_t MonotonicNanoseconds() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return now.tv_sec * kNanosecondsPerSecond + now.tv_nsec;
}

}  // namespace

class PosixLoop::PeriodicTimer : public Timer {
 public:
  PeriodicTimer(PosixLoop& loop, std::function<void()> on_tick)
      : loop_(loop), on_tick_(std::make_shared<const std::function<void()>>(std::move(on_tick))) {}
  ~PeriodicTimer() override { Stop(); }

  void Start(std::int64_t milliseconds) override {
    if (!Running()) loop_.running_timers_.push_back(this);
    interval_ = std::clamp<std::int64_t>(milliseconds, 1, kLongestIntervalMilliseconds);
    due_ = MonotonicNanoseconds() + Step();
  }
  void Stop() override { std::erase(loop_.running_timers_, this); }
  [[nodiscard]] bool Running() const override {
    return std::find(loop_.running_timers_.begin(), loop_.running_timers_.end(), this) != loop_.running_timers_.end();
  }
  [[nodiscard]] std::int64_t Interval() const override { return interval_; }

  /// In nanoseconds of the monotonic clock.
  [[nodiscard]] std::int64_t due() const { return due_; }
  /// Moves on to the first grid point after `now`, then calls the handler, which may destroy the timer.
  void Tick(std::int64_t now) {
    due_ += ((now - due_) / Step() + 1) * Step();
    const Handler on_tick = on_tick_;
    (*on_tick)();
  }

 private:
  [[nodiscard]] std::int64_t Step() const { return interval_ * kNanosecondsPerMillisecond; }

  PosixLoop& loop_;
  Handler on_tick_;
  std::int64_t interval_ = 0;
  std::int64_t due_ = 0;
};

DateTime PosixLoop::Now() const {
  return clock_.Now();
}

Moment PosixLoop::NowUtc() const {
  return clock_.NowUtc();
}

std::int64_t PosixLoop::MonotonicMilliseconds() const {
  return LocalClock::MonotonicMilliseconds();
}

std::unique_ptr<Timer> PosixLoop::MakeTimer(std::function<void()> on_tick) {
  return std::make_unique<PeriodicTimer>(*this, std::move(on_tick));
}

void PosixLoop::Post(std::function<void()> task) {
  posted_.push_back(std::move(task));
}

void PosixLoop::Yield() {
  const bool nothing_can_come = NothingCanCome();
  while (!RunPass(NanosecondsToWait()) && !nothing_can_come) {
  }
}

void PosixLoop::Poll() {
  RunPass(0);
}

void PosixLoop::WatchRead(int descriptor, std::function<void()> handler) {
  SetHandler(descriptor, &Watch::on_readable, std::move(handler));
}

void PosixLoop::WatchWrite(int descriptor, std::function<void()> handler) {
  SetHandler(descriptor, &Watch::on_writable, std::move(handler));
}

void PosixLoop::Unwatch(int descriptor) {
  watches_.erase(descriptor);
}

void PosixLoop::SetHandler(int descriptor, Handler Watch::*direction, std::function<void()> handler) {
  Watch& watch = watches_[descriptor];
  if (watch.id == 0) watch.id = ++last_watch_id_;
  watch.*direction = handler ? std::make_shared<const std::function<void()>>(std::move(handler)) : nullptr;
  if (!watch.on_readable && !watch.on_writable) watches_.erase(descriptor);
}

PosixLoop::PeriodicTimer* PosixLoop::NextTimer() const {
  const auto next = std::min_element(running_timers_.begin(), running_timers_.end(),
                                     [](const auto* a, const auto* b) { return a->due() < b->due(); });
  return next == running_timers_.end() ? nullptr : *next;
}

bool PosixLoop::NothingCanCome() const {
  const std::size_t signal_watches = signals_.Running() ? 1 : 0;
  return watches_.size() == signal_watches && running_timers_.empty() && posted_.empty();
}

std::int64_t PosixLoop::NanosecondsToWait() const {
  if (!posted_.empty()) return 0;
  if (NothingCanCome()) return kNanosecondsPerSecond;
  if (running_timers_.empty()) return kForEver;
  return std::max<std::int64_t>(NextTimer()->due() - MonotonicNanoseconds(), 0);
}

bool PosixLoop::RunPass(std::int64_t wait_nanoseconds) {
  const bool descriptors = HandleDescriptors(wait_nanoseconds);
  const bool timers = RunDueTimers();
  const bool posted = RunPosted();
  return descriptors || timers || posted;
}

bool PosixLoop::HandleDescriptors(std::int64_t wait_nanoseconds) {
  std::vector<pollfd> polled;
  std::vector<std::uint64_t> ids;
  for (const auto& [descriptor, watch] : watches_) {
    const int events = (watch.on_readable ? POLLIN : 0) | (watch.on_writable ? POLLOUT : 0);
    polled.push_back({descriptor, static_cast<short>(events), 0});
    ids.push_back(watch.id);
  }
  const timespec wait{wait_nanoseconds / kNanosecondsPerSecond, wait_nanoseconds % kNanosecondsPerSecond};
  const std::uint64_t this_poll = ++polls_;
  if (ppoll(polled.data(), polled.size(), wait_nanoseconds < 0 ? nullptr : &wait, nullptr) <= 0) return false;

  bool handled = false;
  // A handler that waited has polled again, so the rest of this answer is out of date.
  for (std::size_t i = 0; i < polled.size() && polls_ == this_poll; ++i) {
    if (polled[i].revents != 0 && HandleReady(polled[i], ids[i])) handled = true;
  }
  return handled;
}

bool PosixLoop::HandleReady(const pollfd& ready, std::uint64_t id) {
  if ((ready.revents & POLLNVAL) != 0) {
    Unwatch(ready.fd);
    return true;
  }
  struct Direction {
    Handler Watch::*handler;
    int events;
  };
  static constexpr Direction kDirections[] = {{&Watch::on_readable, POLLIN | POLLHUP | POLLERR},
                                              {&Watch::on_writable, POLLOUT | POLLHUP | POLLERR}};
  const std::uint64_t this_poll = polls_;
  bool handled = false;
  for (const Direction& direction : kDirections) {
    const auto found = watches_.find(ready.fd);
    if (found == watches_.end() || found->second.id != id || polls_ != this_poll) break;
    const Handler handler = found->second.*direction.handler;
    if (!handler || (ready.revents & direction.events) == 0) continue;
    handled = true;
    (*handler)();
  }
  return handled;
}

bool PosixLoop::RunDueTimers() {
  const std::int64_t now = MonotonicNanoseconds();
  bool handled = false;
  for (PeriodicTimer* next = NextTimer(); next != nullptr && next->due() <= now; next = NextTimer()) {
    handled = true;
    next->Tick(now);
  }
  return handled;
}

bool PosixLoop::RunPosted() {
  bool handled = false;
  for (std::size_t left = posted_.size(); left > 0 && !posted_.empty(); --left) {
    const std::function<void()> task = std::move(posted_.front());
    posted_.pop_front();
    handled = true;
    task();
  }
  return handled;
}

Status PosixLoop::WatchSignals(std::initializer_list<int> signals, std::function<void(int)> handler) {
  return signals_.Start(signals, std::move(handler));
}

}  // namespace corvane
