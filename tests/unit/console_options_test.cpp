#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "console/options.h"

namespace corvane::console {
namespace {

using Words = std::vector<std::string>;

TEST(ConsoleOptions, AreReadOnBothSidesOfTheCommand) {
  const Options options = ParseOptions({"--home", "/srv/c", "download", "Site 1", "--quiet", "--", "-7"});
  EXPECT_EQ(options.command, CommandId::Download);
  EXPECT_EQ(options.home, "/srv/c");
  EXPECT_TRUE(options.quiet);
  EXPECT_EQ(options.arguments, (Words{"Site 1", "-7"}));
  EXPECT_EQ(ParseOptions({"get-date", "--unit=Site 1", "--unit", "4"}).units, (Words{"Site 1", "4"}));
  EXPECT_EQ(ParseOptions({"script", "-"}).arguments, Words{"-"});
  EXPECT_EQ(ParseOptions({"set", "ID1", "-7"}).arguments, (Words{"ID1", "-7"}));
  EXPECT_EQ(ParseOptions({"set-log-period", "04:15"}).arguments, Words{"04:15"});
  EXPECT_TRUE(ParseOptions({"set-mode", "-h"}).help);
  EXPECT_EQ(ParseOptions({"help", "send"}).command, CommandId::Send);
  EXPECT_TRUE(OnlyReads(ParseOptions({"ports"})) && !OnlyReads(ParseOptions({"ports", "assign", "1", "-"})));
}

TEST(ConsoleOptions, RefusesWrongUsage) {
  const std::pair<Words, const char*> rows[] = {
      {{}, "no command is given"},
      {{"sent"}, "there is no command \"sent\"; did you mean send?"},
      {{"help", "downlod"}, "did you mean download?"},
      {{"run", "--atomatic"}, "did you mean --automatic?"},
      {{"set", "Port"}, "Port needs a value"},
      {{"set", "FTPPassword", "x"}, "a password is no argument"},
      {{"set", "Port", "1", "Clients.Password1", "x"}, "a password is no argument"},
      {{"ports", "assign", "COM51", "/dev/x"}, "no port number"},
      {{"ports", "asign"}, "say ports, or"},
      {{"completion", "fish"}, "no shell"},
      {{"backup", "1"}, "\"1\" is too much"},
      {{"units", "--fast"}, "there is no option \"--fast\""},
      {{"units", "--home="}, "--home needs a value"},
      {{"units", "--yes=1"}, "--yes takes no value"},
      {{"units", "x"}, "\"x\" is too much"},
      {{"download", "--unit", "1"}, "download takes no option --unit"},
      {{"download", "3", "--hand-held"}, "--hand-held takes all such units"},
      {{"convert", "--file"}, "--file needs"},
      {{"set-mode", "a\rb"}, "control characters"},
      {{"set-log-period", "04:16"}, "no log period"},
      {{"set-log-period", "00:00"}, "no log period"},
      {{"test-port", "both"}, "\"both\" is no port"},
      {{"run", "--interval", "0:00"}, "no interval"},
      {{"--home", "/srv", "practise"}, "a folder of its own"},
      {{"stations", "import"}, "stations needs export|import FILE"},
      {{"stations", "show", "f.csv"}, "\"show\" is neither export nor import"},
      {{"stations", "exprt", "f.csv"}, "did you mean export?"},
      {{"stations", "export", "f.csv", "--delete"}, "takes neither"},
      {{"units", "--quiet", "--verbose"}, "exclude each other"},
  };
  for (const auto& [words, says] : rows) {
    try {
      static_cast<void>(ParseOptions(words));
      ADD_FAILURE() << "accepted, expected: " << says;
    } catch (const UsageError& error) {
      EXPECT_NE(std::string(error.what()).find(says), std::string::npos) << error.what();
    }
  }
}

}  // namespace
}  // namespace corvane::console
