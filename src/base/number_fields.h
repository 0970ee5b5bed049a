// Numbers read and written in place, inline: a conversion does so a dozen times for every row.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "base/numbers.h"

namespace corvane {

inline constexpr int kMostDecimals = 6;
/// The most characters that `PutFixed` uses.
inline constexpr std::size_t kLongestFixed = 320;
inline constexpr std::array<double, kMostDecimals + 1> kPowersOfTen = {1, 10, 100, 1e3, 1e4, 1e5, 1e6};

constexpr bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

/// The leading number of the field at `at`, which moves on to the next `separator` or, without one, to `end`.
[[nodiscard]] inline double TakeNumber(const char*& at, const char* end, char separator) {
  constexpr std::ptrdiff_t kMostDigits = 18;
  const char* const start = at;
  const char* const last = end - at > kMostDigits ? at + kMostDigits : end;
  const char* digit = at;
  std::int64_t whole = 0;
  for (; digit != last && IsDigit(*digit); ++digit) whole = whole * 10 + (*digit - '0');
  const bool plain = digit != start && (digit == end || *digit == separator);
  at = plain ? digit : std::find(digit, end, separator);
  return plain ? static_cast<double>(whole) : LeadingNumber({start, at});
}

/// `PutFixed` for the numbers that need their decimal text.
[[nodiscard]] char* PutDecimalText(char* out, double number, int decimals);

/// The eight digits of a number below 1e8, the first in the lowest byte: parts of four, two and one digit, all at once.
constexpr std::uint64_t EightDigits(std::uint32_t number) {
  const std::uint64_t fours = number / 10000 | std::uint64_t{number % 10000} << 32U;
  const std::uint64_t hundreds = (fours * 5243 >> 19U) & 0x0000007F'0000007F;
  const std::uint64_t pairs = hundreds | (fours - 100 * hundreds) << 16U;
  const std::uint64_t tens = (pairs * 103 >> 10U) & 0x000F000F'000F000F;
  return tens | (pairs - 10 * tens) << 8U;
}

/// Writes eight characters, the first from the lowest byte of `digits`.
inline void PutEight(char* out, std::uint64_t digits) {
  for (unsigned i = 0; i < 8; ++i) out[i] = static_cast<char>('0' + (digits >> (8 * i) & 0xFU));
}

/// Writes what `AppendFixed` appends to `out`, where `kLongestFixed` characters are free; returns its end.
[[nodiscard]] inline char* PutFixed(char* out, double number, int decimals) {
  constexpr double kLargestFast = 99'999'999;  // below it the scaled number is off by less than a millionth
  constexpr double kNearHalf = 1e-5;           // closer to a half than this, the decimal text decides
  const double scaled = std::abs(number) * kPowersOfTen[static_cast<std::size_t>(decimals)];
  if (!(scaled < kLargestFast)) return PutDecimalText(out, number, decimals);
  const auto below = static_cast<std::int32_t>(scaled);
  const double above_half = scaled - below - 0.5;
  if (std::abs(above_half) <= kNearHalf) return PutDecimalText(out, number, decimals);
  const auto rounded = static_cast<std::uint32_t>(below) + (above_half > 0 ? 1U : 0U);
  *out = '-';
  out += std::signbit(number) && rounded != 0 ? 1 : 0;
  const std::uint64_t digits = EightDigits(rounded);
  const int zeros = std::min(std::countr_zero(digits) / 8, 7 - decimals);
  const int whole = 8 - decimals - zeros;
  PutEight(out, digits >> (8 * zeros));
  if (decimals == 0) return out + whole;
  out[whole] = '.';
  PutEight(out + whole + 1, digits >> (8 * (8 - decimals)));
  return out + whole + 1 + decimals;
}

}  // namespace corvane
