#pragma once

#include "desk.h"
#include "setup/setup_plan.h"
#include "setup_talk.h"

namespace corvane::console {

/// Asks for relays, then for units, one a line. **Yields.**
void AskStations(Desk& desk, SetupTalk& talk, SetupPlan& plan);

}  // namespace corvane::console
