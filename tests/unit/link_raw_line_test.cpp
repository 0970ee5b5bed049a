#include "data/raw_line.h"

#include <gtest/gtest.h>

#include "support/world.h"

namespace corvane::test {
namespace {

TEST(RawLineTest, SplitsAndChecksLines) {
  const struct {
    const char* name;
    std::string line;
    std::string items_text;
    std::size_t items;
    bool good;
  } rows[] = {
      {"framed", "$2010/3/12 14:05,512,300*2C", "2010/3/12 14:05,512,300", 3, true},
      {"lower-case digits", "$2010/3/12 14:05,512,300*2c", "2010/3/12 14:05,512,300", 3, false},
      {"not framed", "2010/3/12 14:05,512", "2010/3/12 14:05,512", 2, false},
      {"star not third from the end", "$1,2*0", "$1,2*0", 2, false},
      {"last star counts", "$1*2*3*30", "1*2*3", 1, true},
      {"shortest framed line", "$ab*03", "ab", 1, true},
      {"five characters are never framed", "$a*61", "$a*61", 1, false},
      {"empty items", Frame(",,"), ",,", 3, true},
      {"NUL leaves the exclusive-or alone", Frame(std::string("1,2\0,3", 6)), std::string("1,2\0,3", 6), 3, false},
  };
  RawLine result;
  for (const auto& row : rows) {
    SplitLine(row.line, result);
    EXPECT_EQ(result.items_text, row.items_text) << row.name;
    EXPECT_EQ(result.items.size(), row.items) << row.name;
    EXPECT_EQ(result.checksum_good, row.good) << row.name;
  }
}

}  // namespace
}  // namespace corvane::test
