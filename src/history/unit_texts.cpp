#include "history/unit_texts.h"

#include <cmath>
#include <cstdlib>

#include "base/format.h"
#include "base/numbers.h"
#include "history/clock_view.h"
#include "history/status_texts.h"
#include "history/unit_status.h"
#include "lang/date_words.h"

namespace corvane {
namespace {

constexpr double kSlopeShown = 0.005;  ///< volts a day

constexpr struct {
  Phrase ago{1332, "%1 ago"};
  Phrase in{1333, "in %1"};
  Phrase ahead{1334, "%1 ahead"};
  CountPhrase days_left{{1335, "%1 day left"}, {1336, "%1 days left"}};
  Phrase volts_a_day{1337, "%1 V a day"};
  Phrase known_to{1338, "to %1"};
  Phrase lost{1339, "%1 lost"};
  Phrase up_to{1340, "up to %1"};
  Phrase never{1341, "never"};
  Phrase then{1342, "then: %1"};
  Phrase by_its_clock{1885, "%1 by its own clock"};
} kUnitSays;

std::string AgoText(Moment av_When, Moment av_Now, const Phrases& av_Phrases) {
  const std::int64_t ago = av_Now - av_When;
  return av_Phrases.Text(ago < 0 ? kUnitSays.in : kUnitSays.ago, {SpanText(ago, av_Phrases, SpanForm::Dependent)});
}

}  // namespace

std::string LastReadingText(const UnitStatus& av_Unit, const Phrases& av_Phrases) {
  if (av_Unit.last_reading.IsNone()) return "";
  if (!av_Unit.reading_age) return WhenText(av_Unit.last_reading, av_Phrases);
  const DateTime now = av_Unit.last_reading + *av_Unit.reading_age;
  const bool this_year = FormatDate(now, "yyyy") == FormatDate(av_Unit.last_reading, "yyyy");
  const std::string date = this_year ? DateText(av_Unit.last_reading, "d mmm HH:MM", av_Phrases)
                                     : WhenText(av_Unit.last_reading, av_Phrases);
  const std::string age = BriefSpanText(*av_Unit.reading_age, av_Phrases);
  const bool ahead = *av_Unit.reading_age < 0;
  return ByItsClock(av_Unit, date + " (" + (ahead ? av_Phrases.Text(kUnitSays.ahead, {age}) : age) + ")", av_Phrases);
}

std::string ByItsClock(const UnitStatus& av_Unit, const std::string& as_Date, const Phrases& av_Phrases) {
  const bool off = std::llabs(av_Unit.clock_offset.value_or(0)) > kClockOff;
  return off ? av_Phrases.Text(kUnitSays.by_its_clock, {as_Date}) : as_Date;
}

std::string LastContactText(const UnitStatus& av_Unit, Moment av_Now, const Phrases& av_Phrases) {
  if (av_Unit.last_contact.IsNone()) return "";
  return av_Unit.contact + ", " + AgoText(av_Unit.last_contact, av_Now, av_Phrases);
}

std::string BatteryText(const UnitStatus& av_Unit, const Phrases& av_Phrases) {
  if (!av_Unit.battery) return "";
  const std::string volts = FixedText(*av_Unit.battery, 2) + " V";
  if (av_Unit.battery_days) {
    return volts + ", " + CountText(static_cast<std::int64_t>(*av_Unit.battery_days), kUnitSays.days_left, av_Phrases);
  }
  if (!av_Unit.battery_slope || std::fabs(*av_Unit.battery_slope) < kSlopeShown) return volts;
  const std::string slope = (*av_Unit.battery_slope > 0 ? "+" : "") + FixedText(*av_Unit.battery_slope, 2);
  return volts + ", " + av_Phrases.Text(kUnitSays.volts_a_day, {slope});
}

std::string CompleteText(const UnitStatus& av_Unit) {
  return av_Unit.complete ? FixedText(std::floor(*av_Unit.complete * 1000) / 10, 1) : "";
}

std::string KnownToText(const UnitStatus& av_Unit, Moment av_Now, const Phrases& av_Phrases) {
  if (av_Unit.state == UnitState::Off || !av_Unit.complete || av_Unit.last_answered.IsNone()) return "";
  if (av_Now - av_Unit.last_answered <= kHeardLately) return "";
  return av_Phrases.Text(kUnitSays.known_to, {DateText(av_Unit.last_answered.Local(), "d mmm", av_Phrases)});
}

std::string GapsText(const UnitStatus& av_Unit, const Phrases& av_Phrases) {
  if (av_Unit.gaps == 0) return "";
  std::string text =
      std::to_string(av_Unit.gaps) + ": " + CountText(av_Unit.missing, kCommonPhrases.readings, av_Phrases);
  if (av_Unit.lost > 0) text += ", " + av_Phrases.Text(kUnitSays.lost, {std::to_string(av_Unit.lost)});
  return text;
}

std::string DeliveredText(const UnitStatus& av_Unit, Moment av_Now, const Phrases& av_Phrases) {
  std::string when = av_Unit.delivered.IsNone() ? "" : AgoText(av_Unit.delivered, av_Now, av_Phrases);
  const DateTime last = av_Unit.delivered_to;
  if (!when.empty() && !last.IsNone() && av_Unit.delivered.Local() - last > kHeardLately)
    when += ", " + av_Phrases.Text(kUnitSays.up_to, {WhenText(last, av_Phrases)});
  if (av_Unit.delivery_problem.empty()) return when;
  return (when.empty() ? av_Phrases.Text(kUnitSays.never) : when) + ", " +
         av_Phrases.Text(kUnitSays.then, {av_Unit.delivery_problem});
}

std::vector<Phrase> UnitTextPhrases() {
  return PhrasesIn(kUnitSays);
}

}  // namespace corvane
