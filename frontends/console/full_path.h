#pragma once

#include <filesystem>
#include <string>
#include <system_error>

#include "base/paths.h"

namespace corvane::console {

/// A path as it was typed, from the root.
[[nodiscard]] inline std::string FullPath(const std::string& path) {
  std::error_code error;
  if (path.starts_with('/')) return path;
  return AddBackslash(std::filesystem::current_path(error).string()) + path;
}

}  // namespace corvane::console
