#pragma once

#include <string>
#include <string_view>

namespace corvane::console {

/// What bash or zsh reads to complete the words behind corvanectl: commands, options, and by asking the program the
/// names of units and the keys of settings.
[[nodiscard]] std::string CompletionScript(std::string_view shell);

}  // namespace corvane::console
