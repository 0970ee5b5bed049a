// One serial port, as the link needs it.
//
// Setters are separate so that a failure names its step; they are called while the port is closed. Events are
// delivered in the loop's thread, only inside the loop's `Yield` and `Poll`, and only while the port is open. A failure
// to open says why and what to do: missing, busy, or no permission and which group gives it.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/status.h"

namespace corvane {

/// Event codes that a port delivers.
enum PortEvent : int {
  kPortDataReceived = 2,
  kPortCtsChanged = 3,
  kPortDsrChanged = 4,
  kPortCdChanged = 5,
  kPortRingChanged = 6,
  kPortEndOfInput = 7,
  kPortBreak = 1001,
  kPortFraming = 1004,
  kPortOverrun = 1006,
  kPortBufferOverflow = 1008,
  kPortParity = 1009,
  kPortTransmitFull = 1010,
  kPortUnexpected = 1011,
};

/// A device that a port could use, as it is found now.
struct SerialDeviceInfo {
  std::string path;        ///< the name to keep: one that stays with its adapter where there is one
  std::string device;      ///< the device file that it leads to now
  std::string problem;     ///< why this user cannot use it and what to do; empty when nothing is known against it
  std::string group = {};  ///< whose users may use it; empty when no group gives that right
};

enum class DevicePresence { NotThere, There, NoPermission };

/// What is known of one device without opening it.
struct DeviceState {
  DevicePresence presence = DevicePresence::NotThere;
  std::string problem;  ///< why it cannot be used and what to do; empty when it is there
};

class SerialPort {
 public:
  virtual ~SerialPort() = default;
  SerialPort() = default;
  SerialPort(const SerialPort&) = delete;
  SerialPort& operator=(const SerialPort&) = delete;

  /// Chooses the device file for the next `Open`.
  virtual Status SetDevice(const std::string& path) = 0;
  /// Line settings "baud,parity,data bits,stop bits" such as "9600,N,8,1"; anything else is refused.
  virtual Status SetSettings(const std::string& settings) = 0;
  /// Switches hardware and software handshaking off.
  virtual Status SetNoHandshaking() = 0;
  /// Opens the device for exclusive use and discards what waited in it.
  virtual Status Open() = 0;
  /// Closes the port; does nothing when it is closed. Never blocks on a stuck adapter.
  virtual void Close() = 0;
  [[nodiscard]] virtual bool IsOpen() const = 0;

  /// Takes everything received so far; empty when nothing waits or the port is closed.
  [[nodiscard]] virtual std::string ReadAll() = 0;
  /// Queues `text` for output, in order. Fails when the port is closed or its device has gone.
  virtual Status Write(std::string_view text) = 0;

  /// The devices that are there now, each once: those with lasting names first, then by kind and number.
  ///
  /// Opens none of them, which would move the lines of a device in use.
  [[nodiscard]] virtual std::vector<SerialDeviceInfo> ListDevices() const = 0;
  /// Looks at one device, by any of its names, without opening it. A file that is no serial port is not there.
  [[nodiscard]] virtual DeviceState LookAt(const std::string& path) const = 0;

  /// `handler` receives one event code at a time (see `PortEvent`); it may close the port.
  virtual void SetEventHandler(std::function<void(int code)> handler) = 0;
};

}  // namespace corvane
