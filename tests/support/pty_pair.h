#pragma once

#include <cstdlib>
#include <functional>
#include <string>
#include <string_view>

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include "platform/event_loop.h"

namespace corvane {

/// Runs `loop` until `done`, at most 2 s; returns whether it was.
inline bool RunUntil(EventLoop& loop, const std::function<bool()>& done) {
  bool late = false;
  const auto limit = loop.MakeTimer([&] { late = true; });
  limit->Start(2000);
  while (!done() && !late) loop.Yield();
  return done();
}

/// How often `loop` comes back from waiting within 20 ms; a descriptor that is ready for ever makes it many.
inline int YieldsIn20Milliseconds(EventLoop& loop) {
  int yields = 0;
  const auto timer = loop.MakeTimer([] {});
  timer->Start(20);
  for (const auto end = loop.MonotonicMilliseconds() + 20; loop.MonotonicMilliseconds() < end; ++yields) loop.Yield();
  return yields;
}

/// A pseudo-terminal: the test holds the far end, the code under test opens `path()`.
class PtyPair {
 public:
  PtyPair() : far_end_(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {
    grantpt(far_end_);
    unlockpt(far_end_);
    path_ = ptsname(far_end_);
    near_end_ = open(path_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    termios raw{};
    tcgetattr(near_end_, &raw);
    cfmakeraw(&raw);
    tcsetattr(near_end_, TCSANOW, &raw);
  }
  ~PtyPair() { HangUp(); }
  PtyPair(const PtyPair&) = delete;
  PtyPair& operator=(const PtyPair&) = delete;

  [[nodiscard]] const std::string& path() const { return path_; }
  [[nodiscard]] int far_end() const { return far_end_; }
  void Send(std::string_view text) const { static_cast<void>(!write(far_end_, text.data(), text.size())); }
  /// What the code under test has written and nobody has taken yet.
  [[nodiscard]] std::string Take() const {
    std::string all;
    for (char byte = 0; read(far_end_, &byte, 1) == 1;) all += byte;
    return all;
  }
  /// Unplugs the device.
  void HangUp() {
    close(near_end_);
    close(far_end_);
    far_end_ = near_end_ = -1;
  }

 private:
  int far_end_;
  int near_end_;
  std::string path_;
};

}  // namespace corvane
