#pragma once

#include <string>

#include "options.h"

namespace corvane::console {

/// Runs a command that works on the history alone, beside whatever program holds the application folder, and returns
/// the exit status. Throws `UsageError`.
[[nodiscard]] int RunHistoryCommand(const Options& options, const std::string& folder);

}  // namespace corvane::console
