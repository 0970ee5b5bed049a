#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace corvane {

enum class Parity : std::uint8_t { None, Even, Odd, Mark, Space };

/// How a serial line is set.
struct LineSettings {
  std::int32_t baud = 9600;
  Parity parity = Parity::None;
  int data_bits = 8;
  bool long_stop = false;  ///< 2 stop bits, or 1.5 with 5 data bits
};

/// The settings written as "baud,parity,data bits,stop bits" ("9600,N,8,1"); none when any part is not as it should be.
///
/// Baud 1 to 4000000; parity N, E, O, M or S in either case; 5 to 8 data bits; stop bits 1, 2, or 1.5 with 5 data bits.
[[nodiscard]] std::optional<LineSettings> ParseLineSettings(std::string_view text);

}  // namespace corvane
