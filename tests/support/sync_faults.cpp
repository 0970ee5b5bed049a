#include "support/sync_faults.h"

#include <cerrno>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr off_t kLostBytes = 8;

}  // namespace

/// Stands before the system's own.
extern "C" int fdatasync(int descriptor) {
  using corvane::test::failing_syncs;
  if (failing_syncs == 0) return static_cast<int>(syscall(SYS_fdatasync, descriptor));
  --failing_syncs;
  struct stat found {};
  // What is opened for appending cannot be written over.
  const int again = open(("/proc/self/fd/" + std::to_string(descriptor)).c_str(), O_WRONLY | O_CLOEXEC);
  if (again >= 0 && fstat(again, &found) == 0 && found.st_size >= kLostBytes) {
    static_cast<void>(!pwrite(again, std::string(kLostBytes, '\0').data(), kLostBytes, found.st_size - kLostBytes));
  }
  close(again);
  errno = EIO;
  return -1;
}
