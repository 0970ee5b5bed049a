#pragma once

#include <cstdint>
#include <memory>

#include "platform/event_loop.h"
#include "state/link_state.h"
#include "state/run_flags.h"
#include "trace/trace.h"

namespace corvane {

/// Deliberate waits between steps.
class Pauser {
 public:
  Pauser(const LinkState& av_Link, const RunFlags& av_Flags, EventLoop& av_Loop, Trace& av_Trace)
      : link_(av_Link), flags_(av_Flags), loop_(av_Loop), trace_(av_Trace) {}

  /// Waits without blocking the window until `al_Milliseconds` have passed, the user cancels or the program closes.
  ///
  /// **Yields**: port events, timers and commands run meanwhile. Above 100 ms the wait is traced; above 1000 ms the
  /// status line shows it. 0 and less return at once.
  void Pause(std::int64_t al_Milliseconds);
  /// The same without a word about it. **Yields.**
  void Wait(std::int64_t al_Milliseconds);

 private:
  /// The pause is over.
  void PauseTick();

  const LinkState& link_;
  const RunFlags& flags_;
  EventLoop& loop_;
  Trace& trace_;
  std::unique_ptr<Timer> timer_ = loop_.MakeTimer([this] { PauseTick(); });
  bool pausing_ = false;
};

}  // namespace corvane
