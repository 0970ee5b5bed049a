#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "base/status.h"
#include "state/app_info.h"
#include "state/home_folder.h"
#include "state/port_devices.h"

namespace corvane::test {
namespace {

TEST(AppInfo, PathsAndVersions) {
  AppInfo app("/srv/corvane");
  EXPECT_EQ(app.AppPath("corvane.ini"), "/srv/corvane/corvane.ini");
  EXPECT_EQ(app.AppPath("/etc/x"), "/etc/x");
  EXPECT_EQ(app.AppPath("C:\\x"), "C:\\x");
  EXPECT_EQ(AppInfo("/").AppPath("corvane.ini"), "/corvane.ini");
  for (const auto& [version, newer] : {std::pair("", true), std::pair("1.2", true), std::pair("0.1.000", false),
                                       std::pair("9.0.000", true), std::pair("0.1.001", true)}) {
    app.SetPreviousVersion(version);
    EXPECT_EQ(app.IsNewerVersion(), newer) << version;
  }
}

TEST(PortDevices, GivesTheDeviceOfANumber) {
  PortDevices devices;
  devices.Assign(3, "/dev/serial/by-id/radio");
  devices.Assign(5, "/dev/x");
  devices.Assign(5, "");
  EXPECT_EQ(devices.DeviceOf(3), "/dev/serial/by-id/radio");
  const std::pair<int, const char*> rows[] = {{1, "/dev/ttyS0"},     {4, "/dev/ttyS3"},    {5, "/dev/ttyUSB0"},
                                              {20, "/dev/ttyUSB15"}, {21, "/dev/ttyACM0"}, {36, "/dev/ttyACM15"}};
  for (const auto& [number, device] : rows) EXPECT_EQ(devices.DeviceOf(number), device) << number;
  for (const int number : {37, 0, -1}) EXPECT_EQ(devices.DeviceOf(number), "") << number;
}

TEST(HomeFolder, IsTheFirstThatIsNamed) {
  const std::pair<HomeChoice, const char*> rows[] = {
      {{"/a", "/b", "/c", "/d", "/now", "/p", true}, "/a"},
      {{"a:b", "", "", "/d", "/now", "/p", false}, "/now/a:b"},
      {{"", "b", "/c", "/d", "/now", "/p", true}, "/now/b"},
      {{"", "", "/c", "/d", "/now", "/p", true}, "/p"},
      {{"", "", "/c", "/d", "/now", "/p", false}, "/c/corvane"},
      {{"", "", "c", "/d", "/now", "/p", false}, "/d/.local/share/corvane"},
  };
  for (const auto& [choice, folder] : rows) EXPECT_EQ(ApplicationFolder(choice), folder);
  EXPECT_THROW(static_cast<void>(ApplicationFolder({"", "", "", "", "/now", "/p", false})), RunTimeError);
}

}  // namespace
}  // namespace corvane::test
