#include "sqlite/history_files.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <unistd.h>

#include "base/files.h"
#include "base/paths.h"

namespace corvane {
namespace {

constexpr mode_t kReadByGroup = 0640;

/// As statfs tells them: NFS, SMB in three ages, FUSE (of which many are remote), 9P, AFS, Coda, Ceph, Lustre, GFS2,
/// OCFS2, GPFS, folders shared with a virtual machine.
constexpr std::array<std::uint32_t, 14> kNetworkFileSystems = {
    0x6969,     0x517B,     0xFE534D42, 0xFF534D42, 0x65735546, 0x01021997, 0x5346414F,
    0x73757245, 0x00C36400, 0x0BD00BD0, 0x01161970, 0x7461636F, 0x47504653, 0x786F4256};

/// What SQLite keeps beside a file, the file itself first.
constexpr std::array<const char*, 4> kSuffixes = {"", "-wal", "-shm", "-journal"};

}  // namespace

bool IsOnNetwork(const std::string& file) {
  struct statfs found {};
  if (statfs(std::string(FolderOf(file)).c_str(), &found) != 0) return false;
  return std::find(kNetworkFileSystems.begin(), kNetworkFileSystems.end(), static_cast<std::uint32_t>(found.f_type)) !=
         kNetworkFileSystems.end();
}

FileState StateOf(const std::string& file) {
  struct stat found {};
  if (stat(file.c_str(), &found) != 0) return {errno == ENOENT ? 0 : errno, false, false, true, 0};
  return {0, true, S_ISREG(found.st_mode), found.st_size == 0, found.st_ino};
}

Status MayRead(const std::string& file) {
  return faccessat(AT_FDCWD, file.c_str(), R_OK, AT_EACCESS) == 0 ? Status::Ok() : Status::FromErrno(file, errno);
}

Status MakeHistoryFile(const std::string& file) {
  const int descriptor = open(file.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, kReadByGroup);
  if (descriptor < 0) return Status::FromErrno(file, errno);
  // Whoever looks after the computer reads it as one of the group, whatever the program's mask.
  const int error = fchmod(descriptor, kReadByGroup) == 0 ? 0 : errno;
  close(descriptor);
  return error == 0 ? Status::Ok() : Status::FromErrno(file, error);
}

Status SetAsideAsBad(const std::string& file) {
  const std::string bad = file + ".bad";
  for (const char* const suffix : kSuffixes) {
    const std::string from = file + suffix, to = bad + suffix;
    if (rename(from.c_str(), to.c_str()) == 0) continue;
    if (errno != ENOENT) return Status::FromErrno(from, errno);
    unlink(to.c_str());
  }
  return SyncFolderOf(file);
}

}  // namespace corvane
