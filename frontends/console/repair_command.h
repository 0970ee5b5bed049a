#pragma once

#include "desk.h"
#include "options.h"

namespace corvane::console {

/// `repair`: asks units for readings that their raw files lack. **Yields.**
[[nodiscard]] int Repair(Desk& desk, const Options& options);

}  // namespace corvane::console
