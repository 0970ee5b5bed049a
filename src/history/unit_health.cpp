#include "history/unit_health.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <initializer_list>
#include <optional>
#include <utility>

#include "base/format.h"
#include "base/numbers.h"
#include "history/clock_view.h"
#include "history/health_phrases.h"
#include "history/round_texts.h"
#include "history/status_texts.h"
#include "history/unit_status.h"
#include "history/unit_texts.h"
#include "state/records.h"

namespace corvane {
namespace {

constexpr std::size_t kContactsShown = 10;
constexpr std::size_t kGapsShown = 5;
constexpr std::int64_t kRejectedDays = 30;
constexpr double kBatterySoon = 30;     ///< days
constexpr std::int64_t kManyTries = 2;  ///< a contact, on the average of the last ten
constexpr double kSteady = 0.0005;      ///< volts a day
constexpr Moment kEver{1, 0};

constexpr std::array kOutcomes = {Phrase{1314, "answered"},  Phrase{1315, "error"},   Phrase{1316, "no answer"},
                                  Phrase{1317, "not asked"}, Phrase{1318, "no port"}, Phrase{1331, "other"}};
/// By `GetFrom`, and one that is not known.
constexpr std::array kSources = {kHealthSays.by_radio, kHealthSays.from_nowhere, kHealthSays.by_hand,
                                 kHealthSays.by_ftp,   kHealthSays.as_web_data,  kHealthSays.from_elsewhere};

const Phrase& PhraseOf(Outcome ae_Outcome) {
  return kOutcomes[std::min(static_cast<std::size_t>(ae_Outcome), kOutcomes.size() - 1)];
}

/// What the rules look at.
struct Case {
  const UnitStatus& unit;
  const UnitHealth& health;
  const Neighbours& neighbours;
  std::int64_t rejected = 0;

  [[nodiscard]] bool Silent() const { return unit.state == UnitState::Silent; }
  [[nodiscard]] bool Has(TroubleKind kind) const {
    return std::any_of(unit.troubles.begin(), unit.troubles.end(),
                       [kind](const Trouble& trouble) { return trouble.kind == kind; });
  }
  [[nodiscard]] bool BatteryLow() const {
    return Has(TroubleKind::Battery) || unit.battery_days.value_or(kBatterySoon + 1) <= kBatterySoon;
  }
  [[nodiscard]] bool OthersAnswer() const { return neighbours.answered > 0; }
  [[nodiscard]] bool OthersAreSilent() const { return neighbours.asked > 0 && neighbours.answered == 0; }
  [[nodiscard]] bool ManyTries() const {
    std::int64_t tries = 0;
    std::int64_t contacts = 0;
    for (const ContactRecord& contact : health.contacts) {
      if (contact.outcome != Outcome::Answered) continue;
      tries += contact.tries;
      ++contacts;
    }
    return contacts > 0 && tries > kManyTries * contacts;
  }
};

/// What to take along: the condition, the thing, the reason.
struct Rule {
  bool (*applies)(const Case& each);
  Phrase what;
  Phrase reason;
};

constexpr Rule kRules[] = {
    {[](const Case& each) { return each.BatteryLow(); }, kHealthThings.battery, kHealthThings.battery_low},
    {[](const Case& each) { return each.Silent() && !each.BatteryLow() && !each.unit.battery; }, kHealthThings.battery,
     kHealthThings.battery_unknown},
    {[](const Case& each) { return each.Silent() && !each.unit.relay.empty() && each.OthersAreSilent(); },
     kHealthThings.for_relay, kHealthThings.relay_silent},
    {[](const Case& each) { return each.Silent() && each.OthersAnswer(); }, kHealthThings.antenna,
     kHealthThings.silent_alone},
    {[](const Case& each) { return !each.Silent() && (each.ManyTries() || each.rejected > 0); }, kHealthThings.antenna,
     kHealthThings.bad_line},
    {[](const Case& each) { return each.Silent() || each.unit.missing > each.unit.lost; }, kHealthThings.hand_held,
     kHealthThings.memory},
    {[](const Case& each) {
       return each.unit.state == UnitState::Late && !each.unit.answers.empty() && each.unit.answers.back();
     },
     kHealthThings.hand_held, kHealthThings.stopped},
    {[](const Case& each) { return each.Has(TroubleKind::Clock) || each.Has(TroubleKind::Future); },
     kHealthThings.clock, kHealthThings.clock_off},
    {[](const Case& each) { return each.Has(TroubleKind::Sensor); }, kHealthThings.sensor, kHealthThings.sensor_fails},
};

class HealthWriter {
 public:
  HealthWriter(const HealthQuestion& av_Question, const HistoryContents& av_History)
      : unit_(av_Question.unit),
        neighbours_(av_Question.neighbours),
        now_(av_Question.now),
        phrases_(av_Question.phrases) {
    const auto record = std::find_if(av_History.units.begin(), av_History.units.end(),
                                     [this](const UnitRecord& each) { return each.key == unit_.key; });
    if (record != av_History.units.end()) history_ = HistoryOf(av_History, *record);
  }

