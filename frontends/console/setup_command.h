#pragma once

#include "desk.h"
#include "options.h"

namespace corvane::console {

/// `setup`: asks for everything that a network needs, page by page, tries it and puts it in at the end. **Yields.**
[[nodiscard]] int SetUp(Desk& desk, const Options& options);

}  // namespace corvane::console
