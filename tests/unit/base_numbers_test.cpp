#include "base/numbers.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <tuple>
#include <utility>

namespace corvane::test {
namespace {

TEST(Numbers, AreWrittenWithFixedDecimals) {
  constexpr std::tuple<double, int, const char*> kRows[] = {
      {0.125, 2, "0.13"},
      {-1.005, 2, "-1.01"},
      {2.5, 0, "3"},
      {0.49999999999999994, 0, "1"},  // 15 digits of it read 0.5
      {0.0049999, 2, "0.00"},
      {999.995, 2, "1000.00"},
      {0.0000005, 6, "0.000001"},
      {-0.001, 2, "0.00"},
      {1234567890.125, 2, "1234567890.13"},
      {99999999999999.5, 0, "100000000000000"},
      {123456789012345.0, 6, "123456789012345.000000"},
      {1e15, 2, "1000000000000000.00"},
      {std::numeric_limits<double>::infinity(), 2, "inf"},
      {-std::numeric_limits<double>::quiet_NaN(), 2, "nan"},
  };
  for (const auto& [number, decimals, text] : kRows) EXPECT_EQ(FixedText(number, decimals), text);
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

TEST(Numbers, AreReadFromTheStartOrAsAWhole) {
  constexpr std::tuple<const char*, double, bool> kRows[] = {
      {"512", 512, true},  {" \t-12.5", -12.5, true},
      {"-.5", -0.5, true}, {"1e3", 1000, true},
      {"1e", 1, false},    {"2,5", 2, false},
      {"0x10", 0, false},  {"", 0, false},
      {"-", 0, false},     {"inf", 0, false},
      {"1e400", 0, false}, {"12345678901234567890", 12345678901234567890.0, true},
  };
  for (const auto& [text, leading, whole] : kRows) {
    EXPECT_EQ(LeadingNumber(text), leading) << text;
    EXPECT_EQ(ParseNumber(text), whole ? std::optional<double>(leading) : std::nullopt) << text;
  }
}

TEST(Numbers, AreReadAsIntegers) {
  constexpr std::tuple<const char*, std::optional<std::int64_t>, std::int32_t> kRows[] = {
      {"+5", 5, 5},
      {"101", std::nullopt, 101},
      {"+-5", std::nullopt, 0},
      {"-4.9", std::nullopt, -4},
      {"99999999999999999999", std::nullopt, std::numeric_limits<std::int32_t>::max()},
      {"-3e9", std::nullopt, std::numeric_limits<std::int32_t>::min()},
  };
  for (const auto& [text, parsed, leading] : kRows) {
    EXPECT_EQ(ParseInteger(text, -100, 100), parsed) << text;
    EXPECT_EQ(LeadingInteger(text), leading) << text;
  }
}

TEST(Numbers, AreWrittenShort) {
  const std::pair<std::string, const char*> rows[] = {
      {ShortestText(0.1F), "0.1"},
      {ShortestText(-0.0), "0"},
      {ShortestText(1e10F), "10000000000"},
      {ShortestText(123456789012345.0), "123456789012345"},
      {ShortestText(1e300), "1e+300"},
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
