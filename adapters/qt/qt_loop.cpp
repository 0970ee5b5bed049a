#include "qt/qt_loop.h"

#include <algorithm>
#include <utility>

#include <QCoreApplication>
#include <QScopeGuard>
#include <QSocketNotifier>

namespace corvane {
namespace {

/// A wait that nothing would end otherwise looks again after so long.
constexpr int kWakeUpMilliseconds = 100;

}  // namespace

/// A toolkit timer does not fire inside its own slot, so the slot only posts the tick.
class QtLoop::PeriodicTimer : public Timer {
 public:
  PeriodicTimer(QtLoop& loop, std::function<void()> on_tick) : loop_(loop), state_(std::make_shared<State>()) {
    state_->on_tick = std::move(on_tick);
    timer_.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { PostTick(); });
  }
  ~PeriodicTimer() override { state_->session = 0; }

  void Start(std::int64_t milliseconds) override {
    state_->session = ++sessions_;
    timer_.start(static_cast<int>(std::clamp<std::int64_t>(milliseconds, 1, INT32_MAX)));
  }
  void Stop() override {
    state_->session = 0;
    timer_.stop();
  }
  [[nodiscard]] bool Running() const override { return timer_.isActive(); }
  [[nodiscard]] std::int64_t Interval() const override { return sessions_ == 0 ? 0 : timer_.interval(); }

 private:
  struct State {
    std::function<void()> on_tick;
    std::uint64_t session = 0;  ///< 0 while stopped
    bool posted = false;
  };

  void PostTick() {
    if (state_->posted) return;
    state_->posted = true;
    loop_.Post([state = state_, session = state_->session] {
      state->posted = false;
      if (session == state->session) state->on_tick();
    });
  }

  QtLoop& loop_;
  QTimer timer_;
  std::shared_ptr<State> state_;  ///< outlives the timer while a tick runs
  std::uint64_t sessions_ = 0;
};

QtLoop::QtLoop() {
  QObject::connect(&wake_up_, &QTimer::timeout, &receiver_, [] {});
}

QtLoop::~QtLoop() = default;

DateTime QtLoop::Now() const {
  return clock_.Now();
}

Moment QtLoop::NowUtc() const {
  return clock_.NowUtc();
}

std::int64_t QtLoop::MonotonicMilliseconds() const {
  return LocalClock::MonotonicMilliseconds();
}

std::unique_ptr<Timer> QtLoop::MakeTimer(std::function<void()> on_tick) {
  return std::make_unique<PeriodicTimer>(*this, std::move(on_tick));
}

void QtLoop::Post(std::function<void()> task) {
  QMetaObject::invokeMethod(&receiver_, std::move(task), Qt::QueuedConnection);
}

void QtLoop::Yield() {
  if (depth_++ == 0) wake_up_.start(kWakeUpMilliseconds);
  const auto left = qScopeGuard([this] {
    if (--depth_ == 0) wake_up_.stop();
  });
  QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
}

void QtLoop::Poll() {
  QCoreApplication::processEvents(QEventLoop::AllEvents);
}

void QtLoop::WatchRead(int descriptor, std::function<void()> handler) {
  SetHandler(readers_, descriptor, QSocketNotifier::Read, std::move(handler));
}

void QtLoop::WatchWrite(int descriptor, std::function<void()> handler) {
  SetHandler(writers_, descriptor, QSocketNotifier::Write, std::move(handler));
}

void QtLoop::Unwatch(int descriptor) {
  WatchRead(descriptor, nullptr);
  WatchWrite(descriptor, nullptr);
}

void QtLoop::SetHandler(std::map<int, Watch>& watches, int descriptor, int type, std::function<void()> handler) {
  if (!handler && watches.find(descriptor) == watches.end()) return;
  Watch& watch = watches[descriptor];
  watch.handler = handler ? std::make_shared<const std::function<void()>>(std::move(handler)) : nullptr;
  if (!watch.notifier) {
    watch.notifier = std::make_unique<QSocketNotifier>(descriptor, static_cast<QSocketNotifier::Type>(type));
    QObject::connect(watch.notifier.get(), &QSocketNotifier::activated, &receiver_, [&watch] {
      const auto called = watch.handler;
      if (called) (*called)();
    });
  }
  watch.notifier->setEnabled(watch.handler != nullptr);
}

}  // namespace corvane
