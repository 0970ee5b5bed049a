// What the settings say about watching over the network.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "form/form.h"

namespace corvane {

/// Which numbers a setting takes, and the one that stands for every other text.
struct NumberRule {
  double fallback;
  double lowest;
  double highest;
  bool whole = false;

  /// The number of a text; none when it is none, or beyond the limits.
  [[nodiscard]] std::optional<double> NumberOf(std::string_view as_Text) const;
};

inline constexpr NumberRule kRepairLimitRule{2000, 1, 1'000'000, true};  ///< lines
inline constexpr NumberRule kLateAfterRule{2, 1, 1000};                  ///< intervals
inline constexpr NumberRule kBatteryLimitRule{11.5, 0, 100};             ///< volts
inline constexpr NumberRule kHistoryYearsRule{5, 1, 100, true};

/// The settings of the page "Network", parsed; what the fields do not hold has its default.
struct NetworkSettings {
  bool repairs_gaps = false;
  std::int64_t repair_limit = 2000;       ///< lines that a unit may send for one repair
  double late_after = 2;                  ///< intervals
  double battery_limit = 11.5;            ///< volts
  std::string alert_command;              ///< empty: nobody is told
  std::optional<std::int64_t> digest_at;  ///< seconds behind midnight, local time; none: no digest
  std::int64_t history_years = 5;
  std::string page_folder;  ///< empty: no page is written
  bool page_send = false;
};

[[nodiscard]] NetworkSettings ReadNetworkSettings(const Form& av_Form);

}  // namespace corvane
