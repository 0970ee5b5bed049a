#pragma once

#include "desk.h"
#include "options.h"

namespace corvane::console {

/// `download`: brings in new readings and converts them. **Yields.**
[[nodiscard]] int Download(Desk& desk, const Options& options);
/// The commands that units answer with one line: `get-date`, `set-mode` and their like. **Yields.**
[[nodiscard]] int UnitCommand(Desk& desk, const Options& options);

}  // namespace corvane::console
