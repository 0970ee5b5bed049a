#pragma once

#include <string>
#include <vector>

#include "form/control.h"

namespace corvane::console {

/// What a control shows: its text, caption or title, "1" or "0" for a tick, the index of an option, the value of a
/// bar; for a list or a menu one text a row. Rows carry "[x] " when checked, and "> " before that when current or
/// selected.
[[nodiscard]] std::vector<std::string> ShownTexts(const Control& control);

}  // namespace corvane::console
