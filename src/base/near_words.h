#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace corvane {

/// The one of `words` that was most likely meant by the mistyped `word`, letter case ignored: it differs by few letters
/// that are wrong, missing, too many or exchanged, or begins with `word`. Empty when none is near.
[[nodiscard]] std::string NearestWord(std::string_view word, const std::vector<std::string>& words);
/// "; did you mean WORD?" for an error message; empty when no word is near.
[[nodiscard]] std::string DidYouMean(std::string_view word, const std::vector<std::string>& words);

}  // namespace corvane
