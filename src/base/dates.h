#pragma once

#include <cmath>
#include <compare>
#include <cstdint>

namespace corvane {

inline constexpr std::int64_t kSecondsPerDay = 86400;

/// The parts of a local calendar date and time.
struct CivilTime {
  std::int64_t year = 0;
  int month = 1;    ///< 1 to 12
  int day = 1;      ///< 1 to 31
  int hour = 0;     ///< 0 to 23
  int minute = 0;   ///< 0 to 59
  int second = 0;   ///< 0 to 59
  int weekday = 0;  ///< 0 Sunday to 6 Saturday
};

/// A local date and time in whole seconds since day 0 (30 December 1899); day 0 itself means "none".
///
/// Proleptic Gregorian calendar, no time zones and no leap seconds. Whole seconds keep schedules exact.
class DateTime {
 public:
  constexpr DateTime() = default;
  constexpr explicit DateTime(std::int64_t seconds) : seconds_(seconds) {}

  /// The date-time of calendar parts; a day beyond its month's end counts on (30 February is 2 March at the latest).
  static DateTime FromCivil(std::int64_t year, int month, int day, int hour = 0, int minute = 0, int second = 0);
  /// The date-time of a day count, rounded to the nearest second.
  static DateTime FromDays(double days) { return DateTime(std::llround(days * static_cast<double>(kSecondsPerDay))); }

  [[nodiscard]] constexpr std::int64_t seconds() const { return seconds_; }
  /// Days since day 0, the time of day as the fraction.
  [[nodiscard]] constexpr double days() const {
    return static_cast<double>(seconds_) / static_cast<double>(kSecondsPerDay);
  }
  [[nodiscard]] constexpr bool IsNone() const { return seconds_ == 0; }
  /// Seconds since the midnight that began this day, 0 to 86399.
  [[nodiscard]] constexpr std::int64_t TimeOfDay() const {
    return ((seconds_ % kSecondsPerDay) + kSecondsPerDay) % kSecondsPerDay;
  }
  [[nodiscard]] constexpr DateTime Midnight() const { return DateTime(seconds_ - TimeOfDay()); }
  [[nodiscard]] CivilTime ToCivil() const;

  constexpr auto operator<=>(const DateTime&) const = default;
  friend constexpr DateTime operator+(DateTime when, std::int64_t seconds) { return DateTime(when.seconds_ + seconds); }
  friend constexpr DateTime operator-(DateTime when, std::int64_t seconds) { return DateTime(when.seconds_ - seconds); }
  friend constexpr std::int64_t operator-(DateTime a, DateTime b) { return a.seconds_ - b.seconds_; }

 private:
  std::int64_t seconds_ = 0;
};

/// A moment that no change of this computer's time zone moves. None before any was taken.
struct Moment {
  std::int64_t utc = 0;    ///< seconds since 1970
  std::int32_t ahead = 0;  ///< seconds that the local clock showed more than UTC then

  [[nodiscard]] constexpr bool IsNone() const { return utc == 0; }
  /// What the local clock showed.
  [[nodiscard]] constexpr DateTime Local() const { return DateTime(utc + ahead + 25569 * kSecondsPerDay); }
  /// The moment at which it is `utc` and the local clock shows `local`.
  static constexpr Moment At(std::int64_t utc, DateTime local) {
    return {utc, static_cast<std::int32_t>(local.seconds() - 25569 * kSecondsPerDay - utc)};
  }
  friend constexpr auto operator<=>(const Moment& a, const Moment& b) { return a.utc <=> b.utc; }
  friend constexpr bool operator==(const Moment& a, const Moment& b) { return a.utc == b.utc; }
  friend constexpr std::int64_t operator-(const Moment& a, const Moment& b) { return a.utc - b.utc; }
};

}  // namespace corvane
