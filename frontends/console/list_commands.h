#pragma once

#include "desk.h"
#include "options.h"

namespace corvane::console {

/// `units`: lists the units, their raw files and last readings.
[[nodiscard]] int ListUnits(Desk& desk, const Options& options);

/// `recover`: tells what became of the recovery copy, which the start has taken over.
[[nodiscard]] int Recover(Desk& desk, const Options& options);

}  // namespace corvane::console
