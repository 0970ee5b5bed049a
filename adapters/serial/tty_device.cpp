#include <cerrno>

#include <fcntl.h>
#include <linux/serial.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <termios.h>
#include <unistd.h>

#include "serial/device_texts.h"
#include "serial/tty_device.h"

namespace corvane {

namespace {

class TtyDevice : public SerialDevice {
 public:
  explicit TtyDevice(int descriptor) : descriptor_(descriptor) {}
  ~TtyDevice() override { close(descriptor_); }

  [[nodiscard]] int Descriptor() const override { return descriptor_; }
  [[nodiscard]] ssize_t Read(char* into, std::size_t size) override {
    const ssize_t got = TEMP_FAILURE_RETRY(read(descriptor_, into, size));
    return got < 0 ? -errno : got;
  }
  [[nodiscard]] ssize_t Write(std::string_view text) override {
    const ssize_t taken = TEMP_FAILURE_RETRY(write(descriptor_, text.data(), text.size()));
    return taken < 0 ? -errno : taken;
  }
  [[nodiscard]] std::optional<LineCounters> Counters() override {
    serial_icounter_struct got{};
    if (ioctl(descriptor_, TIOCGICOUNT, &got) != 0) return {};
    return LineCounters{got.cts,     got.dsr,    got.dcd, got.rng,        got.frame,
                        got.overrun, got.parity, got.brk, got.buf_overrun};
  }
  [[nodiscard]] int PendingOutput() override {
    int pending = 0;
    return ioctl(descriptor_, TIOCOUTQ, &pending) == 0 ? pending : 0;
  }
  void DiscardOutput() override { tcflush(descriptor_, TCOFLUSH); }
  void Release() override {
    ioctl(descriptor_, TIOCNXCL);
    flock(descriptor_, LOCK_UN);
  }

 private:
  int descriptor_;
};

bool IsPseudoTerminal(const struct stat& about) {
  constexpr unsigned kFirstPtyMajor = 136;
  constexpr unsigned kLastPtyMajor = 143;
  return major(about.st_rdev) >= kFirstPtyMajor && major(about.st_rdev) <= kLastPtyMajor;
}

Status OpenFailure(const std::string& path, int error, const struct stat& about) {
  if (error == EACCES || error == EPERM) return {EACCES, NoPermissionText(path, about)};
  if (error == EBUSY || error == EWOULDBLOCK) {
    return {EBUSY, path + " is in use by another program: close that program or choose another port"};
  }
  if (error == ENOENT || error == ENXIO || error == ENODEV) {
    return {error, NotThereText(path)};
  }
  return Status::FromErrno("opening " + path, error);
}

}  // namespace

Status OpenTtyDevice(const std::string& path, const LineSettings& settings, std::unique_ptr<SerialDevice>& device) {
  struct stat about {};
  if (stat(path.c_str(), &about) != 0) return OpenFailure(path, errno, about);
  if (!S_ISCHR(about.st_mode)) return {ENOTTY, NotSerialText(path)};

  const int descriptor = open(path.c_str(), O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (descriptor < 0) return OpenFailure(path, errno, about);
  auto opened = std::make_unique<TtyDevice>(descriptor);
  if (flock(descriptor, LOCK_EX | LOCK_NB) != 0) return OpenFailure(path, errno, about);
  // Intended: no exclusive mode on a pseudo-terminal, where it would outlive a crash as long as the other end stays.
  if (!IsPseudoTerminal(about)) ioctl(descriptor, TIOCEXCL);
  if (Status status = ApplyLineSettings(descriptor, settings, path); !status.ok()) {
    opened->Release();
    return status;
  }
  tcflush(descriptor, TCIOFLUSH);
  device = std::move(opened);
  return Status::Ok();
}

}  // namespace corvane
