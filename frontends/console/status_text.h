// The status for people and for monitoring programs.
#pragma once

#include <string>

#include "history/network_status.h"

namespace corvane::console {

/// How things stand in a few lines, a table of the units, and what is wrong with each.
[[nodiscard]] std::string StatusTable(const NetworkStatus& status);

/// What a monitoring plug-in prints and ends with.
struct CheckResult {
  std::string line;  ///< with its line end
  int exit_status;   ///< 0 well, 1 warning, 2 critical, 3 unknown
};
[[nodiscard]] CheckResult StatusCheck(const NetworkStatus& status);
/// The same where the status cannot be told.
[[nodiscard]] CheckResult CheckUnknown(const std::string& why);

}  // namespace corvane::console
