#pragma once

#include "desk.h"
#include "options.h"

namespace corvane::console {

/// Runs the command of `options` and returns the exit status. Throws `UsageError` for names that do not exist.
/// **Yields.**
[[nodiscard]] int RunCommand(Desk& desk, const Options& options);

}  // namespace corvane::console
