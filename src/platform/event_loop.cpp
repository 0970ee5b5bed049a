#include "platform/event_loop.h"

#include <chrono>
#include <future>
#include <system_error>

namespace corvane {

void EventLoop::Aside(const std::function<void()>& work, const std::function<void()>& on_turn) {
  constexpr std::chrono::milliseconds kTurn(5);
  std::future<void> done;
  try {
    done = std::async(std::launch::async, std::ref(work));
  } catch (const std::system_error&) {
    return work();  // no thread is to be had: better late than never
  }
  while (done.wait_for(kTurn) != std::future_status::ready) {
    Poll();
    if (on_turn) on_turn();
  }
  done.get();
}

}  // namespace corvane
