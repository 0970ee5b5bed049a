#pragma once

#include <filesystem>
#include <string>
#include <system_error>

#include "base/paths.h"
#include "state/app_info.h"

namespace corvane::console {

/// A path as it was typed, from the root and without "." and "..": what is typed begins in the current folder.
[[nodiscard]] inline std::string FullPath(const std::string& path) {
  std::error_code error;
  return std::filesystem::absolute(path, error).lexically_normal().string();
}

/// The same for what names a file or folder in the settings: an empty text, and a path of another system, stay.
[[nodiscard]] inline std::string TypedPath(const AppInfo& app, const std::string& typed) {
  const std::string path = WithSlashes(typed);
  if (path.empty() || !app.AppPath(path).starts_with('/')) return typed;
  std::string full = FullPath(path);
  while (full.size() > 1 && full.ends_with('/')) full.pop_back();
  return full;
}

}  // namespace corvane::console
