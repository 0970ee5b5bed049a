#pragma once

#include <optional>
#include <span>

#include "base/dates.h"
#include "platform/history_records.h"

namespace corvane {

/// How a unit's battery stands and where it goes.
struct BatteryView {
  std::optional<double> volts;
  std::optional<double> slope;      ///< volts a day, by the last values of the days since it was last changed
  std::optional<double> days_left;  ///< until the limit at that slope; none: it does not fall, or not within a year
};

/// Works it out from the last 30 days before `av_Now`, in the unit's time; no slope below five days with a value.
/// `av_Days` in the order of time; `ad_Newest` is the newest value known, where that is not of a day.
[[nodiscard]] BatteryView BatteryOf(std::span<const DayRecord> av_Days, std::optional<double> ad_Newest,
                                    double ad_Limit, DateTime av_Now);

}  // namespace corvane
