#pragma once

#include <chrono>
#include <functional>
#include <future>
#include <utility>

#include "platform/event_loop.h"

namespace corvane {

/// Runs `work` on a thread of its own, the loop meanwhile, and returns its result. **Yields.**
///
/// For calls that may block for long on a disk. `work` may touch nothing that the loop's handlers touch. `on_turn` is
/// called in the loop's thread every few milliseconds while the work goes on.
template <class Work>
auto RunAside(EventLoop& loop, Work work, const std::function<void()>& on_turn = {}) {
  constexpr std::chrono::milliseconds kTurn(5);
  auto result = std::async(std::launch::async, std::move(work));
  while (result.wait_for(kTurn) != std::future_status::ready) {
    loop.Poll();
    if (on_turn) on_turn();
  }
  return result.get();
}

}  // namespace corvane
