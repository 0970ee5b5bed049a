#include "data/hex_conversion.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/world.h"

namespace corvane::test {
namespace {

const std::string kFixed = "addr , rl, yy, mm, dd, hh, mm, batt, temp, Count, AN1, AN2, cs";
const std::string kStart = "0100,1A,09,05,0E,0A,1E,34,12,01,00,02,00,03,00,FF,FF,99,";
const std::string kStartRow = "0100,26,2009/05/14 10:30,04660,00001,00002,00003,65535";

struct HexCase {
  const char* name;
  std::string dump;
  std::string output;   ///< empty: none is written
  std::string problem;  ///< empty: none
};

TEST(HexConversion, Dumps) {
  const std::string two = kFixed + ",  m1, s1, t1,  m2, s2, t2,  cs\r\n";
  const std::string whole = kStart + "12,34,00,01,00,02,00,03,00,04,00,05,C7\r\n";
  const std::string whole_row = kStartRow + ", 04660,00001,00002, 00003,00004,00005, C7\r\n";
  std::string none = whole;
  none.replace(5, 2, "0D");
  const std::vector<HexCase> rows = {
      {"whole", whole, two + whole_row, ""},
      {"LF, blank and partial lines", "\n1,2,3,4,5,6,7,8,9,10,11\n" + whole + "01", two + whole_row, ""},
      {"no sensors", none, kFixed + ",  cs\r\n0100,13" + kStartRow.substr(7) + ", C7\r\n", ""},
      {"what is no byte is 0", "x,0E,G1,-1, f ,,0x1,100,1,7FFFFFFFF,0,0,0,0,0,0,2,99,C7\n",
       kFixed + ",  cs\r\nx,14,2000/00/15 00:00,00512,00000,00000,00000,00512, C7\r\n", ""},
      {"cut in the fixed part", whole + kStart.substr(0, 40) + "\r\n" + whole, two + whole_row,
       "line 2: field 13 is missing. The conversion ended there; records written: 1"},
      {"cut before the last sensor", whole + kStart + "12,34,00,01,00,02,C7", two + whole_row, "line 2: field 25"},
      {"cut in the last sensor", whole + kStart + "12,34,00,01,00,02,00,03,C7",
       two + whole_row + kStartRow + ", 04660,00001,00002, 00003, C7\r\n", ""},
      {"first record cut", kStart.substr(0, 40) + "\n" + whole, "", "line 1: field 13"},
      {"impossible length", "0,FFFFFF" + kStart.substr(7) + "\n", "", "line 1: its record length is no byte"},
      {"empty", "", "", "holds no record of a hex dump"},
  };
  for (const HexCase& row : rows) {
    SCOPED_TRACE(row.name);
    World world;
    world.Start();
    world.dialogs.text_answer = world.home.Write("unit.7.hex", row.dump);
    world.dialogs.answers = {1};
    world.form().Cmd_Hex.Click();
    EXPECT_EQ(world.home.Read("unit.7.tsc"), row.output);
    ASSERT_EQ(world.dialogs.boxes.size(), row.problem.empty() ? 1U : 2U);
    EXPECT_EQ(world.dialogs.boxes[0].text,
              "Convert: " + world.home.Name("unit.7.hex") + "\r\nTo: " + world.home.Name("unit.7.tsc") + " ?");
    EXPECT_NE(world.dialogs.boxes.back().text.find(row.problem), std::string::npos) << world.dialogs.boxes.back().text;
    EXPECT_EQ(world.dialogs.last_filter, "Hex files(*.hex)|*.hex|All files(*.)|*.*");
  }
}

TEST(HexConversion, LeavesTheOldOutputWhereItDoesNotFinish) {
  for (const std::string way : {"No", "cancel", "missing", "tsc"}) {
    SCOPED_TRACE(way);
    World world;
    world.Start();
    world.home.Write("dump.tsc", "old");
    std::string dump;
    for (int line = 0; line < 1000; ++line) dump += kStart + "12,34,00,01,00,02,00,03,00,04,00,05,C7\n";
    world.dialogs.text_answer = world.home.Write("dump.hex", dump);
    world.dialogs.answers = {way == "No" ? 2 : 1};
    if (way == "missing") std::filesystem::remove(world.home.Name("dump.hex"));
    if (way == "tsc") world.dialogs.text_answer = world.home.Name("dump.tsc");
    if (way == "cancel") world.loop.Post([&] { world.form().Cmd_Cancel.Click(); });
    world.form().Cmd_Hex.Click();
    EXPECT_EQ(world.home.Read("dump.tsc"), "old");
    EXPECT_FALSE(std::filesystem::exists(world.home.Name("dump.tsc.part")));
    EXPECT_EQ(world.Logged("Error! ConvertHexToRaw"), way == "missing" || way == "tsc");
    EXPECT_EQ(world.app().flags().problems, 1);
  }
}

}  // namespace
}  // namespace corvane::test
