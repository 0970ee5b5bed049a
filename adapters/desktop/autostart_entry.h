#pragma once

#include <string>

#include "base/status.h"

namespace corvane {

/// What an XDG autostart entry starts.
struct AutostartEntry {
  std::string name;
  std::string program;    ///< full path
  std::string home;       ///< value of --home; empty for none
  std::string arguments;  ///< as they stand behind the program
};

/// True when the entry file exists and its [Desktop Entry] group does not say Hidden=true.
[[nodiscard]] bool IsEntryActive(const std::string& path);

/// Writes the entry file whole or not at all, with the folders above it. Source of the format: Desktop Entry
/// Specification 1.5.
Status WriteEntry(const std::string& path, const AutostartEntry& entry);

}  // namespace corvane
