#include "serial/port_catalogue.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

#include "support/pty_pair.h"
#include "support/temp_folder.h"

namespace corvane {
namespace {

namespace fs = std::filesystem;

/// A machine in a folder: devices that everyone has stand for serial ones.
class PortCatalogueTest : public testing::Test {
 protected:
  void Link(const std::string& name, const std::string& target) {
    const fs::path link = home_.Name("dev/" + name);
    fs::create_directories(link.parent_path());
    fs::create_symlink(target, link);
  }
  [[nodiscard]] DevicePresence PresenceOf(const std::string& name) const {
    return catalogue_.LookAt(name.starts_with('/') ? name : home_.Name("dev/" + name)).presence;
  }

  test::TempFolder home_;
  PortCatalogue catalogue_{{home_.Name("dev"), home_.Name("sys")}};
};

TEST_F(PortCatalogueTest, ListsEachDeviceOnceWithLastingNamesFirst) {
  EXPECT_TRUE(catalogue_.ListDevices().empty());
  const std::pair<const char*, const char*> links[] = {{"ttyUSB10", "/dev/zero"},
                                                       {"ttyUSB2", "/dev/null"},
                                                       {"ttyACM0", "/dev/full"},
                                                       {"ttyS0", "/dev/random"},
                                                       {"ttyS1", "/dev/urandom"},
                                                       {"ttyUSB11", "/dev/null"},
                                                       {"tty1", "/dev/tty"},
                                                       {"ttyUSB", "/dev/tty"},
                                                       {"serial/by-id/usb-B-port10", "../../ttyACM0"},
                                                       {"serial/by-id/usb-B-port9", "../../ttyUSB10"},
                                                       {"serial/by-id/usb-A-gone", "../../ttyUSB7"}};
  for (const auto& [name, target] : links) Link(name, target);
  home_.Write("sys/dev/char/1:8/type", "4\n");
  home_.Write("sys/dev/char/1:9/type", "0\n");
  home_.Write("dev/ttyUSB3", "");

  std::vector<std::string> found;
  for (const SerialDeviceInfo& device : catalogue_.ListDevices()) {
    found.push_back(device.path.substr(home_.Name("dev/").size()) + " " + device.device + device.problem);
  }
  EXPECT_EQ(found,
            (std::vector<std::string>{"serial/by-id/usb-B-port9 /dev/zero", "serial/by-id/usb-B-port10 /dev/full",
                                      "ttyUSB2 /dev/null", "ttyS0 /dev/random"}));
  EXPECT_EQ(PresenceOf("ttyS0"), DevicePresence::There);
  EXPECT_EQ(PresenceOf("ttyS1"), DevicePresence::NotThere) << "no hardware behind it";
  EXPECT_EQ(PresenceOf("serial/by-id/usb-A-gone"), DevicePresence::NotThere);
  EXPECT_EQ(PresenceOf("ttyUSB3"), DevicePresence::NotThere) << "a file";
  EXPECT_EQ(catalogue_.LookAt("").presence, DevicePresence::NotThere);
}

TEST_F(PortCatalogueTest, SaysWhichGroupGivesPermission) {
  const PtyPair pair;
  EXPECT_EQ(PresenceOf(pair.path()), DevicePresence::There);
  const struct {
    mode_t mode;
    const char* advice;
  } rows[] = {{0060, "add yourself to the group "}, {0000, "ask the administrator"}};
  const uid_t user = geteuid();
  constexpr gid_t kTtyGroup = 5;
  ASSERT_EQ(user == 0 ? chown(pair.path().c_str(), 0, kTtyGroup) : 0, 0);
  for (const auto& [mode, advice] : rows) {
    ASSERT_EQ(chmod(pair.path().c_str(), mode), 0);
    // The administrator may use everything, so an ordinary user looks.
    ASSERT_EQ(user == 0 ? seteuid(65534) : 0, 0);
    const DeviceState state = catalogue_.LookAt(pair.path());
    ASSERT_EQ(seteuid(user), 0);
    EXPECT_EQ(state.presence, DevicePresence::NoPermission);
    EXPECT_NE(state.problem.find(advice), std::string::npos) << state.problem;
  }
}

}  // namespace
}  // namespace corvane