  UnitHealth Write() {
    if (history_.unit == nullptr) return {};
    TakeContacts();
    Say(kHealthSubjects.state, StateText(unit_.state, phrases_) + (unit_.why.empty() ? "" : ". " + unit_.why));
    if (!unit_.note.empty()) Say(kHealthSubjects.note, unit_.note);
    SayAnswers();
    SayRelay();
    SayReadings();
    SayGaps();
    SayBattery();
    SayClock();
    SaySensors();
    SayLines();
    SayDelivery();
    TakeAlong();
    return std::move(health_);
  }

 private:
  void Say(const Phrase& av_About, std::string as_Text) {
    health_.lines.push_back({phrases_.Text(av_About), std::move(as_Text)});
  }
  [[nodiscard]] std::string Words(const Phrase& av_Phrase,
                                  std::initializer_list<std::string_view> av_Values = {}) const {
    return phrases_.Text(av_Phrase, av_Values);
  }
  [[nodiscard]] std::string When(DateTime av_When) const { return WhenText(av_When, phrases_); }
  [[nodiscard]] std::string When(Moment av_When) const { return WhenText(av_When, phrases_); }

  void TakeContacts() {
    for (std::size_t i = history_.contacts.size(); i-- > 0 && health_.contacts.size() < kContactsShown;) {
      health_.contacts.push_back(history_.contacts[i]);
    }
    const std::int64_t from = now_.utc - kRejectedDays * kSecondsPerDay;
    for (const ContactRecord& contact : history_.contacts) {
      if (contact.at.utc >= from) rejected_ += contact.rejected;
    }
  }

  void SayAnswers() {
    if (unit_.asked == 0) {
      const auto source = static_cast<std::size_t>(history_.unit->get_from);
      return Say(kHealthSubjects.answers,
                 Words(kHealthSays.not_asked, {Words(kSources[std::min(source, kSources.size() - 1)])}));
    }
    const CountPhrase& answered = kHealthSays.answered;
    std::string text = Words(unit_.asked == 1 ? answered.one : answered.many,
                             {std::to_string(unit_.asked), std::to_string(unit_.answered)});
    if (!unit_.last_answered.IsNone()) text += ", " + Words(kHealthSays.answered_last, {When(unit_.last_answered)});
    Say(kHealthSubjects.answers, text);
  }

  void SayRelay() {
    const std::string way =
        unit_.relay.empty() ? Words(kHealthSays.reached_directly) : Words(kHealthSays.through_relay, {unit_.relay});
    if (neighbours_.asked == 0) return Say(kHealthSubjects.relay, way + "; " + Words(kHealthSays.no_neighbour));
    const CountPhrase& others = kHealthSays.neighbours;
    Say(kHealthSubjects.relay, way + "; " +
                                   Words(neighbours_.asked == 1 ? others.one : others.many,
                                         {std::to_string(neighbours_.asked), std::to_string(neighbours_.answered)}));
  }

