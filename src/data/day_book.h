#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string_view>
#include <vector>

#include "base/dates.h"
#include "platform/history_records.h"

namespace corvane {

/// What is counted of one day of a unit.
struct DayCount {
  std::int64_t stored = 0;
  std::int64_t missing = 0;  ///< readings that were due and are not there
  DateTime first;
  DateTime last;
  std::optional<double> battery;      ///< volts
  std::vector<std::int64_t> outside;  ///< readings outside the table by item, as long as needed
};

/// The days of a unit, by their midnight.
class DayBook {
 public:
  using Days = std::map<DateTime, DayCount>;

  /// Counts a reading; valid until the next call.
  DayCount& Store(DateTime av_When) {
    if (day_ == nullptr || av_When < midnight_ || av_When - midnight_ >= kSecondsPerDay) Turn(av_When);
    DayCount& day = *day_;
    if (day.stored++ == 0) day.first = day.last = av_When;
    if (av_When < day.first) day.first = av_When;
    if (av_When > day.last) day.last = av_When;
    return day;
  }
  /// Counts readings that were due every `al_Period` seconds behind `av_From`.
  void Miss(DateTime av_From, std::int64_t al_Period, std::int64_t al_Count);
  /// Puts back what was known of a day.
  void Put(DateTime av_Midnight, const DayCount& av_Day) { days_[av_Midnight] = av_Day; }
  /// The days from that date's midnight on; those between two that are there are put in when they are not too many.
  [[nodiscard]] std::vector<DayRecord> Records(DateTime av_From, std::int64_t al_Unit) const;
  [[nodiscard]] const Days& days() const { return days_; }

 private:
  void Turn(DateTime av_When);

  Days days_;
  DayCount* day_ = nullptr;  ///< of the reading before
  DateTime midnight_;
};

}  // namespace corvane
