#pragma once

#include <string>

#include "base/status.h"
#include "platform/shell.h"

namespace corvane {

/// The application folder as a full path, from `--home` (empty when not given), the environment and the place of the
/// program. Throws `RunTimeError` when nothing names one.
[[nodiscard]] std::string ChooseApplicationFolder(const std::string& home_option, const Shell& shell);

/// Creates the folder when it is missing and makes sure that files can be written there; the text of a failure says
/// what is wrong.
Status PrepareApplicationFolder(const std::string& folder);

}  // namespace corvane
