#pragma once

#include <charconv>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace corvane::basestation {

/// The whole text as a decimal number from `least` to `most`, nothing when it is none.
[[nodiscard]] std::optional<std::int64_t> ParseInteger(std::string_view text, std::int64_t least, std::int64_t most);

/// The whole text as a number with a fraction, nothing when it is none.
[[nodiscard]] std::optional<double> ParseNumber(std::string_view text);

/// The text cut at every separator, empty parts included, blanks around the parts dropped; the parts point into it.
[[nodiscard]] std::vector<std::string_view> Split(std::string_view text, char separator);

/// The words of a text, cut at blanks and tabs; they point into it.
[[nodiscard]] std::vector<std::string_view> Words(std::string_view text);

/// The text without blanks, tabs and carriage returns at its ends.
[[nodiscard]] std::string_view Trim(std::string_view text);

/// Appends a number in decimal.
template <typename Number>
void AppendNumber(std::string& out, Number number) {
  char digits[24];
  const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
  out.append(digits, end);
}

/// A set of numbers.
class NumberSet {
 public:
  using Range = std::pair<std::int64_t, std::int64_t>;

  /// Every number.
  NumberSet() : ranges_{{0, std::numeric_limits<std::int64_t>::max()}} {}
  /// The numbers of the ranges, first and last included.
  explicit NumberSet(std::vector<Range> ranges) : ranges_(std::move(ranges)) {}

  [[nodiscard]] bool Contains(std::int64_t number) const;

 private:
  std::vector<Range> ranges_;
};

/// The set written as "*", "3", "1-4", "2-" or several of these joined by ",", nothing when the text is none.
[[nodiscard]] std::optional<NumberSet> ParseNumberSet(std::string_view text);

}  // namespace corvane::basestation
