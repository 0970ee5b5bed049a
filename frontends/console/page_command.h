#pragma once

#include <string>

#include "desk.h"
#include "options.h"

namespace corvane::console {

/// Writes the page for a browser.
[[nodiscard]] int MakePage(Desk& desk, const Options& options);
/// The same of the application folder `folder`, whose settings cannot be read: without charts of the raw files.
[[nodiscard]] int MakePageOfHistory(const Options& options, const std::string& folder);

}  // namespace corvane::console
