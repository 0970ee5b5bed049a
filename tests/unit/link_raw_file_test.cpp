#include "data/raw_file.h"

#include <gtest/gtest.h>

#include "support/world.h"

namespace corvane::test {
namespace {

const std::string kHeader = Frame("V2,00001,3,0,9,2010/3/12 00:00") + "\r\n";
const std::string kFirst = "2010/3/12 14:05,512,300\r\n";
const std::string kSecond = "2010/3/12 14:20,513,301\r\n";
const DateTime kFirstDate = DateTime::FromCivil(2010, 3, 12, 14, 5);
const DateTime kSecondDate = DateTime::FromCivil(2010, 3, 12, 14, 20);

std::string Times(const std::string& text, int count) {
  std::string result;
  for (int i = 0; i < count; ++i) result += text;
  return result;
}

class RawFileTest : public ::testing::Test {
 protected:
  LastDateResult LastDate(const std::string& contents, int polls = 1000) {
    return ReadLastDate(folder.Write("00001.epd", contents), [&] { return --polls > 0; });
  }
  TempFolder folder;
};

TEST_F(RawFileTest, FindsTheLastDate) {
  const std::string large = kHeader + Times(kFirst, 50);  // beyond 1024 bytes
  const std::string noise = Times("no reading here\r\n", 20000);
  const std::string long_line(500000, ',');
  const std::tuple<const char*, std::string, DateTime> rows[] = {
      {"header only", kHeader, DateTime()},
      {"small, last wins though earlier", kHeader + kSecond + kFirst, kFirstDate},
      {"small, first line is the header whatever it holds", kFirst, DateTime()},
      {"small, two items", kHeader + kFirst + "2010/3/12 14:20,513\r\n", kFirstDate},
      {"small, unterminated last line", kHeader + kFirst + "2010/3/12 14:20,513,301", kFirstDate},
      {"small, line with NUL", kHeader + kFirst + std::string("\0\0\0", 3) + kSecond, kFirstDate},
      {"large, LF ends", "h\n" + Times("2010/3/12 14:05,1,2\n", 60), kFirstDate},
      {"large, unterminated last line", large + "2010/3/12 14:20,513,301", kFirstDate},
      {"large, line with NUL", large + std::string(1, '\0') + kSecond, kFirstDate},
      {"large, empty lines and words at the end", large + kSecond + "\r\n\r\nwords\r\n", kSecondDate},
      {"no date in the last block", kHeader + kFirst + noise, kFirstDate},
      {"no date at all", kHeader + noise, DateTime()},
      {"a line of many blocks", kHeader + kFirst + long_line + "\r\n", kFirstDate},
      {"a reading before many blocks without an end", kHeader + "2010/1/1 00:00,1,2" + long_line, DateTime()},
  };
  for (const auto& [name, contents, expected] : rows) EXPECT_EQ(LastDate(contents).last_date, expected) << name;
  for (const std::size_t behind : {1000U, 1024U - 10U, 1024U - 25U, 1024U, 65536U + 1024U - 5U, 65536U + 1024U - 25U}) {
    const std::string end = "12010/9/9 14:20,1,2\r\n" + std::string(behind - 2, 'x') + "\r\n";
    EXPECT_EQ(LastDate(kHeader + kFirst + end).last_date, kFirstDate) << "a block ends " << behind;
  }
  EXPECT_EQ(LastDate(kHeader + kFirst + kSecond, 2).last_date, kFirstDate) << "cancelled";
  EXPECT_TRUE(LastDate(kHeader + kFirst + long_line + "\r\n", 2).last_date.IsNone()) << "cancelled";
}

TEST_F(RawFileTest, ReportsLinesThatAreNoReadings) {
  const LastDateResult result = LastDate(kHeader + "words, words, words\r\n" + kFirst + "2010/99/1 00:00,1,2\r\n");
  EXPECT_EQ(result.problems, "Line: 2 words, words, words\r\nLine: 4 2010/99/1 00:00,1,2\r\n");
  EXPECT_EQ(result.line_text, "2010/3/12 14:05,512,300");
  const std::string six = Times("words, words, words\r\n", 6);
  EXPECT_TRUE(LastDate(kHeader + six + kFirst).last_date.IsNone()) << "reading stops after the sixth bad line";
}

}  // namespace
}  // namespace corvane::test
