// corvanectl stations, the real program: files, standard streams, the lock.
#include <gtest/gtest.h>

#include "support/child.h"

namespace corvane::test {
namespace {

class StationsCommand : public testing::Test {
 protected:
  /// Runs it to its end; its output is kept.
  int Run(Words arguments, const std::string& input = "") {
    arguments.insert(arguments.begin(), {CORVANECTL_PATH, "--home", home_.path(), "stations"});
    Child program(arguments, input);
    const int status = program.Wait();
    output_ = program.output();
    return status;
  }
  [[nodiscard]] std::string Settings() const { return home_.Read("corvane.ini"); }
  [[nodiscard]] bool Printed(const std::string& text) const { return output_.find(text) != std::string::npos; }

  TempFolder home_;
  std::string output_;
};

TEST_F(StationsCommand, PutsATableInAndWritesItBack) {
  const std::string table = home_.Write("table.csv",
                                        "\xEF\xBB\xBFKind;Name;ID;Relay;Client\r\nRelay;Tower;5;;\r\nClient;Acme;;;\r\n"
                                        "Unit;River;21;tower;Acme\r\nUnit;=1+1;22;;\r\n");
  EXPECT_EQ(Run({"import", table, "--dry-run"}), 0) << output_;
  EXPECT_TRUE(Printed("adds unit \"River\" (21) behind \"Tower\" for \"Acme\"\n")) << output_;
  EXPECT_TRUE(Printed("; nothing is put in")) << output_;
  EXPECT_EQ(Settings(), "");
  EXPECT_EQ(Run({"import", table, "--delete", "--quiet"}), 0) << output_;
  EXPECT_EQ(output_, "");
  for (const char* line : {"NumUnits=2\n", "Name1=River\n", "RelayID1=5\n", "ClientID1=3\n", "Name2==1+1\n"}) {
    EXPECT_NE(Settings().find(line), std::string::npos) << line << Settings();
  }
  const std::string settings = Settings();
  const std::string saved = home_.Name("saved.csv");
  EXPECT_EQ(Run({"export", saved}), 0) << output_;
  EXPECT_EQ(Run({"export", "-"}), 0);
  EXPECT_EQ(output_, home_.Read("saved.csv"));
  EXPECT_EQ(Run({"import", "-", "--delete"}, output_), 0);
  EXPECT_EQ(output_, "no change\n");
  EXPECT_EQ(Settings(), settings);
  EXPECT_EQ(Run({"export", "/nowhere/saved.csv"}), 1);
  EXPECT_TRUE(Printed("the table cannot be written: ")) << output_;
}

TEST_F(StationsCommand, NamesEveryFaultAndChangesNothing) {
  home_.Write("corvane.ini", "[Units]\nNumUnits=1\nName1=North\n");
  const std::string settings = Settings();
  EXPECT_EQ(Run({"import", "-"}, "Name,ID,Relay\nRiver,21,Tower\nSouth,1x,\n"), 1);
  EXPECT_TRUE(Printed("standard input, line 2, Relay: there is no relay \"Tower\"")) << output_;
  EXPECT_TRUE(Printed("standard input, line 3, ID: This is no whole number")) << output_;
  EXPECT_TRUE(Printed("2 faults; nothing is put in")) << output_;
  EXPECT_EQ(Run({"import", home_.Name("none.csv")}), 1);
  EXPECT_TRUE(Printed("the table cannot be read: ")) << output_;
  EXPECT_EQ(Settings(), settings);
}

TEST_F(StationsCommand, SaysWhoHoldsTheFolder) {
  Child other({CORVANECTL_PATH, "--home", home_.path(), "run", "--automatic"});
  ASSERT_TRUE(other.Shows("Running in ")) << other.output();
  EXPECT_EQ(Run({"import", "-"}, "Name,ID\nRiver,21\n"), 3);
  EXPECT_TRUE(Printed("corvanectl (process ")) << output_;
  EXPECT_EQ(Run({"export", "-"}), 0) << output_;
  EXPECT_EQ(Run({"import", "-", "--dry-run"}, "Name,ID\nRiver,21\n"), 0) << output_;
}

}  // namespace
}  // namespace corvane::test