  void SayReadings() {
    if (unit_.last_reading.IsNone()) return Say(kHealthSubjects.readings, Words(kHealthSays.no_reading));
    std::string text = Words(kHealthSays.last_reading, {ByItsClock(unit_, When(unit_.last_reading), phrases_)});
    if (unit_.reading_age) {
      const bool ahead = *unit_.reading_age < 0;
      const std::string age = SpanText(*unit_.reading_age, phrases_, ahead ? SpanForm::Alone : SpanForm::Dependent);
      text += ", " + Words(ahead ? kHealthSays.ahead_of_now : kHealthSays.ago, {age});
    }
    if (history_.scan != nullptr && history_.scan->period > 0) {
      text += "; " + Words(kHealthSays.period, {DurationText(history_.scan->period, false)});
    }
    if (unit_.complete) text += "; " + Words(kHealthSays.complete, {CompleteText(unit_)});
    Say(kHealthSubjects.readings, text);
  }

  [[nodiscard]] std::string GapText(const GapRecord& gap) const {
    const std::string text = Words(kHealthSays.gap, {std::to_string(gap.missing), When(gap.from), When(gap.to)}) + ", ";
    if (gap.state == GapState::Found) return text + Words(kHealthSays.gap_found);
    if (gap.state == GapState::Lost) return text + Words(kHealthSays.gap_lost);
    return text + CountText(gap.tries, kHealthSays.gap_asked, phrases_);
  }

  void SayGaps() {
    std::size_t shown = 0;
    for (std::size_t i = history_.gaps.size(); i-- > 0;) {
      const GapRecord& gap = history_.gaps[i];
      const bool open = gap.state == GapState::Found || gap.state == GapState::Asked || gap.state == GapState::Lost;
      if (open && ++shown <= kGapsShown) Say(kHealthSubjects.missing, GapText(gap));
    }
    if (shown > kGapsShown) {
      Say(kHealthSubjects.missing, CountText(std::ssize(history_.gaps), kHealthSays.gaps_in_all, phrases_));
    }
  }

  void SayBattery() {
    if (!unit_.battery) return Say(kHealthSubjects.battery, Words(kHealthSays.not_known));
    std::string text = FixedText(*unit_.battery, 2) + " V";
    if (unit_.battery_slope) {
      const double slope = *unit_.battery_slope;
      const std::string millivolts = FixedText(std::abs(slope) * 1000, 1);
      text += ", ";
      text += std::abs(slope) < kSteady ? Words(kHealthSays.steady)
                                        : Words(slope < 0 ? kHealthSays.falling : kHealthSays.rising, {millivolts});
    }
    if (unit_.battery_days) {
      text += "; " + CountText(static_cast<std::int64_t>(*unit_.battery_days), kHealthSays.at_limit, phrases_);
    }
    Say(kHealthSubjects.battery, text);
  }

  void SayClock() {
    if (!unit_.clock_offset) return Say(kHealthSubjects.clock, Words(kHealthSays.not_known));
    const std::int64_t offset = *unit_.clock_offset;
    std::string text = std::llabs(offset) < 60 ? Words(kHealthSays.clock_right)
                                               : Words(offset > 0 ? kHealthSays.clock_ahead : kHealthSays.clock_behind,
                                                       {SpanText(offset, phrases_)});
    const bool troubled = std::any_of(unit_.troubles.begin(), unit_.troubles.end(),
                                      [](const Trouble& trouble) { return trouble.kind == TroubleKind::Clock; });
    if (!troubled && std::llabs(offset) > kClockOff) text += ", " + Words(kHealthSays.other_season);
    if (unit_.clock_drift) {
      text += "; " + Words(*unit_.clock_drift < 0 ? kHealthSays.loses : kHealthSays.gains,
                           {FixedText(std::abs(*unit_.clock_drift), 1)});
    }
    Say(kHealthSubjects.clock, text);
  }

  void SaySensors() {
    for (const Trouble& trouble : unit_.troubles) {
      if (trouble.kind == TroubleKind::Sensor) Say(kHealthSubjects.sensors, trouble.text);
    }
  }

  void SayLines() {
    if (rejected_ > 0) Say(kHealthSubjects.lines, CountText(rejected_, kHealthSays.rejected, phrases_));
  }

