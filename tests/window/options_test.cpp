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
      {{"--home", "/home/D", "/M"}, "/home/D", "/M"},
      {{"/Q", "--home=/srv/quarry/D"}, "/srv/quarry/D", "/Q"},
      {{"-session", "-reverse", "x/q"}, "", "x/q"},
      {{"--home", "--version"}, "--version", ""},
      {{"--home"}, "wrong", ""},
      {{"--home", ""}, "wrong", ""},
      {{"--home="}, "wrong", ""},
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

/// The file that the check box writes, read back as a desktop does, starts the program as it is told to.
TEST(WindowOptions, StartAtLogOnKeepsTheFolderAndStartsMinimised) {
  World world;
  setenv("XDG_CONFIG_HOME", world.home.Name("config").c_str(), 1);
  PosixShell shell("corvane", world.home.path());
  Application app(Platform{world.loop, world.port, shell, world.dialogs, world.internet, world.zip, {}},
                  world.home.path());
  window::MainWindow window(app, world.loop);
  app.life().OnWindowCreate();
  window.findChild<QAbstractButton*>("Chk_RunAtStartup")->click();
  world.loop.Poll();

  std::string entry = world.home.Read("config/autostart/corvane.desktop");
  // The path of a temporary folder holds no blank: quotes can go.
  std::erase(entry, '"');
  const std::size_t exec = entry.find("\nExec=") + 6;
  std::istringstream words(entry.substr(exec, entry.find('\n', exec) - exec));
  std::string program;
  words >> program;
  EXPECT_EQ(program, std::filesystem::read_symlink("/proc/self/exe"));
  const Options options = ParseOptions({std::istream_iterator<std::string>(words), {}});
  EXPECT_EQ(options.home, world.home.path());
  EXPECT_EQ(options.switches, "/M");

  window.findChild<QAbstractButton*>("Chk_RunAtStartup")->click();
  world.loop.Poll();
  EXPECT_FALSE(shell.HasLogOnEntry());
  unsetenv("XDG_CONFIG_HOME");
}

}  // namespace
}  // namespace corvane::test
