#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "unit/data_world.h"

namespace corvane::test {
namespace {

struct GoodTable {
  const char* name;
  std::string contents;
  std::vector<std::pair<double, double>> values;  ///< looked up in this order
};

const GoodTable kGoodTables[] = {
    {"clamped outside, segments inside",
     "0,0\n1,10\n2,30\n",
     {{0.5, 5}, {1, 10}, {1.5, 20}, {-3, 0}, {7, 30}, {2, 30}}},
    {"repeated X: the later point counts", "0,5\n2,10\n2,12\n3,14\n", {{2, 12}, {1.9, 9.75}, {2.5, 13}, {1.9, 9.75}}},
    {"descending X loads", "0,0\n5,50\n3,30\n8,80\n", {{9, 80}, {4, 40}}},
    {"one point", "7,3\n", {{-1, 3}, {7, 3}, {100, 3}}},
    {"far apart in turn", "0,0\n50,1\n100,2\n", {{0, 0}, {100, 2}, {0, 0}, {100, 2}, {25, 0.5}}},
    {"X below zero, from below the table", "-5,1\n5,11\n", {{-10, 1}, {0, 6}}},
    {"line ends, blanks, more fields, other lines, byte-order mark",
     "\xEF\xBB\xBF 0 ,\t0 ,x\r\n\r\nno comma\r\n1e1, 1.5",
     {{5, 0.75}, {10, 1.5}}},
};

TEST(Lookup, GivesTheValuesOfAGoodTable) {
  for (const GoodTable& table : kGoodTables) {
    SCOPED_TRACE(table.name);
    DataWorld world;
    world.Write("a.lkp", table.contents);
    EXPECT_TRUE(world.lookups.Moisture.Initialise(world.Path("a.lkp")));
    for (const auto& [x, y] : table.values) EXPECT_NEAR(world.lookups.Moisture.Lookup(x), y, 1e-12) << x;
    EXPECT_TRUE(world.dialogs.boxes.empty());
  }
}

struct BadTable {
  const char* name;
  const char* file;  ///< below the folder, or a name that is no full path
  std::string contents;
  std::string part_of_text;
};

const BadTable kBadTables[] = {
    {"a word", "a.lkp", "0,0\nx,y\n", "Line 2: \"x\" is not a number\r\nCLookup:Load File: "},
    {"an empty field", "a.lkp", "0,\n", "Line 1: \"\" is not a number\r\nCLookup:Load File: "},
    {"no point", "a.lkp", "\n\n", "The table holds no points\r\nCLookup:Load File: "},
    {"missing", "none.lkp", "", "No such file or directory\r\nCLookup:Load File: "},
    {"no full path", "C:\\tables\\a.lkp", "", "\r\nCLookup:Load File: C:\\tables\\a.lkp"},
};

TEST(Lookup, ReportsABadTableOnceAndAnswersZero) {
  for (const BadTable& table : kBadTables) {
    SCOPED_TRACE(table.name);
    DataWorld world;
    const std::string file = table.file[0] == 'C' ? table.file : world.Path(table.file);
    if (!table.contents.empty()) world.Write(table.file, table.contents);
    CLookup& lookup = world.lookups.Moisture;
    EXPECT_FALSE(lookup.Initialise(file));
    EXPECT_EQ(lookup.Lookup(1), 0);
    EXPECT_EQ(lookup.Lookup(2), 0);
    ASSERT_EQ(world.dialogs.boxes.size(), 1U);
    EXPECT_NE(world.dialogs.boxes[0].text.find(table.part_of_text), std::string::npos) << world.dialogs.boxes[0].text;
    EXPECT_EQ(world.dialogs.boxes[0].count_down, "10");

    world.Write("good.lkp", "0,1\n");
    EXPECT_TRUE(lookup.Initialise(world.Path("good.lkp")));
    EXPECT_EQ(lookup.Lookup(5), 1);
  }
}

}  // namespace
}  // namespace corvane::test
