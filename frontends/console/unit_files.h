#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace corvane::console {

/// Readings in a raw file: its whole lines without the header; none when it cannot be read.
[[nodiscard]] std::optional<std::int64_t> CountReadings(const std::string& raw_file);
/// The date of a raw file's last reading as a text; empty when it holds none.
[[nodiscard]] std::string LastReading(const std::string& raw_file);

/// Tells one state of a file from the next, also within a second; 0 when there is no file.
[[nodiscard]] std::uint64_t FileMark(const std::string& file);

}  // namespace corvane::console
