// What the parts of the program that do not read the settings have to know of their file.
#pragma once

#include <cstddef>
#include <string_view>

namespace corvane {

inline constexpr std::string_view kSettingsFile = "corvane.ini";  ///< in the application folder
inline constexpr std::size_t kLongestValue = 126;                 ///< characters that are read of a value
inline constexpr std::string_view kEmptyValue = "null";           ///< stands for a value without text

}  // namespace corvane
