#include "serial/device_texts.h"

#include <array>

#include <grp.h>

namespace corvane {

namespace {

std::string GroupName(gid_t id) {
  group entry{};
  group* found = nullptr;
  std::array<char, 16384> texts{};
  getgrgid_r(id, &entry, texts.data(), texts.size(), &found);
  return found != nullptr ? found->gr_name : std::to_string(id);
}

}  // namespace

std::string GroupThatMayUse(const struct stat& about) {
  constexpr mode_t kGroupMayUse = S_IRGRP | S_IWGRP;
  if ((about.st_mode & kGroupMayUse) != kGroupMayUse || about.st_gid == 0) return {};
  return GroupName(about.st_gid);
}

std::string NoPermissionText(const std::string& path, const struct stat& about) {
  const std::string text = "no permission to use " + path + ": ";
  const std::string group = GroupThatMayUse(about);
  if (group.empty()) return text + "ask the administrator for the right to read and write it";
  return text + "add yourself to the group " + group + " and log in again";
}

std::string NotThereText(const std::string& path) {
  return path + " is not there: plug the adapter in or choose another port";
}

std::string NotSerialText(const std::string& path) {
  return path + " is not a serial port: choose another port";
}

}  // namespace corvane
