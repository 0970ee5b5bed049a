#pragma once

#include "desk.h"
#include "options.h"

namespace corvane::console {

/// Lists devices and ports, or gives a port number its device.
[[nodiscard]] int Ports(Desk& desk, const Options& options);

}  // namespace corvane::console
