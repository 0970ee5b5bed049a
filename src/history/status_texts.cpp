#include "history/status_texts.h"

#include <array>
#include <cstddef>
#include <cstdlib>
#include <utility>

#include "base/format.h"

namespace corvane {
namespace {

struct SpanUnit {
  std::int64_t seconds;
  std::int64_t from;  ///< durations from here on are told in it
  std::string_view one;
  std::string_view many;
  std::string_view brief;
};

constexpr std::array kSpanUnits = {
    SpanUnit{kSecondsPerDay, 2 * kSecondsPerDay, "day", "days", "d"},
    SpanUnit{3600, 2 * 3600, "hour", "hours", "h"},
    SpanUnit{60, 2 * 60, "minute", "minutes", "min"},
    SpanUnit{1, 0, "second", "seconds", "s"},
};

/// The unit in which a duration is told, and how many of it.
std::pair<const SpanUnit&, std::int64_t> ToldIn(std::int64_t al_Seconds) {
  const std::int64_t seconds = std::llabs(al_Seconds);
  const SpanUnit* unit = kSpanUnits.data();
  while (seconds < unit->from) ++unit;
  return {*unit, (seconds + unit->seconds / 2) / unit->seconds};
}

constexpr std::array<std::string_view, 4> kRoundNames = {"download", "fetching", "command", "repair"};

}  // namespace

std::string CountText(std::int64_t al_Count, std::string_view as_One, std::string_view as_Many) {
  return std::to_string(al_Count) + " " + std::string(al_Count == 1 ? as_One : as_Many);
}

std::string SpanText(std::int64_t al_Seconds) {
  const auto [unit, count] = ToldIn(al_Seconds);
  return CountText(count, unit.one, unit.many);
}

std::string BriefSpanText(std::int64_t al_Seconds) {
  const auto [unit, count] = ToldIn(al_Seconds);
  return std::to_string(count) + " " + std::string(unit.brief);
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
  if (av_Round.problems > 0) text += ", " + CountText(av_Round.problems, "unit or file", "units or files") + " failed";
  if (!av_Round.ending.empty()) text += "; ended early: " + av_Round.ending;
  return text;
}

}  // namespace corvane
