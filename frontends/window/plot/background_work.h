#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

#include <QObject>
#include <QString>

namespace corvane::window {

/// Does work that may take long on one thread of its own, one after the other.
class BackgroundWork : public QObject {
 public:
  /// Tells a piece of work that nobody waits for it any more.
  using Cancelled = std::function<bool()>;
  /// Runs on the thread and touches nothing of the window; what it returns runs in the window's thread afterwards.
  using Work = std::function<std::function<void()>(const Cancelled& cancelled)>;

  explicit BackgroundWork(QObject* parent) : QObject(parent) {}
  /// Waits until the piece under way has noticed that it is cancelled.
  ~BackgroundWork() override;

  /// Does it when all before it is done.
  void Add(Work work);
  /// Drops what waits and cancels what is under way: what it returns does not run.
  void CancelAll();
  /// A piece of work has thrown: there was not enough memory, as a rule.
  std::function<void(const QString& why)> failed;
  [[nodiscard]] bool idle() const { return waiting_ == 0; }

 private:
  struct Piece {
    Work work;
    std::shared_ptr<std::atomic<bool>> cancelled;
  };
  void Run();

  std::mutex mutex_;
  std::condition_variable added_;
  std::deque<Piece> pieces_;
  std::shared_ptr<std::atomic<bool>> cancelled_ = std::make_shared<std::atomic<bool>>(false);
  std::int64_t waiting_ = 0;  ///< pieces whose end was not told; the window's thread only
  bool ending_ = false;
  std::thread thread_;
};

}  // namespace corvane::window
