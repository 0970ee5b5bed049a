#pragma once

#include <string>

#include "base/status.h"
#include "link/line_settings.h"

namespace corvane {

/// Makes the terminal `descriptor` a raw line with these settings, without handshaking; `name` is for messages.
///
/// Damaged bytes are marked as `ParmrkDecoder` reads them. A read without input says so and never returns 0.
Status ApplyLineSettings(int descriptor, const LineSettings& settings, const std::string& name);

}  // namespace corvane
