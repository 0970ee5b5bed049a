#pragma once

#include "desk.h"
#include "options.h"

namespace corvane::console {

/// For `set` of a password: reads it and appends it to the arguments; false where nothing was given.
[[nodiscard]] bool ReadPassword(Options& options);

/// Enters the settings of the arguments; throws `UsageError` for what is not taken. **Yields.**
[[nodiscard]] int SetSettings(Desk& desk, const Options& options);
/// Prints one setting, or all.
[[nodiscard]] int GetSettings(Desk& desk, const Options& options);

}  // namespace corvane::console
