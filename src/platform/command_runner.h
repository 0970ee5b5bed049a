#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "base/status.h"

namespace corvane {

/// How a command came to its end.
struct CommandEnding {
  Status status;       ///< how it could not be started, or why it was ended
  int exit_code = 0;   ///< 128 and the signal's number when a signal ended it
  std::string output;  ///< the first 64 KiB of what it printed, errors included
};

/// Runs commands of the user beside the program; never more than one at a time.
class CommandRunner {
 public:
  virtual ~CommandRunner() = default;
  CommandRunner() = default;
  CommandRunner(const CommandRunner&) = delete;
  CommandRunner& operator=(const CommandRunner&) = delete;

  [[nodiscard]] virtual bool Running() const = 0;
  /// Starts `as_Command` with the shell, in a process group of its own, with `as_Input` on its standard input.
  ///
  /// `on_end` is called in the loop's thread when all of it has ended; after `al_Seconds` its process group is ended.
  /// Must not be called while one is running.
  virtual void Start(const std::string& as_Command, const std::string& as_Input, std::int64_t al_Seconds,
                     std::function<void(const CommandEnding&)> on_end) = 0;
  /// Ends the one that runs at once, without calling `on_end`.
  virtual void Stop() = 0;
};

}  // namespace corvane
