#pragma once

#include <string>

#include "history/network_status.h"

namespace corvane {

/// The status as a JSON document. Format: docs/formats/status.md, its schema beside it.
[[nodiscard]] std::string StatusJson(const NetworkStatus& av_Status);

}  // namespace corvane
