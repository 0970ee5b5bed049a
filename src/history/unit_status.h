#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "history/network_status.h"
#include "history/own_clock.h"
#include "lang/phrases.h"

namespace corvane {

/// All that a history holds of one unit, in the order of time.
struct UnitHistory {
  const UnitRecord* unit = nullptr;
  std::span<const ContactRecord> contacts;
  std::span<const DeliveryRecord> deliveries;
  std::span<const DayRecord> days;
  std::span<const GapRecord> gaps;
  const ScanRecord* scan = nullptr;
  const NoteRecord* note = nullptr;
};

/// What of `av_History` belongs to one unit. Points into both.
[[nodiscard]] UnitHistory HistoryOf(const HistoryContents& av_History, const UnitRecord& av_Unit);

/// What holds for all units.
struct StatusRules {
  Moment now;
  std::optional<std::int64_t> interval;  ///< seconds between rounds
  double late_after = 2;                 ///< intervals
  double battery_limit = 11.5;           ///< volts
  std::int64_t repair_limit = 2000;      ///< lines
  OwnClock own_clock;
  Phrases phrases;  ///< in which its reasons are told

  /// What is wrong for good is told of gaps that end from then on.
  [[nodiscard]] DateTime NewsFrom() const { return now.Local() - 30 * kSecondsPerDay; }
  /// From how old a last reading on a unit of a log period is late; both in seconds, the period 0 where not known.
  [[nodiscard]] std::int64_t LateFrom(std::int64_t al_Period) const;
};

/// From so many seconds on a unit was not heard of lately, when it is asked once a day.
inline constexpr std::int64_t kHeardLately = kSecondsPerDay + 3600;

/// Whether the unit was to answer, and did or did not.
[[nodiscard]] constexpr bool WasAsked(Outcome ae_Outcome) {
  return ae_Outcome == Outcome::Answered || ae_Outcome == Outcome::Failed || ae_Outcome == Outcome::Silent;
}

/// How one unit stands.
[[nodiscard]] UnitStatus StatusOf(const UnitHistory& av_History, const StatusRules& av_Rules);

/// What its texts are made of, but for troubles.
[[nodiscard]] std::vector<Phrase> UnitStatusPhrases();

}  // namespace corvane
