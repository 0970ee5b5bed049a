#include "posix/local_clock.h"

#include <algorithm>

namespace corvane {

DateTime LocalClock::Now() const {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  if (cached_second_ == now.tv_sec) return cached_now_;
  // A program that runs for months follows a change of the machine's time zone.
  tzset();
  std::tm local{};
  localtime_r(&now.tv_sec, &local);
  cached_now_ = DateTime::FromCivil(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min,
                                    std::min(local.tm_sec, 59));
  cached_second_ = now.tv_sec;
  return cached_now_;
}

Moment LocalClock::NowUtc() const {
  const DateTime local = Now();
  return Moment::At(*cached_second_, local);
}

std::int64_t LocalClock::MonotonicMilliseconds() {
  timespec now{};
  // A computer that has slept has been set by nobody: this clock goes on meanwhile.
  clock_gettime(CLOCK_BOOTTIME, &now);
  return static_cast<std::int64_t>(now.tv_sec) * 1000 + now.tv_nsec / 1'000'000;
}

}  // namespace corvane
