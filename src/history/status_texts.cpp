#include "history/status_texts.h"

#include <array>
#include <cstddef>
#include <cstdlib>

#include "base/format.h"

namespace corvane {
namespace {

struct SpanUnit {
  std::int64_t seconds;
  std::int64_t from;  ///< durations from here on are told in it
  std::string_view one;
  std::string_view many;
};

constexpr std::array kSpanUnits = {
    SpanUnit{kSecondsPerDay, 2 * kSecondsPerDay, "day", "days"},
    SpanUnit{3600, 2 * 3600, "hour", "hours"},
    SpanUnit{60, 2 * 60, "minute", "minutes"},
    SpanUnit{1, 0, "second", "seconds"},
};

constexpr std::array<std::string_view, 4> kRoundNames = {"download", "fetching", "command", "repair"};

}  // namespace

std::string CountText(std::int64_t al_Count, std::string_view as_One, std::string_view as_Many) {
  return std::to_string(al_Count) + " " + std::string(al_Count == 1 ? as_One : as_Many);
}

std::string SpanText(std::int64_t al_Seconds) {
  const std::int64_t seconds = std::llabs(al_Seconds);
  const SpanUnit* unit = kSpanUnits.data();
  while (seconds < unit->from) ++unit;
  return CountText((seconds + unit->seconds / 2) / unit->seconds, unit->one, unit->many);
}

std::string WhenText(DateTime av_When) {
  return FormatDate(av_When, kShownDatePattern);
}

std::string WhenText(Moment av_When) {
  return WhenText(av_When.Local());
}

std::string RoundText(const RoundRecord& av_Round) {
  std::string text = av_Round.automatic ? "automatic " : "";
  const auto kind = static_cast<std::size_t>(av_Round.kind);
  text += kind < kRoundNames.size() ? kRoundNames[kind] : "round";
  text += " of " + WhenText(av_Round.began);
  if (av_Round.ended.IsNone()) return text + ", not ended";
  text += ", " + SpanText(av_Round.ended - av_Round.began) + ": " + std::to_string(av_Round.answered) + " of " +
          CountText(av_Round.asked, "unit", "units") + " answered, " +
          CountText(av_Round.stored, "reading", "readings") + " stored";
  if (av_Round.problems > 0) text += ", " + CountText(av_Round.problems, "problem", "problems");
  if (!av_Round.ending.empty()) text += "; ended early: " + av_Round.ending;
  return text;
}

}  // namespace corvane
