#pragma once

#include "desk.h"
#include "options.h"

namespace corvane::console {

/// `test-port`: sees whether a base station answers. **Yields.**
[[nodiscard]] int TestPort(Desk& desk, const Options& options);
/// `find-port`: looks for the port that answers and keeps it in the settings. **Yields.**
[[nodiscard]] int FindPort(Desk& desk, const Options& options);
/// `run`: stays and follows the schedule until the program is asked to end. **Yields.**
[[nodiscard]] int KeepSchedule(Desk& desk, const Options& options);

}  // namespace corvane::console
