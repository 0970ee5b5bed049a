#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace corvane {

/// The CRC-32 of `bytes` (polynomial 0x04C11DB7 reflected, as in IEEE 802.3).
[[nodiscard]] inline std::uint32_t Crc32(std::string_view bytes) {
  static constexpr auto kTable = [] {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t i = 0; i < table.size(); ++i) {
      table[i] = i;
      for (int bit = 0; bit < 8; ++bit) table[i] = table[i] >> 1U ^ (table[i] % 2 != 0 ? 0xEDB88320U : 0U);
    }
    return table;
  }();
  std::uint32_t sum = 0xFFFFFFFFU;
  for (const char c : bytes) sum = sum >> 8U ^ kTable[(sum ^ static_cast<unsigned char>(c)) & 0xFFU];
  return ~sum;
}

}  // namespace corvane
