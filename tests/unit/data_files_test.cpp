#include <filesystem>

#include <gtest/gtest.h>

#include "support/world.h"

namespace corvane::test {
namespace {

TEST(LocalFilesTest, ACostlyRefreshWaitsForTheEndOfTheOperation) {
  World world("[General]\nFolder=data\nWhichFile=0\n[Units]\nNumUnits=0\n");
  for (const char* name : {"data/00002.epd", "data/00003.epd", "data/a0001.epd"}) world.home.Write(name, "x");
  Form& form = world.Start().form();
  List& list = form.Lst_LocalFiles;
  const auto remove_and_refresh = [&](const char* name) {
    std::filesystem::remove(world.home.Name(name));
    form.Opt_Direction.SetOptionIndex(1 - form.Opt_Direction.GetOptionIndex());
    return list.count();
  };
  remove_and_refresh("nothing");
  // The handler of the focus makes a refresh cost 100 ms.
  list.SetCurrent(2);
  list.on_change = [&] { world.loop.Advance(50); };
  remove_and_refresh("nothing");
  ASSERT_TRUE(world.app().slot().Run([&] {
    world.loop.Advance(1999);
    EXPECT_EQ(remove_and_refresh("data/00002.epd"), 3);
    world.loop.Advance(1);
    EXPECT_EQ(remove_and_refresh("nothing"), 2) << "twenty times its cost later it may run again";
    EXPECT_EQ(remove_and_refresh("data/00003.epd"), 2);
  }));
  EXPECT_EQ(list.count(), 1) << "made up at the end";
}

}  // namespace
}  // namespace corvane::test
