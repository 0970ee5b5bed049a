// Kept apart because the kernel's terminal header, which alone knows free speeds, excludes <termios.h>.
#include <cerrno>
#include <cstdlib>
#include <string>

#include <asm/termbits.h>
#include <sys/ioctl.h>

#include "platform/serial_port.h"
#include "serial/tty_device.h"

namespace corvane {

namespace {

constexpr tcflag_t kParityFlags[] = {0, PARENB, PARENB | PARODD, PARENB | PARODD | CMSPAR, PARENB | CMSPAR};
constexpr tcflag_t kDataBitsFlags[] = {CS5, CS6, CS7, CS8};

void FillRaw(termios2& line, const LineSettings& settings) {
  line.c_iflag = INPCK | PARMRK;
  line.c_oflag = 0;
  line.c_lflag = 0;
  line.c_cflag &= ~(CSIZE | CSTOPB | PARENB | PARODD | CMSPAR | CRTSCTS | CBAUD | (CBAUD << IBSHIFT));
  line.c_cflag |= CREAD | CLOCAL | BOTHER | (BOTHER << IBSHIFT);
  line.c_cflag |= kParityFlags[static_cast<int>(settings.parity)] | kDataBitsFlags[settings.data_bits - 5];
  if (settings.long_stop) line.c_cflag |= CSTOPB;
  line.c_ispeed = line.c_ospeed = static_cast<speed_t>(settings.baud);
  // With at least 1 byte asked for, an idle line reads "try again" and only a vanished one reads 0 bytes.
  line.c_cc[VMIN] = 1;
  line.c_cc[VTIME] = 0;
}

/// Receivers tolerate about 3 percent.
bool IsNear(speed_t got, std::int32_t wanted) {
  return std::llabs(static_cast<long long>(got) - wanted) * 100 <= static_cast<long long>(wanted) * 3;
}

}  // namespace

Status ApplyLineSettings(int descriptor, const LineSettings& settings, const std::string& name) {
  termios2 line{};
  if (ioctl(descriptor, TCGETS2, &line) != 0) {
    if (errno == ENOTTY) return {ENOTTY, name + " is not a serial port: choose another port"};
    return {kPortUnexpected, name + " has no serial hardware behind it: choose another port"};
  }
  FillRaw(line, settings);
  if (ioctl(descriptor, TCSETS2, &line) != 0) return Status::FromErrno("setting up " + name, errno);
  if (ioctl(descriptor, TCGETS2, &line) != 0) return Status::FromErrno("reading the settings of " + name, errno);
  if (!IsNear(line.c_ospeed, settings.baud)) {
    return {EINVAL, name + " cannot do " + std::to_string(settings.baud) + " baud: choose another speed"};
  }
  return Status::Ok();
}

}  // namespace corvane
