#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "data/lookup.h"
#include "support/lower.h"

namespace corvane::test {
namespace {

struct GoodTable {
  std::string contents;
  std::vector<std::pair<double, double>> values;  ///< looked up in this order
};

const GoodTable kGoodTables[] = {
    {"0,0\n1,10\n2,30\n", {{0.5, 5}, {1, 10}, {1.5, 20}, {-3, 0}, {7, 30}, {2, 30}}},
    {"0,5\n2,10\n2,12\n3,14\n", {{2, 12}, {1.9, 9.75}, {2.5, 13}, {1.9, 9.75}}},
    {"0,0\n5,50\n3,30\n8,80\n", {{9, 80}, {4, 40}}},
    {"7,3\n", {{-1, 3}, {7, 3}, {100, 3}}},
    {"-50,0\n0,1\n50,2\n", {{-60, 0}, {50, 2}, {-50, 0}, {-25, 0.5}}},
    {"\xEF\xBB\xBF 0 ,\t0 ,x\r\n\r\nno comma\r\n1e1, 1.5", {{5, 0.75}, {10, 1.5}}},
};

TEST(Lookup, GivesTheValuesOfAGoodTable) {
  for (const GoodTable& table : kGoodTables) {
    SCOPED_TRACE(table.contents);
    Lower world;
    CLookup lookup(world.messages);
    EXPECT_TRUE(lookup.Initialise(world.home.Write("a.lkp", table.contents)));
    for (const auto& [x, y] : table.values) EXPECT_NEAR(lookup.Lookup(x), y, 1e-12) << x;
    EXPECT_TRUE(world.dialogs.boxes.empty());
  }
}

}  // namespace
}  // namespace corvane::test
