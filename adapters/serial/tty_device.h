// The few calls that a serial port makes to the operating system, so that a test can play any device.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <sys/types.h>

#include "base/status.h"
#include "platform/line_settings.h"

namespace corvane {

/// How often the driver saw each line event since it was loaded; only differences mean anything.
struct LineCounters {
  int cts = 0;
  int dsr = 0;
  int cd = 0;
  int ring = 0;
  int framing = 0;
  int overrun = 0;
  int parity = 0;
  int breaks = 0;
  int buffer_overrun = 0;
};

/// An open device; destroying it closes it, which a stuck adapter can hold up for half a minute.
class SerialDevice {
 public:
  virtual ~SerialDevice() = default;
  SerialDevice() = default;
  SerialDevice(const SerialDevice&) = delete;
  SerialDevice& operator=(const SerialDevice&) = delete;

  /// To be watched for input and output; nothing else.
  [[nodiscard]] virtual int Descriptor() const = 0;
  /// Reads what waits, at most `size` bytes: their number, 0 when the device has gone, or a negative errno.
  [[nodiscard]] virtual ssize_t Read(char* into, std::size_t size) = 0;
  /// Writes what the device takes of `text`: the number of bytes, or a negative errno.
  [[nodiscard]] virtual ssize_t Write(std::string_view text) = 0;
  /// None when the device does not count.
  [[nodiscard]] virtual std::optional<LineCounters> Counters() = 0;
  /// Bytes that the device has taken and not yet sent.
  [[nodiscard]] virtual int PendingOutput() = 0;
  virtual void DiscardOutput() = 0;
  /// Gives up exclusive use, so that the device can be opened again before it is closed.
  virtual void Release() = 0;
};

/// Opens the device at `path` into `device`; a failure is a text for people that says what to do.
using DeviceOpener =
    std::function<Status(const std::string& path, const LineSettings& settings, std::unique_ptr<SerialDevice>& device)>;

/// Makes the terminal `descriptor` a raw line with these settings, without handshaking; `name` is for messages.
///
/// Damaged bytes are marked as `ParmrkDecoder` reads them. A read without input says so and never returns 0.
Status ApplyLineSettings(int descriptor, const LineSettings& settings, const std::string& name);

/// Opens a terminal device for exclusive use, sets it up and discards what waited in it.
Status OpenTtyDevice(const std::string& path, const LineSettings& settings, std::unique_ptr<SerialDevice>& device);

}  // namespace corvane
