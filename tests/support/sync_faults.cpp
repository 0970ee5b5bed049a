#include "support/sync_faults.h"

#include <cerrno>
#include <cstdarg>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr off_t kLostBytes = 8;

std::string DescriptorLink(int descriptor) {
  return "/proc/self/fd/" + std::to_string(descriptor);
}

std::string PathOf(int descriptor) {
  char path[4096];
  const ssize_t length = readlink(DescriptorLink(descriptor).c_str(), path, sizeof path);
  return {path, static_cast<std::size_t>(length < 0 ? 0 : length)};
}

bool ReadFails(const std::string& path) {
  if (!path.ends_with("/corvane.ini")) return false;
  --corvane::test::failing_reads;
  errno = corvane::test::read_error;
  return true;
}

/// What is about to be changed may be the last that this process has seen.
void BeforeChange() {
  using namespace corvane::test;
  if (kill_before_change > 0 && --kill_before_change == 0) _exit(kKilled);
}

}  // namespace

/// These stand before the system's own.
extern "C" int open(const char* path, int flags, ...) {
  using namespace corvane::test;
  if (failing_reads > 0 && read_error == EMFILE && (flags & O_ACCMODE) == O_RDONLY && ReadFails(path)) return -1;
  va_list more;
  va_start(more, flags);
  const unsigned mode = (flags & O_CREAT) != 0 ? va_arg(more, unsigned) : 0;
  va_end(more);
  if ((flags & O_CREAT) != 0) BeforeChange();
  return static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}

extern "C" ssize_t read(int descriptor, void* bytes, std::size_t length) {
  using namespace corvane::test;
  if (failing_reads > 0 && read_error != EMFILE && ReadFails(PathOf(descriptor))) return -1;
  return syscall(SYS_read, descriptor, bytes, length);
}

extern "C" ssize_t pread(int descriptor, void* bytes, std::size_t length, off_t offset) {
  using namespace corvane::test;
  if (failing_reads > 0 && read_error != EMFILE && ReadFails(PathOf(descriptor))) return -1;
  return syscall(SYS_pread64, descriptor, bytes, length, offset);
}

extern "C" ssize_t write(int descriptor, const void* bytes, std::size_t length) {
  BeforeChange();
  return syscall(SYS_write, descriptor, bytes, length);
}

extern "C" int rename(const char* from, const char* to) {
  BeforeChange();
  return static_cast<int>(syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0));
}

extern "C" int link(const char* from, const char* to) {
  BeforeChange();
  if (corvane::test::failing_links > 0) {
    --corvane::test::failing_links;
    errno = EPERM;
    return -1;
  }
  return static_cast<int>(syscall(SYS_linkat, AT_FDCWD, from, AT_FDCWD, to, 0));
}

extern "C" int unlink(const char* path) {
  BeforeChange();
  return static_cast<int>(syscall(SYS_unlinkat, AT_FDCWD, path, 0));
}

extern "C" int fsync(int descriptor) {
  BeforeChange();
  if (corvane::test::failing_folder_syncs > 0) {
    --corvane::test::failing_folder_syncs;
    errno = EIO;
    return -1;
  }
  corvane::test::synced_folders.insert(PathOf(descriptor));
  return static_cast<int>(syscall(SYS_fsync, descriptor));
}

extern "C" int fdatasync(int descriptor) {
  using corvane::test::failing_syncs;
  BeforeChange();
  if (failing_syncs == 0) return static_cast<int>(syscall(SYS_fdatasync, descriptor));
  --failing_syncs;
  struct stat found {};
  // What is opened for appending cannot be written over.
  const int again = open(DescriptorLink(descriptor).c_str(), O_WRONLY | O_CLOEXEC);
  if (again >= 0 && fstat(again, &found) == 0 && found.st_size >= kLostBytes) {
    static_cast<void>(!pwrite(again, std::string(kLostBytes, '\0').data(), kLostBytes, found.st_size - kLostBytes));
  }
  close(again);
  errno = EIO;
  return -1;
}
