#include "history/status_texts.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <utility>

#include "base/format.h"
#include "lang/date_words.h"

namespace corvane {
namespace {

constexpr struct {
  CountPhrase seconds{{1030, "%1 second"}, {1031, "%1 seconds"}};
  Phrase minutes{1032, "%1 minutes"};
  Phrase hours{1033, "%1 hours"};
  Phrase days{1034, "%1 days"};
  CountPhrase dependent_seconds{{1035, "%1 second"}, {1036, "%1 seconds"}};
  Phrase dependent_minutes{1037, "%1 minutes"};
  Phrase dependent_hours{1038, "%1 hours"};
  Phrase dependent_days{1039, "%1 days"};
  Phrase brief_seconds{1040, "%1 s"};
  Phrase brief_minutes{1041, "%1 min"};
  Phrase brief_hours{1042, "%1 h"};
  Phrase brief_days{1043, "%1 d"};
} kSpans;

struct SpanUnit {
  std::int64_t seconds;
  std::int64_t from;  ///< durations from here on are told in it
  CountPhrase alone;
  CountPhrase dependent;
  Phrase brief;
};

/// Of what is told from two on there is never one.
constexpr std::array kSpanUnits = {
    SpanUnit{kSecondsPerDay,
             2 * kSecondsPerDay,
             {kSpans.days, kSpans.days},
             {kSpans.dependent_days, kSpans.dependent_days},
             kSpans.brief_days},
    SpanUnit{3600,
             2 * 3600,
             {kSpans.hours, kSpans.hours},
             {kSpans.dependent_hours, kSpans.dependent_hours},
             kSpans.brief_hours},
    SpanUnit{60,
             2 * 60,
             {kSpans.minutes, kSpans.minutes},
             {kSpans.dependent_minutes, kSpans.dependent_minutes},
             kSpans.brief_minutes},
    SpanUnit{1, 0, kSpans.seconds, kSpans.dependent_seconds, kSpans.brief_seconds},
};

/// The unit in which a duration is told, and how many of it.
std::pair<const SpanUnit&, std::int64_t> ToldIn(std::int64_t al_Seconds) {
  const std::int64_t seconds = std::llabs(al_Seconds);
  const SpanUnit* unit = kSpanUnits.data();
  while (seconds < unit->from) ++unit;
  return {*unit, (seconds + unit->seconds / 2) / unit->seconds};
}

/// By `RoundKind`, and a kind that is not known.
constexpr std::array kByHand = {Phrase{1050, "download of %1"}, Phrase{1051, "fetching of %1"},
                                Phrase{1052, "command of %1"}, Phrase{1053, "repair of %1"},
                                Phrase{1054, "round of %1"}};
constexpr std::array kAutomatic = {Phrase{1055, "automatic download of %1"}, Phrase{1056, "automatic fetching of %1"},
                                   Phrase{1057, "automatic command of %1"}, Phrase{1058, "automatic repair of %1"},
                                   Phrase{1059, "automatic round of %1"}};

constexpr struct {
  Phrase not_ended{1060, "%1, not ended"};
  Phrase ended{1061, "%1, %2: %3 of %4 answered, %5 stored"};
  CountPhrase failed{{1062, "%1 unit or file failed"}, {1063, "%1 units or files failed"}};
  CountPhrase not_asked{{1887, "%1 unit was not asked"}, {1888, "%1 units were not asked"}};
  Phrase ended_early{1064, "ended early: %1"};
} kRound;

}  // namespace

std::string CountText(std::int64_t al_Count, std::string_view as_One, std::string_view as_Many) {
  return std::to_string(al_Count) + " " + std::string(al_Count == 1 ? as_One : as_Many);
}

std::string CountText(std::int64_t al_Count, const CountPhrase& av_Words, const Phrases& av_Phrases) {
  return av_Phrases.Text(al_Count == 1 ? av_Words.one : av_Words.many, {std::to_string(al_Count)});
}

std::string SpanText(std::int64_t al_Seconds, const Phrases& av_Phrases, SpanForm ae_Form) {
  const auto [unit, count] = ToldIn(al_Seconds);
  return CountText(count, ae_Form == SpanForm::Dependent ? unit.dependent : unit.alone, av_Phrases);
}

std::string BriefSpanText(std::int64_t al_Seconds, const Phrases& av_Phrases) {
  const auto [unit, count] = ToldIn(al_Seconds);
  return av_Phrases.Text(unit.brief, {std::to_string(count)});
}

std::string WhenText(DateTime av_When, const Phrases& av_Phrases) {
  return DateText(av_When, kShownDatePattern, av_Phrases);
}

std::string WhenText(Moment av_When, const Phrases& av_Phrases) {
  return WhenText(av_When.Local(), av_Phrases);
}

void LeftOut::Take(const ContactRecord& av_Contact) {
  if (av_Contact.outcome != Outcome::NotAsked && av_Contact.outcome != Outcome::NoPort) return;
  ++units;
  no_port = no_port || av_Contact.outcome == Outcome::NoPort;
}

std::string RoundText(const RoundRecord& av_Round, const LeftOut& av_LeftOut, const Phrases& av_Phrases) {
  const auto& names = av_Round.start == RoundStart::BySchedule ? kAutomatic : kByHand;
  const std::size_t kind = std::min(static_cast<std::size_t>(av_Round.kind), names.size() - 1);
  const std::string head = av_Phrases.Text(names[kind], {WhenText(av_Round.began, av_Phrases)});
  if (av_Round.ended.IsNone()) return av_Phrases.Text(kRound.not_ended, {head});
  std::string text = av_Phrases.Text(
      kRound.ended, {head, SpanText(av_Round.ended - av_Round.began, av_Phrases), std::to_string(av_Round.answered),
                     CountText(av_Round.asked, kCommonPhrases.units, av_Phrases),
                     CountText(av_Round.stored, kCommonPhrases.readings, av_Phrases)});
  const std::int64_t failed = av_Round.problems - av_LeftOut.units - (av_LeftOut.no_port ? 1 : 0);
  if (failed > 0) text += ", " + CountText(failed, kRound.failed, av_Phrases);
  if (av_LeftOut.units > 0) text += ", " + CountText(av_LeftOut.units, kRound.not_asked, av_Phrases);
  if (!av_Round.ending.empty()) text += "; " + av_Phrases.Text(kRound.ended_early, {av_Round.ending});
  return text;
}

std::vector<Phrase> StatusTextPhrases() {
  std::vector<Phrase> all = PhrasesIn(kSpans);
  for (const auto& more : {PhrasesIn(kCommonPhrases), PhrasesIn(kByHand), PhrasesIn(kAutomatic), PhrasesIn(kRound)}) {
    all.insert(all.end(), more.begin(), more.end());
  }
  return all;
}

}  // namespace corvane
