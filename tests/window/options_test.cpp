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

struct OptionRow {
  std::vector<std::string> arguments;
  std::string home;
  std::string switches;
};

TEST(WindowOptions, SwitchesAreAllTextThatIsNoOption) {
  const OptionRow rows[] = {
      {{}, "", ""},
      {{"/m/d"}, "", "/m/d"},
      {{"/M", "/DATA"}, "", "/M /DATA"},
      {{"--home", "/home/D", "/M"}, "/home/D", "/M"},
      {{"/Q", "--home=/srv/quarry/D"}, "/srv/quarry/D", "/Q"},
      {{"-session", "-reverse", "x/q"}, "", "x/q"},
      {{"--home", "--version"}, "--version", ""},
  };
  for (const OptionRow& row : rows) {
    const Options options = ParseOptions(row.arguments);
    EXPECT_EQ(options.home, row.home);
    EXPECT_EQ(options.switches, row.switches);
    EXPECT_FALSE(options.language_template);
  }
  EXPECT_TRUE(ParseOptions({"--language-template", "/D"}).language_template);
}

TEST(WindowOptions, WrongOptionsAreRefused) {
  for (const std::vector<std::string>& wrong : std::vector<std::vector<std::string>>{
           {"--home"}, {"--home", ""}, {"--home="}, {"--homes=/a"}, {"--no-such"}, {"/M", "--Version"}}) {
    EXPECT_THROW(static_cast<void>(ParseOptions(wrong)), window::UsageError) << wrong.back();
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

  std::istringstream entry(world.home.Read("config/autostart/corvane.desktop"));
  std::string exec;
  while (std::getline(entry, exec) && !exec.starts_with("Exec=")) continue;
  // The path of a temporary folder holds no blank: quotes can go.
  std::erase(exec, '"');
  std::istringstream words(exec.substr(exec.find('=') + 1));
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
