#include "history/status_headline.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

#include "base/format.h"
#include "history/status_texts.h"

namespace corvane {
namespace {

/// More units than these are counted, not named.
constexpr std::int64_t kMostNamed = 3;

struct StateWords {
  UnitState state;
  std::string_view one;
  std::string_view many;
};

/// The worst first.
constexpr std::array kWords = {
    StateWords{UnitState::Silent, "is silent", "are silent"},
    StateWords{UnitState::Late, "is late", "are late"},
    StateWords{UnitState::Trouble, "has trouble", "have trouble"},
    StateWords{UnitState::New, "is new", "are new"},
};

std::int64_t CountOf(const NetworkStatus& av_Status, UnitState ae_State) {
  const auto state = static_cast<std::size_t>(ae_State);
  return state < av_Status.counts.size() ? av_Status.counts[state] : 0;
}

std::string SilenceOf(const UnitStatus& av_Unit, Moment av_Now) {
  if (av_Unit.last_answered.IsNone()) return " has never answered";
  return " is silent for " + SpanText(av_Now - av_Unit.last_answered);
}

/// One unit that is not fine.
std::string TextOf(const UnitStatus& av_Unit, const StateWords& av_Words, Moment av_Now) {
  if (av_Unit.state == UnitState::Silent) return av_Unit.name + SilenceOf(av_Unit, av_Now);
  std::string text = av_Unit.name + " " + std::string(av_Words.one);
  if (av_Unit.state == UnitState::Late && av_Unit.reading_age) text += " (" + SpanText(*av_Unit.reading_age) + ")";
  return text;
}

/// What is wrong, each piece behind a comma.
std::string WhatIsWrong(const NetworkStatus& av_Status) {
  std::int64_t wrong = 0;
  for (const StateWords& words : kWords) wrong += CountOf(av_Status, words.state);
  std::string text;
  for (const StateWords& words : kWords) {
    const std::int64_t count = CountOf(av_Status, words.state);
    if (count == 0) continue;
    if (wrong > kMostNamed) {
      text += ", " + std::to_string(count) + " " + std::string(count == 1 ? words.one : words.many);
      continue;
    }
    for (const UnitStatus& unit : av_Status.units) {
      if (unit.state == words.state) text += ", " + TextOf(unit, words, av_Status.now);
    }
  }
  return text;
}

std::int64_t SilentBehind(const NetworkStatus& av_Status) {
  return std::count_if(av_Status.units.begin(), av_Status.units.end(), [&av_Status](const UnitStatus& unit) {
    return unit.state == UnitState::Silent && unit.relay == av_Status.worst_relay;
  });
}

std::string NextRound(const NetworkStatus& av_Status) {
  if (av_Status.next_round.IsNone()) return "; no round is planned";
  const DateTime now = av_Status.now.Local();
  if (av_Status.next_round <= now) return "; the next round is due";
  const bool today = av_Status.next_round.Midnight() == now.Midnight();
  return "; next round " + (today ? "at " + FormatDate(av_Status.next_round, "HH:MM") : WhenText(av_Status.next_round));
}

}  // namespace

std::string HeadlineOf(const NetworkStatus& av_Status) {
  if (!av_Status.nobody_collects.empty()) return "Nobody collects. " + av_Status.nobody_collects;
  if (av_Status.units.empty()) return "There are no units";
  const std::int64_t off = CountOf(av_Status, UnitState::Off);
  const std::int64_t fine = CountOf(av_Status, UnitState::Fine);
  const std::int64_t active = std::ssize(av_Status.units) - off;
  std::string text = "No unit is active";
  if (active > 0 && fine == active) {
    text = active == 1 ? "The unit is fine" : "All " + std::to_string(active) + " units are fine";
  } else if (active > 0) {
    text = std::to_string(fine) + " of " + CountText(active, "unit", "units") + (fine == 1 ? " is fine" : " are fine");
    text += WhatIsWrong(av_Status);
  }
  if (off > 0 && active > 0) text += ", " + std::to_string(off) + (off == 1 ? " is off" : " are off");
  if (!av_Status.worst_relay.empty()) {
    text +=
        "; " + std::to_string(SilentBehind(av_Status)) + " of the silent ones behind relay " + av_Status.worst_relay;
  }
  if (const std::string files = UndeliveredText(av_Status); !files.empty()) text += "; " + files;
  return text + NextRound(av_Status);
}

}  // namespace corvane
