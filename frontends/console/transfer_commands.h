#pragma once

#include "desk.h"
#include "options.h"

namespace corvane::console {

/// `send`, `fetch` and `backup`. **Yields.**
[[nodiscard]] int Transfer(Desk& desk, const Options& options);

}  // namespace corvane::console
