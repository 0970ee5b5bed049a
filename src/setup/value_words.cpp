#include "setup/value_words.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

#include "base/dates.h"
#include "base/numbers.h"
#include "base/text.h"
#include "data/logging_schedule.h"
#include "link/exchange.h"
#include "link/schedule.h"

namespace corvane {
namespace {

constexpr std::int64_t kMinute = 60;
constexpr std::int64_t kHour = 60 * kMinute;

std::string Count(std::string_view as_Number, std::string_view as_What) {
  return std::string(as_Number) + " " + std::string(as_What) + (as_Number == "1" ? "" : "s");
}

/// A duration to the second, in hours up to two days.
std::string SpanInWords(std::int64_t al_Seconds) {
  struct Part {
    std::int64_t seconds;
    std::int64_t from;
    std::string_view name;
  };
  constexpr std::array kParts = {Part{kSecondsPerDay, 2 * kSecondsPerDay, "day"}, Part{kHour, kHour, "hour"},
                                 Part{kMinute, kMinute, "minute"}, Part{1, 1, "second"}};
  std::string text;
  for (const Part& part : kParts) {
    if (al_Seconds < part.from) continue;
    text += (text.empty() ? "" : " ") + Count(std::to_string(al_Seconds / part.seconds), part.name);
    al_Seconds %= part.seconds;
  }
  return text;
}

std::string SpanIn(std::optional<std::int64_t> al_Seconds) {
  return al_Seconds ? SpanInWords(*al_Seconds) : std::string();
}

template <const char* kWhat>
std::string Of(std::string_view as_Value) {
  const std::string number(Trim(as_Value));
  return ParseNumber(number) ? Count(number, kWhat) : std::string();
}

constexpr char kSeconds[] = "second";
constexpr char kLines[] = "line";
constexpr char kIntervals[] = "interval";
constexpr char kVolts[] = "volt";
constexpr char kYears[] = "year";

std::string LogSize(std::string_view as_Value) {
  const std::optional<double> size = ParseNumber(as_Value);
  if (!size) return {};
  return *size == 0 ? "without end" : std::string(Trim(as_Value)) + " MB";
}

std::string LogPeriod(std::string_view as_Value) {
  const std::optional<int> minutes = LogPeriodMinutes(as_Value);
  return minutes ? SpanInWords(*minutes * kMinute) : std::string();
}

struct Words {
  std::string_view key;
  std::string (*of)(std::string_view value);
};

constexpr std::array kWords = {
    Words{"AutomaticInterval", [](std::string_view value) { return SpanIn(AutomaticInterval(value)); }},
    Words{"Interval", [](std::string_view value) { return SpanIn(LoggingSchedule::Interval(value)); }},
    Words{"LogPeriod", LogPeriod},
    Words{"Timeout", Of<kSeconds>},
    Words{"DataTimeout", Of<kSeconds>},
    Words{"UnitWait", Of<kSeconds>},
    Words{"RepairLimit", Of<kLines>},
    Words{"LateAfter", Of<kIntervals>},
    Words{"BatteryLimit", Of<kVolts>},
    Words{"HistoryYears", Of<kYears>},
    Words{"LogSize", LogSize},
};

}  // namespace

std::string ValueInWords(std::string_view as_Key, std::string_view as_Value) {
  const auto* const found = std::find_if(kWords.begin(), kWords.end(),
                                         [as_Key](const Words& words) { return EqualsNoCase(words.key, as_Key); });
  return found == kWords.end() ? std::string() : found->of(as_Value);
}

}  // namespace corvane
