#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/home_folder.h"
#include "base/status.h"
#include "console/options.h"

namespace corvane::console {
namespace {

using Words = std::vector<std::string>;

TEST(ConsoleOptions, ReadsGlobalOptionsOnBothSidesOfTheCommand) {
  const Options options = ParseOptions({"--home", "/srv/c", "download", "Site 1", "--quiet", "--", "-7"});
  EXPECT_EQ(options.command, CommandId::Download);
  EXPECT_EQ(options.home, "/srv/c");
  EXPECT_TRUE(options.quiet);
  EXPECT_EQ(options.arguments, (Words{"Site 1", "-7"}));
}

TEST(ConsoleOptions, ReadsTheOptionsOfCommands) {
  EXPECT_EQ(ParseOptions({"get-date", "--unit=Site 1", "--unit", "4"}).units, (Words{"Site 1", "4"}));
  EXPECT_TRUE(ParseOptions({"convert", "--file", "a.epd"}).files);
  EXPECT_EQ(ParseOptions({"run", "--automatic", "--interval", "36"}).interval, "36");
  EXPECT_EQ(ParseOptions({"script", "-"}).arguments, Words{"-"});
  EXPECT_EQ(ParseOptions({"set-log-period", "04:15"}).arguments, Words{"04:15"});
}

TEST(ConsoleOptions, RefusesWrongUsage) {
  struct Row {
    Words words;
    const char* says;
  };
  const Row rows[] = {
      {{}, "no command is given"},
      {{"dowload"}, "there is no command \"dowload\""},
      {{"send"}, "there is no command \"send\""},
      {{"units", "--fast"}, "there is no option \"--fast\""},
      {{"units", "--home"}, "--home needs a value"},
      {{"units", "--home="}, "--home needs a value"},
      {{"units", "--yes=1"}, "--yes takes no value"},
      {{"units", "x"}, "\"x\" is too much"},
      {{"download", "--unit", "1"}, "download takes no option --unit"},
      {{"download", "3", "--hand-held"}, "--hand-held takes all such units"},
      {{"convert", "--file"}, "--file needs"},
      {{"set-mode"}, "set-mode needs TEXT"},
      {{"set-mode", "a\rb"}, "control characters"},
      {{"set-log-period", "04:16"}, "no log period"},
      {{"set-log-period", "00:00"}, "no log period"},
      {{"test-port", "both"}, "\"both\" is no port"},
      {{"run", "--interval", "0:00"}, "no interval"},
      {{"units", "--quiet", "--verbose"}, "exclude each other"},
  };
  for (const Row& row : rows) {
    try {
      static_cast<void>(ParseOptions(row.words));
      ADD_FAILURE() << "accepted, expected: " << row.says;
    } catch (const UsageError& error) {
      EXPECT_NE(std::string(error.what()).find(row.says), std::string::npos) << error.what();
    }
  }
}

TEST(ConsoleOptions, HelpNeedsNoArguments) {
  EXPECT_TRUE(ParseOptions({"--help"}).help);
  EXPECT_TRUE(ParseOptions({"set-mode", "-h"}).help);
}

TEST(HomeFolder, IsTheFirstThatIsNamed) {
  struct Row {
    const char* name;
    HomeChoice choice;
    const char* folder;
  };
  const Row rows[] = {
      {"option", {"/a", "/b", "/c", "/d", "/now", "/p", true}, "/a"},
      {"relative option", {"a/", "", "", "/d", "/now", "/p", false}, "/now/a"},
      {"relative option with a colon", {"a:b", "", "", "/d", "/now", "/p", false}, "/now/a:b"},
      {"environment", {"", "b", "/c", "/d", "/now", "/p", true}, "/now/b"},
      {"portable", {"", "", "/c", "/d", "/now", "/p", true}, "/p"},
      {"data folder", {"", "", "/c", "/d", "/now", "/p", false}, "/c/corvane"},
      {"relative data folder", {"", "", "c", "/d", "/now", "/p", false}, "/d/.local/share/corvane"},
  };
  for (const Row& row : rows) EXPECT_EQ(ApplicationFolder(row.choice), row.folder) << row.name;
  EXPECT_THROW(static_cast<void>(ApplicationFolder({"", "", "", "", "/now", "/p", false})), RunTimeError);
}

}  // namespace
}  // namespace corvane::console
