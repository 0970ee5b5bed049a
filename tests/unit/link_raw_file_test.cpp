#include "data/raw_file.h"

#include <gtest/gtest.h>

#include "support/world.h"

namespace corvane::test {
namespace {

const std::string kHeader = Frame("V2,00001,3,0,9,2010/3/12 00:00") + "\r\n";
const std::string kFirst = "2010/3/12 14:05,512,300\r\n";
const std::string kSecond = "2010/3/12 14:20,513,301\r\n";
const DateTime kFirstDate = DateTime::FromCivil(2010, 3, 12, 14, 5);

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

/// What a download never meets, as it mends the file first; and a cancel.
TEST_F(RawFileTest, LastDateIsOfAWholeLine) {
  const std::string large = kHeader + Times(kFirst, 50);  // beyond 1024 bytes
  const std::string long_line(500000, ',');
  const std::tuple<const char*, std::string, DateTime> rows[] = {
      {"small, unterminated last line", kHeader + kFirst + "2010/3/12 14:20,513,301", kFirstDate},
      {"small, line with NUL", kHeader + kFirst + std::string("\0\0\0", 3) + kSecond, kFirstDate},
      {"large, unterminated last line", large + "2010/3/12 14:20,513,301", kFirstDate},
      {"large, line with NUL", large + std::string(1, '\0') + kSecond, kFirstDate},
      {"a reading before many blocks without an end", kHeader + "2010/1/1 00:00,1,2" + long_line, DateTime()},
  };
  for (const auto& [name, contents, expected] : rows) EXPECT_EQ(LastDate(contents).last_date, expected) << name;
  EXPECT_EQ(LastDate(kHeader + kFirst + kSecond, 2).last_date, kFirstDate) << "cancelled";
  EXPECT_TRUE(LastDate(kHeader + kFirst + long_line + "\r\n", 2).last_date.IsNone()) << "cancelled";
}

}  // namespace
}  // namespace corvane::test
