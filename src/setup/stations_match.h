#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace corvane {

/// What tells a record from others of its kind; in a row, what its cells say of that.
struct StationMarks {
  std::optional<std::int32_t> owner;  ///< the unit's client; 0 where the kind has none
  std::optional<std::int32_t> id;
  std::string name;
};

/// For each row the record that it is about, from 1; 0 where it is a new one.
///
/// Owner and ID count before the name: so a unit can be renamed. A name counts where nobody else bears it. Of records
/// that are alike in everything the first row gets the first.
[[nodiscard]] std::vector<std::int64_t> MatchStations(const std::vector<StationMarks>& av_Rows,
                                                      const std::vector<StationMarks>& av_Records);

}  // namespace corvane
