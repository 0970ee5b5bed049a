#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace corvane {

/// The words of `text` between blanks and tabs.
[[nodiscard]] std::vector<std::string> SplitAtBlanks(std::string_view text);

/// Starts `command` (program, arguments) in a session of its own, without input or output, and leaves no zombie.
///
/// The program is looked up in `$PATH`. Returns 0, or the errno that kept it from starting.
[[nodiscard]] int SpawnDetached(const std::vector<std::string>& command);

}  // namespace corvane
