#pragma once

#include <string>

#include "station.h"

namespace corvane::basestation {

/// Reads the units' clocks and memories from a file that `SaveState` wrote; a missing file changes nothing.
///
/// Throws `RunTimeError` when the file is of another kind or of other options.
void LoadState(const std::string& path, Station& station);
/// Writes the units' clocks and memories, in one step; throws `RunTimeError` when it cannot.
void SaveState(const std::string& path, const Station& station);

}  // namespace corvane::basestation
