#pragma once

#include "desk.h"
#include "options.h"

namespace corvane::console {

/// `script`: works the controls of the main window from a file. **Yields.**
[[nodiscard]] int RunScript(Desk& desk, const Options& options);

}  // namespace corvane::console
