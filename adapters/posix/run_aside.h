#pragma once

#include <chrono>
#include <functional>
#include <future>
#include <system_error>
#include <type_traits>

#include "platform/event_loop.h"

namespace corvane {

/// Runs `work` on a thread of its own, the loop meanwhile, and returns its result. **Yields.**
///
/// For calls that may block for long on a disk. `work` may touch nothing that the loop's handlers touch. `on_turn` is
/// called in the loop's thread every few milliseconds while the work goes on.
template <class Work>
auto RunAside(EventLoop& loop, Work work, const std::function<void()>& on_turn = {}) {
  constexpr std::chrono::milliseconds kTurn(5);
  std::future<std::invoke_result_t<Work&>> result;
  try {
    result = std::async(std::launch::async, std::ref(work));
  } catch (const std::system_error&) {
    return work();  // no thread is to be had: better late than never
  }
  while (result.wait_for(kTurn) != std::future_status::ready) {
    loop.Poll();
    if (on_turn) on_turn();
  }
  return result.get();
}

}  // namespace corvane
