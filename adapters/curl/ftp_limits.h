#pragma once

#include <cstdint>

namespace corvane {

/// How long the FTP client waits, in milliseconds.
struct FtpLimits {
  std::int64_t connect = 20'000;   ///< from the call to the end of the login
  std::int64_t reply = 30'000;     ///< for the reply to a command
  std::int64_t stalled = 30'000;   ///< during a transfer in which no byte moves
  std::int64_t trickle = 120'000;  ///< in which a transfer moves `trickle_bytes` at least
  std::int64_t trickle_bytes = 1000;
  std::int64_t goodbye = 1'000;  ///< for the reply to QUIT
  std::int64_t idle = 240'000;   ///< a login unused for so long is made anew: servers drop idle ones at 300 s
};

}  // namespace corvane
