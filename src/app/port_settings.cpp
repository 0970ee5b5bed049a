#include "app/port_settings.h"

#include <cstdint>
#include <optional>

#include "base/numbers.h"
#include "base/text.h"

namespace corvane {
namespace {

constexpr std::string_view kSection = "Ports";
constexpr std::string_view kPortName = "COM";

std::optional<std::int64_t> NumberOf(std::string_view as_Key) {
  if (!StartsWithNoCase(as_Key, kPortName)) return std::nullopt;
  return ParseInteger(as_Key.substr(kPortName.size()), 1, PortDevices::kLastNumber);
}

/// Files written by hand may spell one number in several ways.
void SavePort(SettingsStore& av_Store, int al_Number, std::string_view as_Device) {
  bool found = false;
  for (const std::string& key : av_Store.Keys(kSection)) {
    if (NumberOf(key) != al_Number) continue;
    av_Store.SaveSetting(kSection, key, as_Device);
    found = true;
  }
  if (!found) av_Store.SaveSetting(kSection, std::string(kPortName) + std::to_string(al_Number), as_Device);
}

}  // namespace

void LoadPorts(const SettingsStore& av_Store, PortDevices& av_Ports, const PortProblem& av_Report) {
  for (const std::string& key : av_Store.Keys(kSection)) {
    const std::string device = av_Store.GetSetting(kSection, key, "");
    const std::optional<std::int64_t> number = NumberOf(key);
    if (number && (device.empty() || device.starts_with('/'))) {
      av_Ports.Assign(static_cast<int>(*number), device);
    } else if (av_Report) {
      av_Report(key, device, "is not used; write a port and the full name of its device, such as COM3=/dev/ttyUSB0");
    }
  }
}

void SavePorts(SettingsStore& av_Store, const PortDevices& av_Ports) {
  PortDevices stored;
  LoadPorts(av_Store, stored, {});
  for (int number = 1; number <= PortDevices::kLastNumber; ++number) {
    const std::string device = av_Ports.AssignedTo(number);
    if (device != stored.AssignedTo(number)) SavePort(av_Store, number, device);
  }
}

}  // namespace corvane
