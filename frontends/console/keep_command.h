#pragma once

#include <string>

#include "desk.h"
#include "options.h"

namespace corvane::console {

/// Puts the application folder into an archive.
[[nodiscard]] int Keep(Desk& desk, const Options& options);
/// Puts an archive into the application folder `folder`, whose lock it takes meanwhile.
[[nodiscard]] int RestoreFolder(const Options& options, const std::string& folder);
/// Says what the settings name that is not on this computer, and how that is mended.
[[nodiscard]] int TellWhatIsMissing(Desk& desk, const Options& options);

}  // namespace corvane::console
