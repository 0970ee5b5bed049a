#include "state/port_devices.h"

#include <array>

namespace corvane {
namespace {

/// A run of port numbers that stands for like devices, counted from 0.
struct DeviceRange {
  int first;
  int last;
  std::string_view device;
};
constexpr std::array<DeviceRange, 3> kBuiltIn = {{
    {1, 4, "/dev/ttyS"},
    {5, 20, "/dev/ttyUSB"},
    {21, 36, "/dev/ttyACM"},
}};

}  // namespace

void PortDevices::Assign(int al_Number, std::string_view as_Device) {
  if (as_Device.empty()) {
    assigned_.erase(al_Number);
  } else {
    assigned_[al_Number] = as_Device;
  }
}

std::string PortDevices::AssignedTo(int al_Number) const {
  const auto own = assigned_.find(al_Number);
  return own != assigned_.end() ? own->second : std::string();
}

std::string PortDevices::DeviceOf(int al_Number) const {
  if (std::string own = AssignedTo(al_Number); !own.empty()) return own;
  for (const DeviceRange& range : kBuiltIn) {
    if (al_Number < range.first || al_Number > range.last) continue;
    return std::string(range.device) + std::to_string(al_Number - range.first);
  }
  return {};
}

}  // namespace corvane
