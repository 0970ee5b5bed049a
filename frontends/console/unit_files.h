#pragma once

#include <string>

namespace corvane::console {

/// The date of a raw file's last reading as a text; empty when its end holds none.
[[nodiscard]] std::string LastReading(const std::string& raw_file);

}  // namespace corvane::console
