#pragma once

#include <string>

#include "history/unit_health.h"

namespace corvane::console {

/// What is known of a unit: lines, its last contacts as a table, what to take along.
[[nodiscard]] std::string HealthText(const UnitStatus& unit, const UnitHealth& health);

}  // namespace corvane::console
