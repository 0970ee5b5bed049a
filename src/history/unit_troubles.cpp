#include "history/unit_troubles.h"

#include <algorithm>
#include <cstdlib>
#include <string>

#include "base/numbers.h"
#include "history/clock_view.h"
#include "history/gap_book.h"
#include "history/status_texts.h"
#include "lang/date_words.h"

namespace corvane {
namespace {

constexpr std::int64_t kStill = 48 * 3600;
constexpr std::int64_t kOutsideShare = 10;  ///< of so many readings of a day one may lie outside

constexpr struct {
  CountPhrase missing{{1319, "%1 reading is missing in %2 since %3"}, {1320, "%1 readings are missing in %2 since %3"}};
  CountPhrase lost{{1321, "%1 reading is lost for ever in %2 since %3"},
                   {1322, "%1 readings are lost for ever in %2 since %3"}};
  CountPhrase rejected{{1323, "%1 line was rejected in the last round"},
                       {1324, "%1 lines were rejected in the last round"}};
  Phrase clock_ahead{1325, "Its clock is %1 ahead"};
  Phrase clock_behind{1326, "Its clock is %1 behind"};
  Phrase future{1327, "The last reading, of %1, is %2 in the future"};
  Phrase battery{1328, "The battery is down to %1 V, below %2 V"};
  Phrase still{1329, "Item %1 of its readings has not changed since %2"};
  Phrase outside{1330, "Item %1 lay outside its table in %2 of %3"};
} kTroubleSays;

struct Missing {
  std::int64_t readings = 0;
  std::int64_t gaps = 0;
  DateTime since;

  void Take(const GapRecord& gap) {
    readings += gap.missing;
    ++gaps;
    if (since.IsNone() || gap.from < since) since = gap.from;
  }
};

/// Readings that will be asked for are missing until they are there; what is lost for ever, or nobody asks for by
/// itself any more, is news for 30 days.
std::string MissingText(const UnitHistory& av_History, const StatusRules& av_Rules) {
  Missing missing;
  Missing lost;
  for (const GapRecord& gap : av_History.gaps) {
    const bool news = gap.to >= av_Rules.NewsFrom();
    const bool open = gap.state == GapState::Found || gap.state == GapState::Asked;
    const bool asked = IsAskedForByItself(gap, av_History.unit->get_from, av_Rules.now.Local(), av_Rules.repair_limit);
    if (open && (news || asked)) missing.Take(gap);
    if (gap.state == GapState::Lost && news) lost.Take(gap);
  }
  const auto text = [&phrases = av_Rules.phrases](const Missing& which, const CountPhrase& words) {
    return phrases.Text(which.readings == 1 ? words.one : words.many,
                        {std::to_string(which.readings), CountText(which.gaps, kCommonPhrases.gaps, phrases),
                         WhenText(which.since, phrases)});
  };
  if (missing.gaps > 0) return text(missing, kTroubleSays.missing);
  return lost.gaps > 0 ? text(lost, kTroubleSays.lost) : "";
}

std::string RejectedText(const UnitHistory& av_History, const Phrases& av_Phrases) {
  const auto& contacts = av_History.contacts;
  for (std::size_t i = contacts.size(); i-- > 0;) {
    if (!WasAsked(contacts[i].outcome)) continue;
    if (contacts[i].rejected == 0) break;
    return CountText(contacts[i].rejected, kTroubleSays.rejected, av_Phrases);
  }
  return "";
}

std::string ClockText(const StatusRules& av_Rules, const UnitStatus& av_Status) {
  if (!av_Status.clock_offset || std::llabs(*av_Status.clock_offset) <= kClockOff) return "";
  // Intended: a unit keeps the time it was given; where summer time moves this computer's clock, nobody sets all units.
  if (av_Status.clock_of_another_season) return "";
  return av_Rules.phrases.Text(*av_Status.clock_offset > 0 ? kTroubleSays.clock_ahead : kTroubleSays.clock_behind,
                               {SpanText(*av_Status.clock_offset, av_Rules.phrases)});
}

std::string FutureText(const UnitStatus& av_Status, const Phrases& av_Phrases) {
  if (av_Status.reading_age.value_or(0) >= -kClockOff) return "";
  return av_Phrases.Text(kTroubleSays.future,
                         {WhenText(av_Status.last_reading, av_Phrases), SpanText(*av_Status.reading_age, av_Phrases)});
}

std::string BatteryText(const StatusRules& av_Rules, const UnitStatus& av_Status) {
  if (!av_Status.battery || *av_Status.battery >= av_Rules.battery_limit) return "";
  return av_Rules.phrases.Text(kTroubleSays.battery,
                               {FixedText(*av_Status.battery, 2), FixedText(av_Rules.battery_limit, 2)});
}

std::string StillText(const UnitHistory& av_History, const Phrases& av_Phrases) {
  const ScanRecord* const scan = av_History.scan;
  if (scan == nullptr || scan->still_channel == 0 || scan->last - scan->still_since < kStill) return "";
  return av_Phrases.Text(kTroubleSays.still,
                         {std::to_string(scan->still_channel), WhenText(scan->still_since, av_Phrases)});
}

/// Of the last two days with readings: today is not over.
std::string OutsideText(const UnitHistory& av_History, const Phrases& av_Phrases) {
  const std::int64_t period = av_History.scan != nullptr ? av_History.scan->period : 0;
  int days = 2;
  for (std::size_t i = av_History.days.size(); i-- > 0 && days > 0;) {
    const DayRecord& day = av_History.days[i];
    if (day.stored == 0) continue;
    --days;
    const std::int64_t of_day = std::max(day.stored, period > 0 ? kSecondsPerDay / period : 0);
    if (day.outside_channel == 0 || day.outside * kOutsideShare <= of_day) continue;
    return av_Phrases.Text(kTroubleSays.outside, {std::to_string(day.outside_channel),
                                                  CountText(day.outside, kCommonPhrases.readings, av_Phrases),
                                                  DateText(day.day, "d mmm yyyy", av_Phrases)});
  }
  return "";
}

}  // namespace

std::vector<Trouble> TroublesOf(const UnitHistory& av_History, const StatusRules& av_Rules,
                                const UnitStatus& av_Status) {
  std::vector<Trouble> troubles;
  const auto take = [&troubles](TroubleKind kind, std::string text) {
    if (!text.empty()) troubles.push_back({kind, std::move(text)});
  };
  take(TroubleKind::Missing, MissingText(av_History, av_Rules));
  take(TroubleKind::Rejected, RejectedText(av_History, av_Rules.phrases));
  take(TroubleKind::Clock, ClockText(av_Rules, av_Status));
  take(TroubleKind::Future, FutureText(av_Status, av_Rules.phrases));
  take(TroubleKind::Battery, BatteryText(av_Rules, av_Status));
  take(TroubleKind::Sensor, StillText(av_History, av_Rules.phrases));
  take(TroubleKind::Sensor, OutsideText(av_History, av_Rules.phrases));
  return troubles;
}

std::vector<Phrase> TroublePhrases() {
  return PhrasesIn(kTroubleSays);
}

}  // namespace corvane
