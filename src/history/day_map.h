// How much of each day of each unit is there: the gap map of every view.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/dates.h"
#include "lang/phrases.h"
#include "platform/history_records.h"
#include "platform/history_store.h"

namespace corvane {

/// One day of one unit, in the unit's time.
struct DayCell {
  std::int32_t expected = 0;  ///< readings; 0: none were due, or nothing is known of the day
  std::int32_t stored = 0;
  std::int32_t lost = 0;   ///< of those missing, for ever
  std::int32_t open = 0;   ///< of those missing, that a repair can ask for
  bool by_itself = false;  ///< the next repair asks for them without a person's word
  bool to_come = false;    ///< those missing that no gap tells of come with the next download
  bool unheard = false;    ///< the unit has not been heard of until its end: what it has logged then is not known
  bool unknown = false;    ///< no reading of the unit is known, on that day or any other of the map

  [[nodiscard]] constexpr std::int32_t missing() const { return expected > stored ? expected - stored : 0; }
  /// Of the readings expected, 0 to 1; none where none were.
  [[nodiscard]] constexpr std::optional<double> share() const {
    if (expected <= 0) return std::nullopt;
    return static_cast<double>(expected - missing()) / expected;
  }
  bool operator==(const DayCell&) const = default;
};

/// How much of a day is there, in the steps that a map shows by colour and pattern.
enum class DayGrade : std::uint8_t { NotDue, Whole, Most, Part, Nothing, Unheard };
/// "no readings due", "whole", "most", "part", "nothing", "not heard of".
[[nodiscard]] std::string_view NameOf(DayGrade ae_Grade);
/// "Most" is 90 % and above; "Unheard" lacks nothing that is known.
[[nodiscard]] DayGrade GradeOf(const DayCell& av_Cell);

/// The days of one unit, the oldest first.
struct DayRow {
  std::int64_t unit = 0;  ///< key
  std::vector<DayCell> cells;
};

struct DayMap {
  DateTime first;            ///< midnight of the oldest day
  std::vector<DayRow> rows;  ///< in the order of the units' keys, for the units in the list

  /// Midnight of the day of a place in a row.
  [[nodiscard]] DateTime DayOf(std::size_t av_Place) const {
    return first + static_cast<std::int64_t>(av_Place) * kSecondsPerDay;
  }
  /// The row of a unit; null when there is none.
  [[nodiscard]] const DayRow* Find(std::int64_t al_Key) const;
};

inline constexpr std::int64_t kMapDays = 90;

/// What a map reads of the history at `av_Now`, today the last of its days.
[[nodiscard]] HistoryQuery DayMapQuery(Moment av_Now, std::int64_t al_Days = kMapDays);
/// The map of what that query has read, in the order in which it was read. Depends on nothing but its arguments.
[[nodiscard]] DayMap MakeDayMap(const HistoryContents& av_History, Moment av_Now, std::int64_t al_Days = kMapDays);
/// One sentence without a full stop: "3 October: 40 of 48 readings, 8 missing, asked for by the next repair".
[[nodiscard]] std::string DayText(DateTime av_Day, const DayCell& av_Cell, const Phrases& av_Phrases = {});

/// What that is made of.
[[nodiscard]] std::vector<Phrase> DayPhrases();

}  // namespace corvane
