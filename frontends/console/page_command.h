#pragma once

#include "desk.h"
#include "options.h"

namespace corvane::console {

/// Writes the page for a browser.
[[nodiscard]] int MakePage(Desk& desk, const Options& options);

}  // namespace corvane::console
