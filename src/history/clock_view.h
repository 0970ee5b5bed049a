#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "base/dates.h"
#include "history/own_clock.h"
#include "platform/history_records.h"

namespace corvane {

/// Seconds beyond which a unit's clock is wrong, and people are told.
inline constexpr std::int64_t kClockOff = 600;

/// How a unit's clock stands to this computer's.
struct ClockView {
  std::optional<std::int64_t> offset;  ///< seconds that it is ahead of the local time now
  std::optional<double> drift;         ///< seconds a day, since it was last set
  bool of_another_season = false;      ///< it shows what the local clock would show before or behind summer time
};

/// Works it out from contacts in the order of time.
///
/// An offset was taken against the local time of its moment; summer time moves that clock, not the unit's.
[[nodiscard]] ClockView ClockOf(const UnitRecord& av_Unit, std::span<const ContactRecord> av_Contacts, Moment av_Now,
                                const OwnClock& av_Here);

}  // namespace corvane
