#include "desktop/folder_holder.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>

#include "desktop/posix_shell.h"

namespace corvane {
namespace {

/// What the link to the first space of process numbers says; /proc/locks shows no holder outside the own one.
constexpr const char* kFirstProcessSpace = "pid:[4026531836]";

bool IsInFirstProcessSpace() {
  std::error_code error;
  return std::filesystem::read_symlink("/proc/self/ns/pid", error).string() == kFirstProcessSpace;
}

/// File systems whose locks all stand in /proc/locks, under the number that stat tells.
bool IsPlainFileSystem(const std::string& folder) {
  struct statfs about {};
  if (statfs(folder.c_str(), &about) != 0) return false;
  switch (about.f_type) {
    case EXT4_SUPER_MAGIC:
    case XFS_SUPER_MAGIC:
    case BTRFS_SUPER_MAGIC:
    case TMPFS_MAGIC:
    case F2FS_SUPER_MAGIC:
      return true;
    default:
      return false;
  }
}

/// The process that a line such as "1: FLOCK  ADVISORY  WRITE 812 08:01:1835 0 EOF" tells to hold this file; empty when
/// it is about another one. The device is not looked at: some file systems show programs another one.
std::string ProcessIn(const std::string& line, ino_t inode) {
  std::istringstream words(line);
  std::string number;
  std::string kind;
  std::string advisory;
  std::string mode;
  std::string process;
  std::string file;
  words >> number >> kind >> advisory >> mode >> process >> file;
  const bool is_about = kind == "FLOCK" && file.substr(file.rfind(':') + 1) == std::to_string(inode);
  return is_about ? process : std::string();
}

/// The process that holds this file; empty where none is told.
std::string ProcessAt(std::istream& locks, ino_t inode) {
  std::string line;
  while (std::getline(locks, line)) {
    if (std::string process = ProcessIn(line, inode); !process.empty()) return process;
  }
  return {};
}

}  // namespace

std::optional<bool> FolderIsHeld(const std::string& folder) {
  struct stat about {};
  if (stat((std::filesystem::path(folder) / kLockFile).c_str(), &about) != 0) {
    if (errno == ENOENT) return false;
    return std::nullopt;
  }
  std::ifstream locks("/proc/locks");
  if (!locks) return std::nullopt;
  if (!ProcessAt(locks, about.st_ino).empty()) return true;
  if (!IsInFirstProcessSpace() || !IsPlainFileSystem(folder)) return std::nullopt;
  return false;
}

std::string HolderOfFolder(const std::string& folder) {
  struct stat about {};
  std::ifstream locks("/proc/locks");
  if (!locks || stat((std::filesystem::path(folder) / kLockFile).c_str(), &about) != 0) return {};
  const std::string process = ProcessAt(locks, about.st_ino);
  std::ifstream name("/proc/" + process + "/comm");
  std::string program;
  if (process.empty() || !std::getline(name, program)) return {};
  return program + " (process " + process + ")";
}

}  // namespace corvane
