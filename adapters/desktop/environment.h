#pragma once

#include <cstdlib>
#include <string>

namespace corvane {

/// The value of a variable of the environment, empty when it is not set.
[[nodiscard]] inline std::string Environment(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

}  // namespace corvane
