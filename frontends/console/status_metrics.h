#pragma once

#include <string>

#include "history/network_status.h"

namespace corvane::console {

/// The status in the text format of Prometheus; what is not known is left out, times are seconds since 1970.
[[nodiscard]] std::string StatusMetrics(const NetworkStatus& status);

}  // namespace corvane::console
