#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "state/records.h"

namespace corvane::console {

/// Positions of the units with these names or IDs, in the order given and each once. Throws `UsageError`.
[[nodiscard]] std::vector<std::int64_t> FindUnits(const Registry& registry, const std::vector<std::string>& names);

/// That no unit has this name or ID, with the one of `names` that was likely meant, or the command that lists them.
[[nodiscard]] std::string NoUnitText(const std::string& name, const std::vector<std::string>& names,
                                     const std::string& lists);

inline constexpr std::int32_t kFromAnywhere = -1;
/// Positions of all active units of a connection, or of any.
[[nodiscard]] std::vector<std::int64_t> ActiveUnits(const Registry& registry, std::int32_t get_from);

/// The date of a raw file's last reading as a text; empty when its end holds none.
[[nodiscard]] std::string LastReading(const std::string& raw_file);

}  // namespace corvane::console
