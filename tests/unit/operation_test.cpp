// What no script can do: reach controls and operations that are disabled or not offered.
#include <gtest/gtest.h>

#include "support/world.h"

namespace corvane::test {
namespace {

TEST(Operations, NothingFollowsTheListsWhileOneRuns) {
  World world("[Clients]\nNumClients=2\n");
  Form& form = world.Start().form();
  form.Lst_Clients.SetCurrent(0);
  form.Lst_RemoteFiles.SetRows({"..\t[parent]", "f1\t[DIR]"});
  ASSERT_TRUE(world.app().slot().Run([&] {
    form.Lst_Clients.SetCurrent(1);
    form.mnu_Clients.Click(0);
    form.Lst_RemoteFiles.Open(1);
    EXPECT_FALSE(world.app().commands().ConvertAll(true));
  }));
  EXPECT_EQ(form.Lst_Clients.current(), 0);
  EXPECT_EQ(form.Txt_ClientName.text(), "Client 1");
  EXPECT_EQ(world.app().registry().Clients.count(), 2);
  EXPECT_TRUE(world.internet.calls.empty());
}

TEST(Operations, MenuEntriesAreEnabledAsTheirButtonsAre) {
  World world("[Units]\nNumUnits=3\n");
  Form& form = world.Start().form();
  for (const std::int64_t row : {-1, 0, 1, 2}) {
    form.Lst_Units.SetCurrent(row);
    for (int command = 0; command < 4; ++command) {
      const bool enabled = form.mnu_Units.entries()[static_cast<std::size_t>(command)].enabled;
      EXPECT_EQ(enabled, form.Cmd_Units[command].enabled()) << row << " " << command;
    }
  }
}

}  // namespace
}  // namespace corvane::test