  void SayDelivery() {
    if (unit_.delivered.IsNone() && unit_.delivery_problem.empty()) return;
    std::string text =
        unit_.delivered.IsNone() ? Words(kHealthSays.never) : Words(kHealthSays.delivered, {When(unit_.delivered)});
    if (!unit_.delivered_to.IsNone()) text += ", " + Words(kHealthSays.delivered_to, {When(unit_.delivered_to)});
    if (!unit_.delivery_problem.empty()) text += "; " + Words(kHealthSays.then, {unit_.delivery_problem});
    Say(kHealthSubjects.delivered, text);
  }

  void TakeAlong() {
    const Case each{unit_, health_, neighbours_, rejected_};
    std::vector<HealthLine> things;
    for (const Rule& rule : kRules) {
      const std::string what = Words(rule.what);
      const bool named =
          std::any_of(things.begin(), things.end(), [&what](const HealthLine& thing) { return thing.about == what; });
      if (unit_.state != UnitState::Off && !named && rule.applies(each)) things.push_back({what, Words(rule.reason)});
    }
    health_.take_along = std::move(things);
  }

  const UnitStatus& unit_;
  const Neighbours& neighbours_;
  Moment now_;
  const Phrases& phrases_;
  UnitHistory history_;
  UnitHealth health_;
  std::int64_t rejected_ = 0;
};

}  // namespace

std::string_view NameOf(Outcome ae_Outcome) {
  return PhraseOf(ae_Outcome).english;
}

std::string OutcomeText(Outcome ae_Outcome, const Phrases& av_Phrases) {
  return av_Phrases.Text(PhraseOf(ae_Outcome));
}

std::vector<Phrase> OutcomePhrases() {
  return PhrasesIn(kOutcomes);
}

HistoryQuery HealthQuery(Moment av_Now, std::int64_t al_Unit) {
  HistoryQuery query = StatusQuery(av_Now);
  query.unit = al_Unit;
  query.contacts_since = kEver;
  return query;
}

Neighbours NeighboursOf(const UnitStatus& av_Unit, std::span<const UnitStatus> av_Units) {
  Neighbours found;
  for (const UnitStatus& other : av_Units) {
    if (other.key == av_Unit.key || other.relay != av_Unit.relay || other.answers.empty()) continue;
    if (other.state == UnitState::Off) continue;
    ++found.asked;
    if (other.answers.back()) ++found.answered;
  }
  return found;
}

UnitHealth HealthOf(const HealthQuestion& av_Question, const HistoryContents& av_History) {
  return HealthWriter(av_Question, av_History).Write();
}

UnitHealth HealthOf(const UnitStatus& av_Unit, const NetworkStatus& av_Network, const HistoryContents& av_History) {
  return HealthOf({av_Unit, NeighboursOf(av_Unit, av_Network.units), av_Network.now, {}}, av_History);
}

std::string ContactText(const ContactRecord& av_Contact, const Phrases& av_Phrases) {
  std::string text = OutcomeText(av_Contact.outcome, av_Phrases);
  const auto add = [&text](const std::string& more) { text += ", " + more; };
  if (av_Contact.tries > 0) add(CountText(av_Contact.tries, kCommonPhrases.tries, av_Phrases));
  if (av_Contact.stored > 0) add(CountText(av_Contact.stored, kCommonPhrases.readings, av_Phrases));
  if (av_Contact.rejected > 0) add(CountText(av_Contact.rejected, kCommonPhrases.rejected, av_Phrases));
  if (av_Contact.milliseconds_on_air > 0) {
    const double seconds = static_cast<double>(av_Contact.milliseconds_on_air) / 1000;
    add(av_Phrases.Text(kHealthSays.on_air, {FixedText(seconds, 1)}));
  }
  if (!av_Contact.error.empty() && av_Contact.error != NameOf(av_Contact.outcome)) text += "; " + av_Contact.error;
  return WhenText(av_Contact.at, av_Phrases) + ": " + WithCommand(av_Contact.command, text, av_Phrases);
}

std::vector<Phrase> HealthPhraseList() {
  std::vector<Phrase> all = PhrasesIn(kHealthSubjects);
  for (const auto& more : {PhrasesIn(kHealthSays), PhrasesIn(kHealthThings)}) {
    all.insert(all.end(), more.begin(), more.end());
  }
  return all;
}

}  // namespace corvane
