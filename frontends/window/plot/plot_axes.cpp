#include "window/plot/plot_axes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "lang/date_words.h"

namespace corvane::window {
namespace {

constexpr std::int64_t kMinute = 60;
constexpr std::int64_t kHour = 3600;
constexpr double kDaysPerMonth = 30.4;
constexpr std::array<std::int64_t, 11> kSteps = {kMinute,        5 * kMinute,        10 * kMinute,      30 * kMinute,
                                                 kHour,          3 * kHour,          6 * kHour,         12 * kHour,
                                                 kSecondsPerDay, 2 * kSecondsPerDay, 7 * kSecondsPerDay};
constexpr std::array<int, 8> kMonthSteps = {1, 3, 6, 12, 24, 60, 120, 600};

QString Written(std::int64_t seconds, const char* pattern, const Phrases& phrases) {
  return QString::fromStdString(DateText(DateTime(seconds), pattern, phrases));
}

/// Marks one behind the other, in one language.
class TimeMarks {
 public:
  explicit TimeMarks(const Phrases& phrases) : phrases_(phrases) {}

  void Add(std::int64_t at, const char* pattern, const char* context) {
    const QString now = *context == '\0' ? QString() : Written(at, context, phrases_);
    ticks.push_back({static_cast<double>(at), Written(at, pattern, phrases_), now == former_ ? QString() : now});
    former_ = now;
  }

  std::vector<Tick> ticks;

 private:
  const Phrases& phrases_;
  QString former_;
};

std::vector<Tick> TicksOfMonths(const TimeSpan& span, int months, const Phrases& phrases) {
  TimeMarks marks(phrases);
  const std::int64_t begin = DateTime(static_cast<std::int64_t>(span.from)).ToCivil().year;
  for (std::int64_t month = begin * 12 / months * months;; month += months) {
    const auto at = DateTime::FromCivil(month / 12, static_cast<int>(month % 12) + 1, 1).seconds();
    if (static_cast<double>(at) > span.to) return std::move(marks.ticks);
    if (static_cast<double>(at) < span.from) continue;
    const bool years = months >= 12;
    marks.Add(at, years ? "yyyy" : "mmm", years ? "" : "yyyy");
  }
}

}  // namespace

std::vector<Tick> NumberTicks(double least, double most, int count) {
  std::vector<Tick> ticks;
  const double wanted = (most - least) / std::max(count, 1);
  if (!(wanted > 0) || !std::isfinite(wanted)) return ticks;
  const double power = std::pow(10, std::floor(std::log10(wanted)));
  double step = 10 * power;
  for (const double part : {5.0, 2.0, 1.0}) {
    if (part * power >= wanted) step = part * power;
  }
  const int decimals = std::clamp(static_cast<int>(-std::floor(std::log10(step) + 1e-9)), 0, 9);
  for (double place = std::ceil(least / step - 1e-9); place * step <= most + step * 1e-9; ++place) {
    // Adding 0 takes the sign off a zero.
    ticks.push_back({place * step, QString::number(place * step + 0.0, 'f', decimals), {}});
  }
  return ticks;
}

std::vector<Tick> TimeTicks(const TimeSpan& span, int count, const Phrases& phrases) {
  if (!(span.length() > 0)) return {};
  const double wanted = span.length() / std::max(count, 1);
  const auto* const step = std::find_if(kSteps.begin(), kSteps.end(),
                                        [wanted](std::int64_t each) { return static_cast<double>(each) >= wanted; });
  if (step == kSteps.end()) {
    const double months = wanted / kDaysPerMonth / static_cast<double>(kSecondsPerDay);
    const auto* const found = std::find_if(kMonthSteps.begin(), kMonthSteps.end(),
                                           [months](int each) { return static_cast<double>(each) >= months; });
    return TicksOfMonths(span, found == kMonthSteps.end() ? kMonthSteps.back() : *found, phrases);
  }
  TimeMarks marks(phrases);
  const bool days = *step >= kSecondsPerDay;
  const auto first = static_cast<std::int64_t>(std::ceil(span.from / static_cast<double>(*step))) * *step;
  for (std::int64_t at = first; static_cast<double>(at) <= span.to; at += *step) {
    marks.Add(at, days ? "d mmm" : "hh:nn", days ? "yyyy" : "d mmm yyyy");
  }
  return std::move(marks.ticks);
}

QString TimeText(double seconds, const Phrases& phrases) {
  return Written(std::llround(seconds), "d mmm yyyy HH:NN", phrases);
}

}  // namespace corvane::window
