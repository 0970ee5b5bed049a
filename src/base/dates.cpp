#include "base/dates.h"

namespace corvane {
namespace {

/// Days from 1 March 0000 to the given date (months counted from March), after Hinnant's chrono-compatible algorithms.
constexpr std::int64_t DaysFromCivil(std::int64_t year, int month, int day) {
  year -= month <= 2 ? 1 : 0;
  const std::int64_t era = (year >= 0 ? year : year - 399) / 400;
  const std::int64_t year_of_era = year - era * 400;
  const std::int64_t day_of_year = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
  return era * 146097 + year_of_era * 365 + year_of_era / 4 - year_of_era / 100 + day_of_year;
}

constexpr std::int64_t kDayZero = DaysFromCivil(1899, 12, 30);

}  // namespace

DateTime DateTime::FromCivil(std::int64_t year, int month, int day, int hour, int minute, int second) {
  const std::int64_t days = DaysFromCivil(year, month, day) - kDayZero;
  return DateTime(days * kSecondsPerDay + hour * 3600 + minute * 60 + second);
}

CivilTime DateTime::ToCivil() const {
  CivilTime civil;
  const auto time = static_cast<std::uint32_t>(TimeOfDay());
  const std::int64_t day_count = (seconds_ - time) / kSecondsPerDay;
  const std::int64_t days = day_count + kDayZero;
  const std::int64_t era = (days >= 0 ? days : days - 146096) / 146097;
  // Within 400 years, and so in 32 bits, which divide much faster.
  const auto day_of_era = static_cast<std::uint32_t>(days - era * 146097);
  const std::uint32_t year_of_era = (day_of_era - day_of_era / 1460 + day_of_era / 36524 - day_of_era / 146096) / 365;
  const std::uint32_t day_of_year = day_of_era - (365 * year_of_era + year_of_era / 4 - year_of_era / 100);
  const std::uint32_t month_from_march = (5 * day_of_year + 2) / 153;
  civil.day = static_cast<int>(day_of_year - (153 * month_from_march + 2) / 5 + 1);
  civil.month = static_cast<int>(month_from_march < 10 ? month_from_march + 3 : month_from_march - 9);
  civil.year = year_of_era + era * 400 + (civil.month <= 2 ? 1 : 0);
  civil.hour = static_cast<int>(time / 3600);
  civil.minute = static_cast<int>(time / 60 % 60);
  civil.second = static_cast<int>(time % 60);
  civil.weekday = static_cast<int>(((day_count % 7) + 7 + 6) % 7);
  return civil;
}

}  // namespace corvane
