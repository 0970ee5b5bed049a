#pragma once

#include <string>

#include "zip/zip_run.h"

namespace corvane {

/// Why an entry is not taken, whatever it is wanted for: no size, encrypted, or beyond all measure when it is unpacked.
[[nodiscard]] ZipOutcome CheckEntry(const zip_stat_t& entry, const std::string& what);

}  // namespace corvane
