#pragma once

#include <string>

#include "options.h"

namespace corvane::console {

/// Runs the command of `options` on the application folder that they and the environment name, and returns the exit
/// status.
[[nodiscard]] int RunProgram(const Options& options);

}  // namespace corvane::console
