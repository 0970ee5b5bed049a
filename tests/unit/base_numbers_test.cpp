#include "base/numbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <utility>

namespace corvane::test {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

struct FixedCase {
  double number;
  int decimals;
  const char* expected;
};

constexpr FixedCase kFixed[] = {
    {0.125, 2, "0.13"},
    {1.005, 2, "1.01"},
    {-1.005, 2, "-1.01"},
    {0.5, 0, "1"},
    {2.5, 0, "3"},
    {0.49999999999999994, 0, "1"},  // 15 digits of it read 0.5
    {0.05, 0, "0"},
    {0.0049999, 2, "0.00"},
    {999.995, 2, "1000.00"},
    {1234.5678, 3, "1234.568"},
    {0.0000005, 6, "0.000001"},
    {-0.001, 2, "0.00"},
    {999999999.5, 0, "1000000000"},
    {1234567890.125, 2, "1234567890.13"},
    {99999999999999.5, 0, "100000000000000"},
    {123456789012345.0, 6, "123456789012345.000000"},
    {1234567890123.25, 6, "1234567890123.250000"},
    {-99999999999999.0, 5, "-99999999999999.00000"},
    {1e15, 2, "1000000000000000.00"},
    {kInfinity, 2, "inf"},
    {kNotANumber, 2, "nan"},
};

TEST(Numbers, AreWrittenWithFixedDecimals) {
  for (const FixedCase& row : kFixed) {
    EXPECT_EQ(FixedText(row.number, row.decimals), row.expected) << row.number << " with " << row.decimals;
  }
  EXPECT_EQ(FixedText(std::copysign(kNotANumber, -1.0), 2), "nan");
}

/// Numbers of three decimals must round as their text does, both below and above the size where the text decides.
TEST(Numbers, RoundAsTheirDecimalTextDoes) {
  for (std::int64_t thousandths = 0; thousandths < 300'000; thousandths += 7) {
    for (const std::int64_t whole : {0LL, 50'000'000LL}) {
      const std::int64_t all = whole * 1000 + thousandths;
      const std::int64_t hundredths = (all + 5) / 10;
      const std::string fraction = std::to_string(hundredths % 100 + 100).substr(1);
      ASSERT_EQ(FixedText(static_cast<double>(all) / 1000, 2), std::to_string(hundredths / 100) + "." + fraction);
    }
  }
}

struct ReadCase {
  const char* text;
  double leading;
  bool whole;  ///< the text as a whole is a number
};

constexpr ReadCase kRead[] = {
    {"512", 512, true},
    {" \t-12.5", -12.5, true},
    {"+5", 5, true},
    {"-.5", -0.5, true},
    {".5", 0.5, true},
    {"1e3", 1000, true},
    {"12abc", 12, false},
    {"1e", 1, false},
    {"1e+", 1, false},
    {"2,5", 2, false},
    {"0x10", 0, false},
    {"", 0, false},
    {".", 0, false},
    {"-", 0, false},
    {"+-5", 0, false},
    {"inf", 0, false},
    {"-nan", 0, false},
    {"1e400", 0, false},
    {"000000000000000000007", 7, true},
    {"12345678901234567890", 12345678901234567890.0, true},
};

TEST(Numbers, AreReadFromTheStartOrAsAWhole) {
  for (const ReadCase& row : kRead) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(LeadingNumber(row.text), row.leading);
    EXPECT_EQ(ParseNumber(row.text), row.whole ? std::optional<double>(row.leading) : std::nullopt);
  }
}

struct IntegerCase {
  const char* text;
  std::optional<std::int64_t> parsed;  ///< within -100 to 100
  std::int32_t leading;
};

constexpr IntegerCase kIntegers[] = {
    {"42", 42, 42},
    {"+5", 5, 5},
    {"101", std::nullopt, 101},
    {"+-5", std::nullopt, 0},
    {"", std::nullopt, 0},
    {"4.9", std::nullopt, 4},
    {"-4.9", std::nullopt, -4},
    {"99999999999999999999", std::nullopt, std::numeric_limits<std::int32_t>::max()},
    {"-3e9", std::nullopt, std::numeric_limits<std::int32_t>::min()},
};

TEST(Numbers, AreReadAsIntegers) {
  for (const IntegerCase& row : kIntegers) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(ParseInteger(row.text, -100, 100), row.parsed);
    EXPECT_EQ(LeadingInteger(row.text), row.leading);
  }
}

TEST(Numbers, AreWrittenShort) {
  const std::pair<std::string, const char*> rows[] = {
      {ShortestText(0.0F), "0"},
      {ShortestText(-0.0), "0"},
      {ShortestText(12.5F), "12.5"},
      {ShortestText(1e10F), "10000000000"},
      {ShortestText(123456789012345.0), "123456789012345"},
      {ShortestText(1e300), "1e+300"},
      {GroupedText(0), "0"},
      {GroupedText(999.5), "1,000"},
      {GroupedText(-100), "-100"},
      {GroupedText(-1234567), "-1,234,567"},
      {HexText(0x5, 2), "05"},
      {HexText(0x1FAB, 3), "FAB"},
  };
  for (const auto& [text, expected] : rows) EXPECT_EQ(text, expected);
}

}  // namespace
}  // namespace corvane::test
