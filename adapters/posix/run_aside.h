#pragma once

#include <chrono>
#include <future>
#include <utility>

#include "platform/event_loop.h"

namespace corvane {

/// Runs `work` on a thread of its own, the loop meanwhile, and returns its result. **Yields.**
///
/// For calls that may block for long on a disk. `work` may touch nothing that the loop's handlers touch.
template <class Work>
auto RunAside(EventLoop& loop, Work work) {
  constexpr std::chrono::milliseconds kTurn(5);
  auto result = std::async(std::launch::async, std::move(work));
  while (result.wait_for(kTurn) != std::future_status::ready) loop.Poll();
  return result.get();
}

}  // namespace corvane
