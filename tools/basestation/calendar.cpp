#include "calendar.h"

#include <array>
#include <chrono>

#include "text.h"

namespace corvane::basestation {
namespace {

constexpr Seconds kDay = 86400;
constexpr Seconds kHour = 3600;

void AppendTwoDigits(std::string& out, std::int64_t number) {
  out += static_cast<char>('0' + number / 10);
  out += static_cast<char>('0' + number % 10);
}

}  // namespace

std::optional<Seconds> TimeOf(int year, int month, int day, int hour, int minute, int second) {
  const std::chrono::year_month_day date{std::chrono::year{year}, std::chrono::month{static_cast<unsigned>(month)},
                                         std::chrono::day{static_cast<unsigned>(day)}};
  if (!date.ok() || hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 59) {
    return std::nullopt;
  }
  const std::int64_t days = std::chrono::sys_days{date}.time_since_epoch().count();
  return days * kDay + hour * kHour + minute * kMinute + second;
}

std::optional<Seconds> ParseTimeDigits(std::string_view digits) {
  if (digits.size() != 10 && digits.size() != 12) {
    return std::nullopt;
  }
  std::array<int, 6> parts{};
  for (std::size_t i = 0; i < digits.size(); i += 2) {
    const auto part = ParseInteger(digits.substr(i, 2), 0, 99);
    if (!part) {
      return std::nullopt;
    }
    parts[i / 2] = static_cast<int>(*part);
  }
  return TimeOf(2000 + parts[0], parts[1], parts[2], parts[3], parts[4], parts[5]);
}

std::optional<Seconds> ParseTime(std::string_view text) {
  constexpr std::array<char, 4> kEnds{'/', '/', ' ', ':'};
  std::array<int, 5> parts{};
  for (std::size_t i = 0; i < parts.size(); ++i) {
    const std::size_t end = i < kEnds.size() ? text.find(kEnds[i]) : text.size();
    const auto part = end == text.npos ? std::nullopt : ParseInteger(text.substr(0, end), 0, 9999);
    if (!part) {
      return std::nullopt;
    }
    parts[i] = static_cast<int>(*part);
    text.remove_prefix(end < text.size() ? end + 1 : end);
  }
  return TimeOf(parts[0], parts[1], parts[2], parts[3], parts[4], 0);
}

void AppendTime(std::string& out, Seconds time) {
  const std::chrono::sys_days day{std::chrono::days{time / kDay}};
  const std::chrono::year_month_day date{day};
  AppendNumber(out, int{date.year()});
  out += '/';
  AppendNumber(out, unsigned{date.month()});
  out += '/';
  AppendNumber(out, unsigned{date.day()});
  out += ' ';
  AppendTwoDigits(out, time % kDay / kHour);
  out += ':';
  AppendTwoDigits(out, time % kHour / kMinute);
}

void AppendTimeWithSeconds(std::string& out, Seconds time) {
  AppendTime(out, time);
  out += ':';
  AppendTwoDigits(out, time % kMinute);
}

}  // namespace corvane::basestation
