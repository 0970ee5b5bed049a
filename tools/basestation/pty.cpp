#include "pty.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "run_time_error.h"

namespace corvane::basestation {
namespace {

/// The failure of the last system call, as an error for the user.
RunTimeError Failure(const std::string& what) {
  return RunTimeError(what + ": " + std::strerror(errno));
}

void CloseDescriptor(int& fd) {
  if (fd >= 0) close(std::exchange(fd, -1));
}

}  // namespace

void Pty::Open() {
  try {
    OpenDescriptors();
    if (!link_.empty()) PlaceLink();
  } catch (const RunTimeError&) {
    Close();
    throw;
  }
}

void Pty::OpenDescriptors() {
  master_ = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  char name[128];
  if (master_ < 0 || grantpt(master_) != 0 || unlockpt(master_) != 0 || ptsname_r(master_, name, sizeof name) != 0) {
    throw Failure("cannot open a pseudo-terminal");
  }
  slave_name_ = name;
  slave_ = open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
  termios settings{};
  if (slave_ < 0 || tcgetattr(slave_, &settings) != 0) {
    throw Failure("cannot open " + slave_name_);
  }
  cfmakeraw(&settings);
  if (tcsetattr(slave_, TCSANOW, &settings) != 0) throw Failure("cannot set up " + slave_name_);
}

std::string Pty::LinkTarget() const {
  char target[128];
  const ssize_t size = readlink(link_.c_str(), target, sizeof target);
  return size < 0 ? std::string() : std::string(target, static_cast<std::size_t>(size));
}

void Pty::PlaceLink() const {
  struct stat info {};
  if (lstat(link_.c_str(), &info) == 0) {
    if (!LinkTarget().starts_with("/dev/pts/")) {
      throw RunTimeError(link_ +
                         " exists and is no link of a simulated base station; remove it or choose another name");
    }
    unlink(link_.c_str());
  }
  if (symlink(slave_name_.c_str(), link_.c_str()) != 0) throw Failure("cannot make the link " + link_);
}

void Pty::Close() {
  if (master_ >= 0 && !link_.empty() && LinkTarget() == slave_name_) unlink(link_.c_str());
  CloseDescriptor(slave_);
  CloseDescriptor(master_);
}

std::string Pty::Read() {
  char bytes[4096];
  const ssize_t size = read(master_, bytes, sizeof bytes);
  return size <= 0 ? std::string() : std::string(bytes, static_cast<std::size_t>(size));
}

std::size_t Pty::Write(std::string_view bytes) {
  const ssize_t size = write(master_, bytes.data(), bytes.size());
  return size < 0 ? 0 : static_cast<std::size_t>(size);
}

bool Pty::Drained() const {
  int waiting = 0;
  return ioctl(slave_, FIONREAD, &waiting) != 0 || waiting == 0;
}

}  // namespace corvane::basestation
