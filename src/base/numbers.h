#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace corvane {

/// The number that `text` begins with (blanks before it skipped, sign, decimal point and exponent allowed), 0 when
/// there is none or it is beyond the range of a double.
[[nodiscard]] double LeadingNumber(std::string_view text);
/// The whole of `text` as a number with "." as the decimal point, blanks around it allowed; none when it is not one.
[[nodiscard]] std::optional<double> ParseNumber(std::string_view text);
/// The whole of `text` as an integer within the limits, blanks around it allowed; none when it is not one.
[[nodiscard]] std::optional<std::int64_t> ParseInteger(std::string_view text, std::int64_t lowest,
                                                       std::int64_t highest);
/// The leading number of `text` cut to an integer and held within the 32-bit range.
[[nodiscard]] std::int32_t LeadingInteger(std::string_view text);

/// The shortest decimal text that reads back to the same single-precision number ("0", "12.5").
[[nodiscard]] std::string ShortestText(float number);
/// The shortest decimal text that reads back to the same number, without an exponent up to 15 digits.
[[nodiscard]] std::string ShortestText(double number);
/// Appends `number` with exactly `decimals` (0 to 6) decimals; halves of its 15-digit decimal text go away from zero.
///
/// Never writes "-0.00". Values beyond 1e15 are written in full; infinities are written as "inf", what is no number as
/// "nan".
void AppendFixed(std::string& out, double number, int decimals);
/// `number` with exactly `decimals` decimals, rounded as `AppendFixed` does.
[[nodiscard]] std::string FixedText(double number, int decimals);
/// `number` rounded to a whole number (halves away from zero) with "," between groups of three digits ("#,##0").
[[nodiscard]] std::string GroupedText(double number);
/// The lowest `digits` hexadecimal digits of `number`, upper case, with leading zeros.
[[nodiscard]] std::string HexText(std::uint64_t number, int digits);

}  // namespace corvane
