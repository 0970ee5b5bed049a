#pragma once

#include "desk.h"
#include "options.h"

namespace corvane::console {

/// `convert`: raw files to calibrated files. **Yields.**
[[nodiscard]] int Convert(Desk& desk, const Options& options);

}  // namespace corvane::console
