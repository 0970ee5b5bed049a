#pragma once

#include <string>

namespace corvane {

/// Whether this user may make files in a folder.
[[nodiscard]] bool MayWriteInto(const std::string& folder);

}  // namespace corvane
