#include "app/commands.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "support/world.h"

namespace corvane::test {
namespace {

TEST(Commands, KeysAndMenuOpenTheGuide) {
  World world;
  const HelpFiles help{"/guide/index.html", "/guide/words.html"};
  Application app(Platform{world.loop, world.port, world.shell, world.dialogs, world.internet, world.zip, help},
                  world.home.path());
  app.life().OnWindowCreate();
  EXPECT_TRUE(app.form().Frm_Main.Key(112, true));
  world.loop.Poll();
  app.form().mnu_Help.Click(0);
  app.form().mnu_Help.Click(1);
  EXPECT_EQ(world.shell.opened, (std::vector<std::string>{help.contents, help.contents, help.index}));
  EXPECT_TRUE(world.dialogs.boxes.empty());
}

TEST(Commands, EscapeCancelsWhatRuns) {
  World world("[Ports]\nCOM1=/dev/base\n");
  world.Start();
  world.port.on_line = nullptr;
  world.loop.After(1000, [&] { EXPECT_TRUE(world.form().Frm_Main.Key(27, true)); });
  world.form().mnu_Download.Click(1);
  EXPECT_LT(world.loop.MonotonicMilliseconds(), 3000);
  EXPECT_TRUE(world.Logged("User clicked 'cancel'"));
}

TEST(Commands, ModeAndBackupFolderAreAskedFor) {
  World world;
  world.Start();
  Form& form = world.form();
  const std::vector<std::optional<std::string>> answers = {"/backup", std::nullopt, "/" + std::string(126, 'x')};
  for (const auto& answer : answers) {
    world.dialogs.text_answer = answer;
    form.Cmd_BackupFolder.Click();
    EXPECT_EQ(form.Lbl_BackupDestination.text(), "/backup");
  }
  EXPECT_EQ(world.dialogs.boxes.size(), 1U) << "only the long path is refused";
  const std::vector<std::optional<std::string>> modes = {"12", std::nullopt};
  for (const auto& mode : modes) {
    world.dialogs.text_answer = mode;
    form.Cmd_Mode.Click();
    EXPECT_EQ(form.Lbl_Mode.text(), "12");
  }
}

TEST(Commands, RestoredWindowShowsTheProductAgain) {
  World world("[General]\nAutomatic=1\nHeartBeat=1\n");
  world.Start();
  world.app().life().OnWindowActivate("/M");
  world.loop.Advance(2000);
  EXPECT_EQ(world.form().Frm_Main.title(), "01:59:58");
  world.form().Frm_Main.SetMinimised(false);
  EXPECT_EQ(world.form().Frm_Main.title(), "Corvane");
}

}  // namespace
}  // namespace corvane::test
