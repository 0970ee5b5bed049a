#pragma once

#include <string>
#include <string_view>

namespace corvane {

/// What the value of a key of the section General means, for one that has a unit of measure: "6" of AutomaticInterval
/// is "6 days". Empty for any other key, and for a value that means nothing.
[[nodiscard]] std::string ValueInWords(std::string_view as_Key, std::string_view as_Value);

}  // namespace corvane
