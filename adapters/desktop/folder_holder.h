#pragma once

#include <optional>
#include <string>

namespace corvane {

/// Whether some program holds the application folder's lock, without touching the lock: a program that starts at this
/// moment must get it. None where this machine does not tell (another machine's folder, another space of processes).
[[nodiscard]] std::optional<bool> FolderIsHeld(const std::string& folder);
/// Who holds it, such as "corvane (process 812)"; empty where nobody does, or this machine does not tell.
[[nodiscard]] std::string HolderOfFolder(const std::string& folder);

}  // namespace corvane
