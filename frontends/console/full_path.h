#pragma once

#include <filesystem>
#include <string>
#include <system_error>

namespace corvane::console {

/// A path as it was typed, from the root and without "." and "..".
[[nodiscard]] inline std::string FullPath(const std::string& path) {
  std::error_code error;
  return std::filesystem::absolute(path, error).lexically_normal().string();
}

}  // namespace corvane::console
