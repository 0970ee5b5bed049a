// The section [Ports] of the settings file: which device each port number stands for.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "app/settings_store.h"
#include "state/port_devices.h"

namespace corvane {

/// Receives an entry that is not used and why.
using PortProblem = std::function<void(const std::string& key, const std::string& device, std::string_view problem)>;

/// Assigns the devices of the file; what is no port or no device is told to `av_Report` and left out.
void LoadPorts(const SettingsStore& av_Store, PortDevices& av_Ports, const PortProblem& av_Report);
/// Changes the entries of those numbers that stand for another device than in the file; the rest keep their spelling.
///
/// A number that stands for its built-in device again keeps an empty entry.
void SavePorts(SettingsStore& av_Store, const PortDevices& av_Ports);

}  // namespace corvane
