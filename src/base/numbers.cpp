#include "base/numbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

#include "base/number_fields.h"
#include "base/text.h"

namespace corvane {
namespace {

constexpr int kSignificantDigits = 15;
constexpr double kLargestPlain = 1e15;
constexpr double kLargestInteger = 1e18;

/// The number at the start of `text` (one sign at most); where it ends is left in `end`, the start when there is none.
double NumberAtStart(std::string_view text, const char*& end) {
  end = text.data();
  if (text.starts_with('+')) {
    text.remove_prefix(1);
    if (text.starts_with('-')) return 0;
  }
  const std::size_t first = text.starts_with('-') ? 1 : 0;
  if (first == text.size() || (!IsDigit(text[first]) && text[first] != '.')) return 0;
  double number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  if (result.ec == std::errc()) end = result.ptr;
  return result.ec == std::errc() ? number : 0;
}

/// Writes `rounded`, the size of `number` scaled by `decimals` places, with its sign and point; returns the end.
char* PutRounded(char* out, double number, std::uint64_t rounded, int decimals) {
  std::array<char, 24> digits;
  char* const end = digits.data() + digits.size();
  char* begin = end;
  const bool negative = std::signbit(number) && rounded != 0;
  for (int position = 0; position < decimals; ++position, rounded /= 10) {
    *--begin = static_cast<char>('0' + rounded % 10);
  }
  if (decimals > 0) *--begin = '.';
  do {
    *--begin = static_cast<char>('0' + rounded % 10);
    rounded /= 10;
  } while (rounded != 0);
  if (negative) *--begin = '-';
  return std::copy(begin, end, out);
}

/// Rounds the 15-digit decimal text of `number` (not negative, below 1e15) to `decimals`, halves up, as an integer.
std::uint64_t RoundDecimalText(double number, int decimals) {
  std::array<char, 32> text;
  const auto written = std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::scientific,
                                     kSignificantDigits - 1);
  const char* const exponent_at = std::find(text.data(), written.ptr, 'e');
  int exponent = 0;
  std::from_chars(exponent_at + (exponent_at[1] == '+' ? 2 : 1), written.ptr, exponent);
  std::uint64_t rounded = 0;
  const int kept = exponent + 1 + decimals;  // digits of the text that stay
  int seen = 0;
  for (const char* digit = text.data(); digit != exponent_at; ++digit) {
    if (!IsDigit(*digit)) continue;
    if (seen == kept) return rounded + (*digit >= '5' ? 1 : 0);
    if (kept < 0) return 0;
    rounded = rounded * 10 + static_cast<std::uint64_t>(*digit - '0');
    ++seen;
  }
  for (; seen < kept; ++seen) rounded *= 10;
  return rounded;
}

template <class Number>
std::string Shortest(Number number) {
  if (number == 0) return "0";
  std::array<char, 400> text;
  const bool plain = std::abs(number) < Number(kLargestPlain) && std::abs(number) >= Number(1e-5);
  const auto written = plain ? std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed)
                             : std::to_chars(text.data(), text.data() + text.size(), number);
  return {text.data(), written.ptr};
}

}  // namespace

double LeadingNumber(std::string_view text) {
  const char* end = nullptr;
  return NumberAtStart(text.substr(std::min(text.find_first_not_of(" \t"), text.size())), end);
}

std::optional<double> ParseNumber(std::string_view text) {
  text = Trim(text);
  const char* end = nullptr;
  const double number = NumberAtStart(text, end);
  if (text.empty() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

std::optional<std::int64_t> ParseInteger(std::string_view text, std::int64_t lowest, std::int64_t highest) {
  text = Trim(text);
  if (text.starts_with('+')) {
    text.remove_prefix(1);
    if (text.starts_with('-')) return std::nullopt;
  }
  std::int64_t number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  if (result.ec != std::errc() || result.ptr != text.data() + text.size() || text.empty()) return std::nullopt;
  if (number < lowest || number > highest) return std::nullopt;
  return number;
}

std::int32_t LeadingInteger(std::string_view text) {
  using Limits = std::numeric_limits<std::int32_t>;
  return static_cast<std::int32_t>(std::clamp<double>(std::trunc(LeadingNumber(text)), Limits::min(), Limits::max()));
}

std::string ShortestText(float number) {
  return Shortest(number);
}

std::string ShortestText(double number) {
  return Shortest(number);
}

char* PutDecimalText(char* out, double number, int decimals) {
  const double size = std::abs(number);
  const double scaled = size * kPowersOfTen[static_cast<std::size_t>(decimals)];
  if (std::isnan(number)) {
    constexpr std::string_view kNoNumber = "nan";
    return std::copy(kNoNumber.begin(), kNoNumber.end(), out);
  }
  if (size >= kLargestPlain) {
    return std::to_chars(out, out + kLongestFixed, number, std::chars_format::fixed, decimals).ptr;
  }
  if (scaled >= kLargestInteger) {  // more decimals than the 15-digit text has
    return std::fill_n(PutFixed(out, number, decimals - 3), 3, '0');
  }
  return PutRounded(out, number, RoundDecimalText(size, decimals), decimals);
}

void AppendFixed(std::string& out, double number, int decimals) {
  std::array<char, kLongestFixed> text;
  out.append(text.data(), PutFixed(text.data(), number, std::clamp(decimals, 0, kMostDecimals)));
}

std::string FixedText(double number, int decimals) {
  std::string text;
  AppendFixed(text, number, decimals);
  return text;
}

std::string GroupedText(double number) {
  std::string text = FixedText(number, 0);
  const std::size_t sign = text.starts_with('-') ? 1 : 0;
  for (std::size_t at = text.size(); at > sign + 3;) text.insert(at -= 3, 1, ',');
  return text;
}

std::string HexText(std::uint64_t number, int digits) {
  static constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string text(static_cast<std::size_t>(digits), '0');
  for (auto place = text.rbegin(); place != text.rend(); ++place, number >>= 4) *place = kDigits[number & 0xF];
  return text;
}

}  // namespace corvane
