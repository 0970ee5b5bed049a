#pragma once

#include <string>
#include <utility>
#include <vector>

#include "platform/serial_port.h"

namespace corvane {

/// The serial devices of this machine, found by their files alone: nothing is opened.
class PortCatalogue {
 public:
  /// Where the devices and what the kernel says of them are looked for.
  struct Roots {
    std::string dev = "/dev";
    std::string sys = "/sys";
  };

  PortCatalogue() = default;
  explicit PortCatalogue(Roots roots) : roots_(std::move(roots)) {}

  /// Names in serial/by-id first, then ttyUSB, ttyACM and ttyS with hardware behind them; numbers in names count as
  /// numbers.
  [[nodiscard]] std::vector<SerialDeviceInfo> ListDevices() const;
  [[nodiscard]] DeviceState LookAt(const std::string& path) const;

 private:
  Roots roots_;
};

}  // namespace corvane
