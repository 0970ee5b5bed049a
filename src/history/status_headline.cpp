#include "history/status_headline.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "base/format.h"
#include "history/status_texts.h"

namespace corvane {
namespace {

/// More units than these are counted, not named.
constexpr std::int64_t kMostNamed = 3;

constexpr struct {
  Phrase nobody_collects{1071, "Nobody collects. %1"};
  Phrase no_units{1072, "There are no units"};
  Phrase none_active{1073, "No unit is active"};
  Phrase one_is_all{1074, "The unit is fine"};
  Phrase all_fine{1075, "All %1 units are fine"};
  CountPhrase of_many{{1076, "%1 of %2 units is fine"}, {1077, "%1 of %2 units are fine"}};
  Phrase not_the_one{1078, "%1 of %2 unit are fine"};
  CountPhrase silent{{1079, "%1 is silent"}, {1080, "%1 are silent"}};
  CountPhrase late{{1081, "%1 is late"}, {1082, "%1 are late"}};
  CountPhrase trouble{{1083, "%1 has trouble"}, {1084, "%1 have trouble"}};
  CountPhrase is_new{{1085, "%1 is new"}, {1086, "%1 are new"}};
  CountPhrase off{{1087, "%1 is off"}, {1088, "%1 are off"}};
  Phrase silent_for{1089, "%1 is silent for %2"};
  Phrase never_answered{1090, "%1 has never answered"};
  Phrase late_by{1091, "%1 is late (%2)"};
  Phrase behind_relay{1092, "%1 of the silent ones behind relay %2"};
  Phrase no_round{1095, "no round is planned"};
  Phrase round_due{1096, "the next round is due"};
  Phrase round_today{1097, "next round at %1"};
  Phrase round_on{1098, "next round %1"};
} kHeadlineSays;

struct StateWords {
  UnitState state;
  CountPhrase words;
};

/// The worst first.
constexpr std::array kWords = {
    StateWords{UnitState::Silent, kHeadlineSays.silent},
    StateWords{UnitState::Late, kHeadlineSays.late},
    StateWords{UnitState::Trouble, kHeadlineSays.trouble},
    StateWords{UnitState::New, kHeadlineSays.is_new},
};

std::int64_t CountOf(const NetworkStatus& av_Status, UnitState ae_State) {
  const auto state = static_cast<std::size_t>(ae_State);
  return state < av_Status.counts.size() ? av_Status.counts[state] : 0;
}

/// One unit that is not fine.
std::string TextOf(const UnitStatus& av_Unit, const StateWords& av_Words, Moment av_Now, const Phrases& av_Phrases) {
  if (av_Unit.state == UnitState::Silent) {
    if (av_Unit.last_answered.IsNone()) return av_Phrases.Text(kHeadlineSays.never_answered, {av_Unit.name});
    return av_Phrases.Text(kHeadlineSays.silent_for,
                           {av_Unit.name, SpanText(av_Now - av_Unit.last_answered, av_Phrases, SpanForm::Dependent)});
  }
  if (av_Unit.state == UnitState::Late && av_Unit.reading_age) {
    return av_Phrases.Text(kHeadlineSays.late_by, {av_Unit.name, SpanText(*av_Unit.reading_age, av_Phrases)});
  }
  return av_Phrases.Text(av_Words.words.one, {av_Unit.name});
}

/// What is wrong, each piece behind a comma.
std::string WhatIsWrong(const NetworkStatus& av_Status, const Phrases& av_Phrases) {
  std::int64_t wrong = 0;
  for (const StateWords& words : kWords) wrong += CountOf(av_Status, words.state);
  std::string text;
  for (const StateWords& words : kWords) {
    const std::int64_t count = CountOf(av_Status, words.state);
    if (count == 0) continue;
    if (wrong > kMostNamed) {
      text += ", " + CountText(count, words.words, av_Phrases);
      continue;
    }
    for (const UnitStatus& unit : av_Status.units) {
      if (unit.state == words.state) text += ", " + TextOf(unit, words, av_Status.now, av_Phrases);
    }
  }
  return text;
}

std::int64_t SilentBehind(const NetworkStatus& av_Status) {
  return std::count_if(av_Status.units.begin(), av_Status.units.end(), [&av_Status](const UnitStatus& unit) {
    return unit.state == UnitState::Silent && unit.relay == av_Status.worst_relay;
  });
}

std::string NextRound(const NetworkStatus& av_Status, const Phrases& av_Phrases) {
  if (av_Status.next_round.IsNone()) return av_Phrases.Text(kHeadlineSays.no_round);
  const DateTime now = av_Status.now.Local();
  if (av_Status.next_round <= now) return av_Phrases.Text(kHeadlineSays.round_due);
  if (av_Status.next_round.Midnight() != now.Midnight()) {
    return av_Phrases.Text(kHeadlineSays.round_on, {WhenText(av_Status.next_round, av_Phrases)});
  }
  return av_Phrases.Text(kHeadlineSays.round_today, {FormatDate(av_Status.next_round, "HH:MM")});
}

/// How many are fine, without a word on the others.
std::string FineText(std::int64_t al_Fine, std::int64_t al_Active, const Phrases& av_Phrases) {
  const std::string fine = std::to_string(al_Fine);
  const std::string active = std::to_string(al_Active);
  if (al_Active == 0) return av_Phrases.Text(kHeadlineSays.none_active);
  if (al_Active == 1) {
    return al_Fine == 1 ? av_Phrases.Text(kHeadlineSays.one_is_all)
                        : av_Phrases.Text(kHeadlineSays.not_the_one, {fine, active});
  }
  if (al_Fine == al_Active) return av_Phrases.Text(kHeadlineSays.all_fine, {active});
  return av_Phrases.Text(al_Fine == 1 ? kHeadlineSays.of_many.one : kHeadlineSays.of_many.many, {fine, active});
}

}  // namespace

std::string HeadlineOf(const NetworkStatus& av_Status, const Phrases& av_Phrases) {
  if (!av_Status.nobody_collects.empty()) {
    return av_Phrases.Text(kHeadlineSays.nobody_collects, {av_Status.nobody_collects});
  }
  if (av_Status.units.empty()) return av_Phrases.Text(kHeadlineSays.no_units);
  const std::int64_t off = CountOf(av_Status, UnitState::Off);
  const std::int64_t active = std::ssize(av_Status.units) - off;
  std::string text = FineText(CountOf(av_Status, UnitState::Fine), active, av_Phrases);
  if (active > 0) text += WhatIsWrong(av_Status, av_Phrases);
  if (off > 0 && active > 0) text += ", " + CountText(off, kHeadlineSays.off, av_Phrases);
  if (!av_Status.worst_relay.empty()) {
    const std::string silent = std::to_string(SilentBehind(av_Status));
    text += "; " + av_Phrases.Text(kHeadlineSays.behind_relay, {silent, av_Status.worst_relay});
  }
  if (const std::string files = UndeliveredText(av_Status, av_Phrases); !files.empty()) text += "; " + files;
  return text + "; " + NextRound(av_Status, av_Phrases);
}

std::vector<Phrase> HeadlinePhrases() {
  return PhrasesIn(kHeadlineSays);
}

}  // namespace corvane
