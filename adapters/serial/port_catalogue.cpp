#include "serial/port_catalogue.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <set>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include "serial/device_texts.h"

namespace corvane {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kKinds[] = {"ttyUSB", "ttyACM", "ttyS"};

bool IsOfKind(std::string_view name, std::string_view kind) {
  return name.starts_with(kind) && name.size() > kind.size() &&
         name.find_first_not_of("0123456789", kind.size()) == std::string_view::npos;
}

/// The names in a folder, none when it cannot be read; the numbers in them count as numbers.
std::vector<std::string> SortedNames(const std::string& folder) {
  std::vector<std::string> names;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    names.push_back(entry->path().filename().string());
  }
  std::sort(names.begin(), names.end(),
            [](const std::string& a, const std::string& b) { return strverscmp(a.c_str(), b.c_str()) < 0; });
  return names;
}

/// The kernel keeps device files for serial chips that this machine does not have; their type is 0.
bool HasHardware(const std::string& sys, dev_t number) {
  std::ifstream file(sys + "/dev/char/" + std::to_string(major(number)) + ":" + std::to_string(minor(number)) +
                     "/type");
  int type = 0;
  return !(file >> type) || type != 0;
}

DeviceState Look(const std::string& path, const std::string& sys, struct stat& about) {
  if (stat(path.c_str(), &about) != 0) {
    if (errno == EACCES) return {DevicePresence::NoPermission, NoPermissionText(path, {})};
    return {DevicePresence::NotThere, NotThereText(path)};
  }
  if (!S_ISCHR(about.st_mode)) return {DevicePresence::NotThere, NotSerialText(path)};
  if (!HasHardware(sys, about.st_rdev)) return {DevicePresence::NotThere, NotThereText(path)};
  // The rights that opening would be judged by, not those of the user who started the program.
  if (faccessat(AT_FDCWD, path.c_str(), R_OK | W_OK, AT_EACCESS) != 0) {
    return {DevicePresence::NoPermission, NoPermissionText(path, about)};
  }
  return {DevicePresence::There, {}};
}

/// The devices found so far, each once.
class Found {
 public:
  explicit Found(const std::string& sys) : sys_(sys) {}

  void Add(const std::string& path) {
    struct stat about {};
    DeviceState state = Look(path, sys_, about);
    if (state.presence == DevicePresence::NotThere || !numbers_.insert(about.st_rdev).second) return;
    std::error_code error;
    const fs::path device = fs::canonical(path, error);
    devices.push_back({path, error ? path : device.string(), std::move(state.problem), GroupThatMayUse(about)});
  }

  std::vector<SerialDeviceInfo> devices;

 private:
  const std::string& sys_;
  std::set<dev_t> numbers_;
};

}  // namespace

std::vector<SerialDeviceInfo> PortCatalogue::ListDevices() const {
  Found found(roots_.sys);
  const std::string lasting = roots_.dev + "/serial/by-id";
  for (const std::string& name : SortedNames(lasting)) found.Add(lasting + "/" + name);
  const std::vector<std::string> names = SortedNames(roots_.dev);
  for (const std::string_view kind : kKinds) {
    for (const std::string& name : names) {
      if (IsOfKind(name, kind)) found.Add(roots_.dev + "/" + name);
    }
  }
  return std::move(found.devices);
}

DeviceState PortCatalogue::LookAt(const std::string& path) const {
  struct stat about {};
  return Look(path, roots_.sys, about);
}

}  // namespace corvane
