#include "history/unit_status.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <string>
#include <tuple>
#include <utility>

#include "history/battery_trend.h"
#include "history/clock_view.h"
#include "history/gap_book.h"
#include "history/status_texts.h"
#include "history/unit_health.h"
#include "history/unit_texts.h"
#include "history/unit_troubles.h"
#include "state/records.h"

namespace corvane {
namespace {

constexpr std::int64_t kLateWithoutInterval = kSecondsPerDay;
constexpr std::int64_t kNewIntervals = 2;
constexpr std::size_t kRoundsShown = 20;
constexpr std::int64_t kSilentRounds = 2;
constexpr std::int64_t kCompleteDays = 30;

constexpr struct {
  Phrase from_nowhere{1304, "Its readings are got from nowhere"};
  Phrase not_active{1305, "It is not active"};
  Phrase no_answer{1306, "No answer in the last %1 rounds; it last answered on %2"};
  Phrase never_answered{1307, "No answer in the last %1 rounds; it has never answered"};
  Phrase no_reading{1308, "No reading has ever come"};
  Phrase old_reading{1309, "The last reading, of %1, is %2 old"};
  Phrase by_hand{1310, "it is read by hand"};
  Phrase last_answer{1311, "its last answer: %1"};
  Phrase no_port{1312, "the port could not be used"};
  Phrase is_new{1313, "No reading yet; it was added on %1"};
  Phrase no_answer_yet{1462, "No answer yet, asked so far: %1; added on %2. Check its ID, its relay and its battery"};
} kUnitStatusSays;

template <typename Record>
std::span<const Record> OfUnit(const std::vector<Record>& av_Records, std::int64_t al_Unit) {
  const auto first = std::lower_bound(av_Records.begin(), av_Records.end(), al_Unit,
                                      [](const Record& record, std::int64_t unit) { return record.unit < unit; });
  const auto last = std::upper_bound(first, av_Records.end(), al_Unit,
                                     [](std::int64_t unit, const Record& record) { return unit < record.unit; });
  return {first, last};
}

void TakeRecord(const UnitRecord& av_Unit, UnitStatus& av_Status) {
  av_Status.key = av_Unit.key;
  av_Status.position = av_Unit.position;
  av_Status.id = av_Unit.unit_id;
  av_Status.client_id = av_Unit.client_id;
  av_Status.name = av_Unit.name;
  av_Status.client = av_Unit.client;
  av_Status.relay = av_Unit.relay;
  av_Status.relay_id = av_Unit.relay_id;
  av_Status.file = av_Unit.file;
  av_Status.last_asked = av_Unit.last_asked;
  av_Status.last_answered = av_Unit.last_answered;
}

void TakeAnswers(std::span<const ContactRecord> av_Contacts, UnitStatus& av_Status) {
  for (std::size_t i = av_Contacts.size(); i-- > 0 && av_Status.answers.size() < kRoundsShown;) {
    if (WasAsked(av_Contacts[i].outcome)) av_Status.answers.push_back(av_Contacts[i].outcome == Outcome::Answered);
  }
  std::reverse(av_Status.answers.begin(), av_Status.answers.end());
  av_Status.asked = std::ssize(av_Status.answers);
  av_Status.answered = std::count(av_Status.answers.begin(), av_Status.answers.end(), true);
}

void TakeLastContact(std::span<const ContactRecord> av_Contacts, const Phrases& av_Phrases, UnitStatus& av_Status) {
  if (av_Contacts.empty()) return;
  const ContactRecord& last = av_Contacts.back();
  av_Status.last_contact = last.at;
  av_Status.contact = OutcomeText(last.outcome, av_Phrases);
  if (!last.error.empty() && last.error != NameOf(last.outcome)) av_Status.contact += ": " + last.error;
  if (last.stored > 0) av_Status.contact += ", " + CountText(last.stored, kCommonPhrases.readings, av_Phrases);
}

void TakeReadings(const UnitHistory& av_History, const StatusRules& av_Rules, UnitStatus& av_Status) {
  const auto& contacts = av_History.contacts;
  if (av_History.scan != nullptr && !av_History.scan->last.IsNone()) {
    // What was taken out of the file by hand is in it no more; a scan may be behind by what came last.
    av_Status.last_reading = av_History.scan->last;
    const bool brought = !contacts.empty() && contacts.back().stored > 0;
    if (brought) av_Status.last_reading = std::max(av_Status.last_reading, contacts.back().last_reading);
  } else {
    for (const ContactRecord& contact : contacts) {
      av_Status.last_reading = std::max(av_Status.last_reading, contact.last_reading);
    }
  }
  if (av_Status.last_reading.IsNone()) return;
  // The unit dates its readings by its own clock: one that runs behind makes no reading old.
  av_Status.reading_age = av_Rules.now.Local() - av_Status.last_reading + av_Status.clock_offset.value_or(0);
}

void TakeBattery(const UnitHistory& av_History, const StatusRules& av_Rules, UnitStatus& av_Status) {
  std::optional<double> newest;
  for (const ContactRecord& contact : av_History.contacts) {
    if (contact.battery) newest = contact.battery;
  }
  const BatteryView view = BatteryOf(av_History.days, newest, av_Rules.battery_limit, av_Rules.now.Local());
  av_Status.battery = view.volts;
  av_Status.battery_slope = view.slope;
  av_Status.battery_days = view.days_left;
}

void TakeCompleteness(const UnitHistory& av_History, const StatusRules& av_Rules, UnitStatus& av_Status) {
  const DateTime from = av_Rules.now.Local().Midnight() - (kCompleteDays - 1) * kSecondsPerDay;
  std::int64_t expected = 0;
  std::int64_t stored = 0;
  for (const DayRecord& day : av_History.days) {
    if (day.day < from) continue;
    expected += day.expected;
    // A day with more than expected makes up for no other.
    stored += std::min(day.stored, day.expected);
  }
  if (expected > 0) av_Status.complete = static_cast<double>(stored) / static_cast<double>(expected);
  for (const GapRecord& gap : av_History.gaps) {
    if (gap.state != GapState::Found && gap.state != GapState::Asked && gap.state != GapState::Lost) continue;
    ++av_Status.gaps;
    av_Status.missing += gap.missing;
    if (gap.state == GapState::Lost) {
      av_Status.lost += gap.missing;
    } else if (!IsAskedForByItself(gap, av_History.unit->get_from, av_Rules.now.Local(), av_Rules.repair_limit)) {
      av_Status.given_up += gap.missing;
      if (gap.to >= av_Rules.NewsFrom()) av_Status.given_up_lately += gap.missing;
    }
  }
}

void TakeDelivery(const UnitHistory& av_History, UnitStatus& av_Status) {
  for (const DeliveryRecord& delivery : av_History.deliveries) {
    if (delivery.target != Target::Server) continue;
    av_Status.delivered = delivery.done;
    av_Status.delivered_to = delivery.last_reading;
    av_Status.delivery_problem = delivery.problem;
  }
}

void TakeNote(const UnitHistory& av_History, const StatusRules& av_Rules, UnitStatus& av_Status) {
  const NoteRecord* const note = av_History.note;
  if (note == nullptr || note->text.empty()) return;
  if (!note->until.IsNone() && note->until < av_Rules.now.Local()) return;
  av_Status.note = note->text;
  av_Status.silenced = true;
}

/// The rounds in a row, up to the last, in which a radio unit that was asked kept silent.
std::int64_t SilentRounds(std::span<const ContactRecord> av_Contacts) {
  std::int64_t rounds = 0;
  for (std::size_t i = av_Contacts.size(); i-- > 0;) {
    const ContactRecord& contact = av_Contacts[i];
    if (!WasAsked(contact.outcome) || contact.get_from != kFromRadio) continue;
    if (contact.outcome != Outcome::Silent) break;
    ++rounds;
  }
  return rounds;
}

std::string WhyOff(const UnitRecord& av_Unit, const Phrases& av_Phrases) {
  if (!av_Unit.active) return av_Phrases.Text(kUnitStatusSays.not_active);
  return av_Unit.get_from == kFromNone ? av_Phrases.Text(kUnitStatusSays.from_nowhere) : "";
}

std::string WhySilent(std::int64_t al_Rounds, const UnitStatus& av_Status, const Phrases& av_Phrases) {
  const std::string rounds = std::to_string(al_Rounds);
  if (av_Status.last_answered.IsNone()) return av_Phrases.Text(kUnitStatusSays.never_answered, {rounds});
  return av_Phrases.Text(kUnitStatusSays.no_answer, {rounds, WhenText(av_Status.last_answered, av_Phrases)});
}

/// Empty for a unit that is not late.
std::string WhyLate(const UnitHistory& av_History, const StatusRules& av_Rules, const UnitStatus& av_Status) {
  const Phrases& phrases = av_Rules.phrases;
  if (av_Status.last_reading.IsNone()) return phrases.Text(kUnitStatusSays.no_reading);
  const std::int64_t period = av_History.scan != nullptr ? av_History.scan->period : 0;
  if (*av_Status.reading_age <= av_Rules.LateFrom(period)) return "";
  std::string why = phrases.Text(kUnitStatusSays.old_reading,
                                 {ByItsClock(av_Status, WhenText(av_Status.last_reading, phrases), phrases),
                                  SpanText(*av_Status.reading_age, phrases)});
  if (av_History.unit->get_from == kFromHandHeld) why += "; " + phrases.Text(kUnitStatusSays.by_hand);
  if (av_History.contacts.empty()) return why;
  const ContactRecord& last = av_History.contacts.back();
  if (last.outcome == Outcome::Failed && !last.error.empty()) {
    why += "; " + phrases.Text(kUnitStatusSays.last_answer, {last.error});
  }
  if (last.outcome == Outcome::NoPort) why += "; " + phrases.Text(kUnitStatusSays.no_port);
  return why;
}

bool IsNew(const UnitRecord& av_Unit, const StatusRules& av_Rules, const UnitStatus& av_Status) {
  const std::int64_t limit = av_Rules.interval ? kNewIntervals * *av_Rules.interval : kLateWithoutInterval;
  return av_Status.last_reading.IsNone() && !av_Unit.added.IsNone() && av_Rules.now - av_Unit.added < limit;
}

/// The first letter that applies, and why.
std::pair<UnitState, std::string> Judge(const UnitHistory& av_History, const StatusRules& av_Rules,
                                        const UnitStatus& av_Status) {
  const UnitRecord& unit = *av_History.unit;
  if (std::string why = WhyOff(unit, av_Rules.phrases); !why.empty()) return {UnitState::Off, std::move(why)};
  if (IsNew(unit, av_Rules, av_Status)) {
    const std::string added = WhenText(unit.added, av_Rules.phrases);
    if (av_Status.asked == 0 || av_Status.answered > 0)
      return {UnitState::New, av_Rules.phrases.Text(kUnitStatusSays.is_new, {added})};
    return {UnitState::New,
            av_Rules.phrases.Text(kUnitStatusSays.no_answer_yet, {std::to_string(av_Status.asked), added})};
  }
  const std::int64_t silent = unit.get_from == kFromRadio ? SilentRounds(av_History.contacts) : 0;
  if (silent >= kSilentRounds) return {UnitState::Silent, WhySilent(silent, av_Status, av_Rules.phrases)};
  if (std::string why = WhyLate(av_History, av_Rules, av_Status); !why.empty()) {
    return {UnitState::Late, std::move(why)};
  }
  if (av_Status.troubles.empty()) return {UnitState::Fine, ""};
  return {UnitState::Trouble, av_Status.troubles.front().text};
}

}  // namespace

std::int64_t StatusRules::LateFrom(std::int64_t al_Period) const {
  const double by_rounds = interval ? late_after * static_cast<double>(*interval) : kLateWithoutInterval;
  // A setting may ask for any number of intervals.
  const std::int64_t from = by_rounds < 1e15 ? std::llround(by_rounds) : std::int64_t{1'000'000'000'000'000};
  return std::max(from, 2 * al_Period);
}

UnitHistory HistoryOf(const HistoryContents& av_History, const UnitRecord& av_Unit) {
  UnitHistory history;
  history.unit = &av_Unit;
  history.contacts = OfUnit(av_History.contacts, av_Unit.key);
  history.deliveries = OfUnit(av_History.deliveries, av_Unit.key);
  history.days = OfUnit(av_History.days, av_Unit.key);
  history.gaps = OfUnit(av_History.gaps, av_Unit.key);
  if (const auto scans = OfUnit(av_History.scans, av_Unit.key); !scans.empty()) history.scan = &scans.front();
  if (const auto notes = OfUnit(av_History.notes, av_Unit.key); !notes.empty()) history.note = &notes.front();
  return history;
}

UnitStatus StatusOf(const UnitHistory& av_History, const StatusRules& av_Rules) {
  UnitStatus status;
  TakeRecord(*av_History.unit, status);
  TakeAnswers(av_History.contacts, status);
  TakeLastContact(av_History.contacts, av_Rules.phrases, status);
  const ClockView clock = ClockOf(*av_History.unit, av_History.contacts, av_Rules.now, av_Rules.own_clock);
  status.clock_offset = clock.offset;
  status.clock_drift = clock.drift;
  status.clock_of_another_season = clock.of_another_season;
  TakeReadings(av_History, av_Rules, status);
  TakeBattery(av_History, av_Rules, status);
  TakeCompleteness(av_History, av_Rules, status);
  TakeDelivery(av_History, status);
  TakeNote(av_History, av_Rules, status);
  status.troubles = TroublesOf(av_History, av_Rules, status);
  std::tie(status.state, status.why) = Judge(av_History, av_Rules, status);
  return status;
}

std::vector<Phrase> UnitStatusPhrases() {
  return PhrasesIn(kUnitStatusSays);
}

}  // namespace corvane
