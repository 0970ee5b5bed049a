#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <QString>

#include "history/network_status.h"
#include "lang/phrases.h"

namespace corvane::window {

/// The columns of the table of units.
enum class StationColumn : std::uint8_t {
  State,
  Name,
  Client,
  LastReading,
  LastContact,
  Answered,
  Battery,
  Complete,
  Gaps,
  Delivered
};
inline constexpr int kStationColumns = 10;

/// What units are put together by.
enum class Grouping : std::uint8_t { None, Client, Relay };

/// Which units are shown, and in which order.
struct StationChoice {
  StationColumn sorted_by = StationColumn::State;
  bool descending = false;
  QString text;                    ///< a part of name, client, relay or ID; empty: all
  std::vector<UnitState> letters;  ///< one of these; none: all
  Grouping grouping = Grouping::None;

  bool operator==(const StationChoice&) const = default;
};

/// One group of units, or all of them.
struct StationGroup {
  QString name;
  std::vector<std::size_t> units;  ///< places in the status
};

/// The groups in the order of their names, the units in the order chosen, the worst first where they are equal in it.
[[nodiscard]] std::vector<StationGroup> Arrange(const std::vector<UnitStatus>& units, const StationChoice& choice,
                                                const Phrases& phrases = {});
/// Units and the rows that they make; worked out on a thread for what was chosen then.
struct StationRows {
  std::vector<UnitStatus> units;
  StationChoice choice;
  std::vector<StationGroup> groups;
};
[[nodiscard]] StationRows RowsOf(std::vector<UnitStatus> units, const StationChoice& choice, const Phrases& phrases);
/// What the units of a group have in common.
[[nodiscard]] QString GroupOf(const UnitStatus& unit, Grouping grouping, const Phrases& phrases);

}  // namespace corvane::window
