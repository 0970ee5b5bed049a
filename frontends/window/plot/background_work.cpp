#include "window/plot/background_work.h"

#include <exception>
#include <utility>

namespace corvane::window {

BackgroundWork::~BackgroundWork() {
  CancelAll();
  {
    const std::lock_guard guard(mutex_);
    ending_ = true;
  }
  added_.notify_one();
  if (thread_.joinable()) thread_.join();
}

void BackgroundWork::Add(Work work) {
  if (!thread_.joinable()) thread_ = std::thread([this] { Run(); });
  ++waiting_;
  {
    const std::lock_guard guard(mutex_);
    pieces_.push_back({std::move(work), cancelled_});
  }
  added_.notify_one();
}

void BackgroundWork::CancelAll() {
  *cancelled_ = true;
  cancelled_ = std::make_shared<std::atomic<bool>>(false);
  const std::lock_guard guard(mutex_);
  waiting_ -= static_cast<std::int64_t>(pieces_.size());
  pieces_.clear();
}

void BackgroundWork::Run() {
  while (true) {
    Piece piece;
    {
      std::unique_lock lock(mutex_);
      added_.wait(lock, [this] { return ending_ || !pieces_.empty(); });
      if (ending_) return;
      piece = std::move(pieces_.front());
      pieces_.pop_front();
    }
    std::function<void()> behind;
    try {
      behind = piece.work([&piece] { return piece.cancelled->load(); });
    } catch (const std::exception& error) {
      behind = [this, why = QString(error.what())] {
        if (failed) failed(why);
      };
    }
    QMetaObject::invokeMethod(
        this,
        [this, behind = std::move(behind), cancelled = piece.cancelled] {
          --waiting_;
          if (!*cancelled && behind) behind();
        },
        Qt::QueuedConnection);
  }
}

}  // namespace corvane::window
