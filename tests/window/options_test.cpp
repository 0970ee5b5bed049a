#include "window/options.h"

#include <filesystem>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "desktop/posix_shell.h"
#include "window_world.h"

namespace corvane::test {
namespace {

using window::Options;
using window::ParseOptions;

TEST(WindowOptions, SwitchesAreAllTextThatIsNoOption) {
  const struct {
    std::vector<std::string> arguments;
    std::string home;  ///< "wrong": refused
    std::string switches;
  } rows[] = {
      {{}, "", ""},
      {{"/m/d"}, "", "/m/d"},
      {{"/M", "/DATA"}, "", "/M /DATA"},
      {{"--home", "/home/my D", "/M"}, "/home/my D", "/M"},
      {{"/Q", "--home=/srv/quarry/D"}, "/srv/quarry/D", "/Q"},
      {{"x/q"}, "", "x/q"},
      {{"-x"}, "wrong", ""},
      {{"--home", "--version"}, "--version", ""},
      {{"--home"}, "wrong", ""},
      {{"--home", ""}, "wrong", ""},
      {{"--home="}, "wrong", ""},
      {{"/D", "--practise"}, "", "/D"},
      {{"--practise", "--home", "/a"}, "wrong", ""},
      {{"--homes=/a"}, "wrong", ""},
      {{"/M", "--Version"}, "wrong", ""},
  };
  for (const auto& [arguments, home, switches] : rows) {
    Options options;
    try {
      options = ParseOptions(arguments);
    } catch (const window::UsageError&) {
      options.home = "wrong";
    }
    EXPECT_EQ(options.home, home);
    EXPECT_EQ(options.switches, switches);
  }
}

}  // namespace
}  // namespace corvane::test
