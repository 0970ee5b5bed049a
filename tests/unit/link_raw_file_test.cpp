#include "link/raw_file.h"

#include <gtest/gtest.h>

#include "base/status.h"
#include "unit/link_world.h"

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

LastDateResult LastDate(const std::string& file) {
  return ReadLastDate(file, [] { return true; });
}

TEST(RawFileTest, CutsTornTails) {
  const struct {
    const char* name;
    std::string whole;
    std::string tail;
  } rows[] = {
      {"whole file", kHeader + kFirst, ""},
      {"empty file", "", ""},
      {"half a line", kHeader + kFirst, "2010/3/12 14:20,51"},
      {"line without its line feed", kHeader + kFirst, "2010/3/12 14:20,513,301\r"},
      {"half a header", "", "$V2,00001"},
      {"LF ends", "a\n2010/3/12 14:05,1,2\n", "2010/3"},
      {"NULs", kHeader + kFirst, std::string(300, '\0')},
      {"torn line and NULs over many blocks", kHeader + kFirst, "2010/3/" + std::string(3000000, '\0')},
      {"nothing but NULs", "", std::string(100000, '\0')},
  };
  const TempFolder folder;
  const std::string file = folder.Name("00001.epd");
  for (const auto& row : rows) {
    folder.Write("00001.epd", row.whole + row.tail);
    EXPECT_EQ(RepairTornTail(file), row.tail.substr(0, kLongestTail)) << row.name;
    EXPECT_EQ(folder.Read("00001.epd"), row.whole) << row.name;
    EXPECT_EQ(RepairTornTail(file), "") << row.name;
  }
  EXPECT_EQ(RepairTornTail(folder.Name("missing")), "");
}

TEST(RawFileTest, LeavesAFileAloneThatIsNoRawFile) {
  const TempFolder folder;
  const std::string text = kHeader + Times("2010/3/12 14:05,512,300\r", 5000);
  folder.Write("x", text);
  EXPECT_THROW(static_cast<void>(RepairTornTail(folder.Name("x"))), RunTimeError);
  EXPECT_EQ(folder.Read("x"), text);
}

TEST(RawFileTest, FindsTheLastDate) {
  const std::string filler = Times(kFirst, 50);  // beyond 1024 bytes
  const std::string noise = Times("no reading here\r\n", 20000);
  const struct {
    const char* name;
    std::string contents;
    DateTime expected;
  } rows[] = {
      {"header only", kHeader, DateTime()},
      {"small", kHeader + kFirst + kSecond, kSecondDate},
      {"small, last wins though earlier", kHeader + kSecond + kFirst, kFirstDate},
      {"small, first line is the header whatever it holds", kFirst, DateTime()},
      {"small, two items", kHeader + kFirst + "2010/3/12 14:20,513\r\n", kFirstDate},
      {"small, unterminated last line", kHeader + kFirst + "2010/3/12 14:20,513,301", kFirstDate},
      {"small, line with NUL", kHeader + kFirst + std::string("\0\0\0", 3) + kSecond, kFirstDate},
      {"LF ends", "header\n2010/3/12 14:05,1,2\n", kFirstDate},
      {"large", kHeader + filler + kSecond, kSecondDate},
      {"large, LF ends", "h\n" + Times("2010/3/12 14:05,1,2\n", 60), kFirstDate},
      {"large, unterminated last line", kHeader + filler + "2010/3/12 14:20,513,301", kFirstDate},
      {"large, line with NUL", kHeader + filler + std::string(1, '\0') + kSecond, kFirstDate},
      {"large, empty lines and words at the end", kHeader + filler + kSecond + "\r\n\r\nwords\r\n", kSecondDate},
      {"no date in the last block", kHeader + kFirst + noise, kFirstDate},
      {"no date at all", kHeader + noise, DateTime()},
      {"only a date in the first line", kFirst + noise, kFirstDate},
      {"a line of many blocks", kHeader + kFirst + std::string(500000, ',') + "\r\n", kFirstDate},
      {"a reading behind a line of many blocks", kHeader + "2010/1/1 00:00,1,2" + std::string(500000, '\0'),
       DateTime()},
  };
  const TempFolder folder;
  const std::string file = folder.Name("00001.epd");
  for (const auto& row : rows) {
    folder.Write("00001.epd", row.contents);
    EXPECT_EQ(LastDate(file).last_date, row.expected) << row.name;
  }
  EXPECT_TRUE(LastDate(folder.Name("missing")).last_date.IsNone());
}

TEST(RawFileTest, FindsADateWhereverABlockEnds) {
  const TempFolder folder;
  const std::string file = folder.Name("00001.epd");
  for (const std::size_t behind : {1000U, 1024U - 10U, 1024U - 25U, 1024U, 65536U + 1024U - 5U, 65536U + 1024U - 25U}) {
    folder.Write("00001.epd", kHeader + kFirst + "12010/9/9 14:20,1,2\r\n" + std::string(behind - 2, 'x') + "\r\n");
    EXPECT_EQ(LastDate(file).last_date, kFirstDate) << behind;
  }
}

TEST(RawFileTest, ReportsLinesThatAreNoReadings) {
  const TempFolder folder;
  folder.Write("a", kHeader + "words, words, words\r\n" + kFirst + "2010/99/1 00:00,1,2\r\n");
  const LastDateResult result = LastDate(folder.Name("a"));
  EXPECT_EQ(result.problems, "Line: 2 words, words, words\r\nLine: 4 2010/99/1 00:00,1,2\r\n");
  EXPECT_EQ(result.line_text, "2010/3/12 14:05,512,300");
  folder.Write("b", kHeader + Times("words, words, words\r\n", 6) + kFirst);
  EXPECT_TRUE(LastDate(folder.Name("b")).last_date.IsNone()) << "reading stops after the sixth bad line";
}

TEST(RawFileTest, StopsWhenCancelled) {
  const TempFolder folder;
  folder.Write("small", kHeader + kFirst + kSecond);
  int polls = 0;
  EXPECT_EQ(ReadLastDate(folder.Name("small"), [&] { return ++polls < 2; }).last_date, kFirstDate);
  folder.Write("large", kHeader + kFirst + std::string(500000, 'x') + "\r\n");
  polls = 0;
  EXPECT_TRUE(ReadLastDate(folder.Name("large"), [&] { return ++polls < 2; }).last_date.IsNone());
  EXPECT_EQ(polls, 2);
}

TEST(RawFileTest, TakesAFileOfAGigabyte) {
  const TempFolder folder;
  const std::string file = folder.Write("big", kHeader + kFirst);
  std::filesystem::resize_file(file, 1 << 30);
  {
    std::ofstream end(file, std::ios::binary | std::ios::app);
    end << "\r\n" << kSecond << "2010/3/1";
  }
  EXPECT_EQ(RepairTornTail(file), "2010/3/1");
  EXPECT_EQ(LastDate(file).last_date, kSecondDate);
}

}  // namespace
}  // namespace corvane::test
