#pragma once

#include <string>

#include "history/network_status.h"

namespace corvane {

/// How the network stands in one sentence for a person: how many units are fine, which are not and since when, and when
/// the next round begins.
[[nodiscard]] std::string HeadlineOf(const NetworkStatus& av_Status);

}  // namespace corvane
