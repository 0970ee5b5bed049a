#include "base/format.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "base/outside_text.h"
#include "base/text.h"

namespace corvane::test {
namespace {

TEST(DatePatterns, WriteEveryField) {
  constexpr std::pair<const char*, const char*> kRows[] = {
      {"d mmm yyyy HH:MM", "5 Mar 2010 14:07"},
      {"yymmddHHNNSS", "100305140709"},
      {"DDDD, dd MMMM YYYY", "Friday, 05 March 2010"},
      {"ddd d/m/yy", "Fri 5/3/10"},
      {"hh.mm dd.mm", "14.07 05.03"},
      {"mm:ss", "07:09"},
      {"hh:mmm", "14:Mar"},
      {"hh:nn am/pm", "02:07 PM"},
      {"[x]_\xC2\xB0 'q'", "[x]_\xC2\xB0 'q'"},
  };
  const DateTime when = DateTime::FromCivil(2010, 3, 5, 14, 7, 9);
  for (const auto& [pattern, expected] : kRows) EXPECT_EQ(FormatDate(when, pattern), expected) << pattern;
  EXPECT_EQ(FormatDate(when.Midnight(), "h am/pm"), "12 AM");
  EXPECT_EQ(FormatDate(when.Midnight() + kSecondsPerDay / 2, "h am/pm"), "12 PM");
}

TEST(DatePatterns, ReadWhatTheyWroteWhereItTellsTheMinute) {
  constexpr std::pair<const char*, bool> kRows[] = {
      {"d mmm yyyy HH:MM", true}, {"yymmddHHNN", true},    {"DDDD, d MMMM yy h:nn AM/PM", true},
      {"d/m/yyyy", false},        {"dmyyyy HH:NN", false}, {"HH:MM", false},
  };
  for (const auto& [pattern, expected] : kRows) {
    const DatePattern dates(pattern);
    EXPECT_EQ(dates.TellsMinute(), expected) << pattern;
    for (const int hour : {0, 12, 14}) {
      const DateTime when = DateTime::FromCivil(2010, 5, 3, hour, 7);
      const std::string text = dates.Text(when) + ", 12";
      std::string_view rest = text;
      const std::optional<DateTime> read = dates.TakeFrom(rest);
      if (!expected) continue;
      EXPECT_EQ(read ? GeneralDate(*read) : "refused", GeneralDate(when)) << text;
      EXPECT_EQ(rest, ", 12") << text;
    }
    std::string_view other = "yesterday, 12";
    EXPECT_FALSE(dates.TakeFrom(other));
  }
}

TEST(Dates, AreReadInTheFormsTheyAreWritten) {
  constexpr std::pair<const char*, const char*> kRows[] = {
      {"  1 december  1999 ", "1999-12-01 00:00:00"},
      {"2010-03-12 14:05:09", "2010-03-12 14:05:09"},
      {"2010/3/12 4:05", "2010-03-12 04:05:00"},
      {"30 Feb 2010 23:59:59", "2010-03-02 23:59:59"},
      {"12 Mar 2010 +3:00", "refused"},
      {"2010/-3/12", "refused"},
      {"32 Mar 2010", "refused"},
      {"12 Mrz 2010", "refused"},
  };
  for (const auto& [text, expected] : kRows) {
    const auto date = ParseDate(text);
    EXPECT_EQ(date ? GeneralDate(*date) : "refused", expected) << text;
  }
}

TEST(Dates, AreReadAsTimesOfDay) {
  constexpr std::int64_t kRefused = -1;
  const std::pair<const char*, std::int64_t> rows[] = {
      {" 03:00 ", 10800}, {"0:30", 1800},      {"23:59:59", 86399},   {"+3:00", kRefused},
      {"3:-5", kRefused}, {"24:00", kRefused}, {"3:60", kRefused},    {"3", kRefused},
      {"3:", kRefused},   {":30", kRefused},   {"1:2:3:4", kRefused}, {"a:b", kRefused},
  };
  for (const auto& [text, expected] : rows) EXPECT_EQ(ParseTimeOfDay(text).value_or(kRefused), expected) << text;
}

/// Goes through every day of more than 400 years, counting the calendar's parts itself.
TEST(Dates, FollowTheCalendar) {
  constexpr int kLengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  DateTime when = DateTime::FromCivil(1700, 1, 1, 23, 59, 58);
  int weekday = 5;  // a Friday
  for (std::int64_t year = 1700; year < 2110; ++year) {
    const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    for (int month = 1; month <= 12; ++month) {
      const int length = kLengths[month - 1] + (leap && month == 2 ? 1 : 0);
      for (int day = 1; day <= length; ++day, when = when + kSecondsPerDay, weekday = (weekday + 1) % 7) {
        const CivilTime civil = when.ToCivil();
        ASSERT_EQ(std::tie(civil.year, civil.month, civil.day, civil.weekday), std::tie(year, month, day, weekday));
        ASSERT_EQ(civil.hour * 10000 + civil.minute * 100 + civil.second, 235958);
        ASSERT_EQ(DateTime::FromCivil(year, month, day, 23, 59, 58), when);
      }
    }
  }
}

TEST(Dates, CountDaysFromTheirDayZero) {
  EXPECT_EQ(DateTime::FromCivil(2010, 3, 12, 6).days(), 40249.25);
  EXPECT_EQ(DateTime::FromDays(40249.25), DateTime::FromCivil(2010, 3, 12, 6));
  EXPECT_EQ(DateTime(-1).TimeOfDay(), 86399);
  EXPECT_EQ(DateTime(-1).Midnight(), DateTime(-kSecondsPerDay));
  EXPECT_EQ(DurationText(-93784, true), "26:03:04");
}

TEST(Texts, AreShownCutAndSplit) {
  const std::pair<std::string, const char*> rows[] = {
      {Visible("a\r\x1B~\x7F\x80\x81\xFF"), "a[13][27]~\x7F\x80[129][255]"},
      {Printable("\xC3\xA4\x1B\x9B\xC2\x9B\xE2\x80\xAE"), "\xC3\xA4[27]?[155]?"},
      {SpreadsheetField("=A1\r"), "'=A1[13]"},
      {SpreadsheetField(" @x"), "' @x"},
      {SpreadsheetField("\"=A1\""), "'\"=A1\""},
      {SpreadsheetField("\"a"), "\"a"},
      {SpreadsheetField("-1.5"), "-1.5"},
      {ZeroPadded(-7, 3), "-007"},
      {std::string(CutCharacters("\xC3\xA4\xC3\xB6\xC3\xBC", 2)), "\xC3\xA4\xC3\xB6"},
  };
  for (const auto& [text, expected] : rows) EXPECT_EQ(text, expected);
  EXPECT_EQ(Split(",a,", ','), (std::vector<std::string_view>{"", "a", ""}));
  EXPECT_LT(CompareNoCase("Unit", "unit 1"), 0);
}

}  // namespace
}  // namespace corvane::test
