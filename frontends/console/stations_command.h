#pragma once

#include "desk.h"
#include "options.h"

namespace corvane::console {

/// Writes units, relays and clients as a table, or reads one and puts it in.
int Stations(Desk& desk, const Options& options);

}  // namespace corvane::console
