#include "history/unit_health.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <optional>
#include <utility>

#include "base/format.h"
#include "base/numbers.h"
#include "history/clock_view.h"
#include "history/status_texts.h"
#include "history/unit_status.h"
#include "state/records.h"

namespace corvane {
namespace {

constexpr std::size_t kContactsShown = 10;
constexpr std::size_t kGapsShown = 5;
constexpr std::int64_t kRejectedDays = 30;
constexpr double kBatterySoon = 30;     ///< days
constexpr std::int64_t kManyTries = 2;  ///< a contact, on the average of the last ten
constexpr double kSteady = 0.0005;      ///< volts a day

constexpr std::array kOutcomes = {Phrase{1314, "answered"},  Phrase{1315, "error"},   Phrase{1316, "no answer"},
                                  Phrase{1317, "not asked"}, Phrase{1318, "no port"}, Phrase{1331, "other"}};
constexpr std::array<std::string_view, 5> kSources = {"by radio", "from nowhere", "by hand", "by FTP", "as web data"};

const Phrase& PhraseOf(Outcome ae_Outcome) {
  return kOutcomes[std::min(static_cast<std::size_t>(ae_Outcome), kOutcomes.size() - 1)];
}

/// What others say of the way to the unit.
struct Neighbours {
  std::int64_t asked = 0;
  std::int64_t answered = 0;  ///< in their last round
};

/// What the rules look at.
struct Case {
  const UnitStatus& unit;
  const NetworkStatus& network;
  const UnitHealth& health;
  Neighbours neighbours;
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
  const char* what;
  const char* reason;
};

constexpr Rule kRules[] = {
    {[](const Case& each) { return each.BatteryLow(); }, "a charged battery",
     "the one in the unit is low, or will be within 30 days"},
    {[](const Case& each) { return each.Silent() && !each.BatteryLow() && !each.unit.battery; }, "a charged battery",
     "the unit is silent, and what its battery holds is not known"},
    {[](const Case& each) { return each.Silent() && !each.unit.relay.empty() && each.OthersAreSilent(); },
     "a battery and an antenna for the relay", "no other unit behind it answers either: look at the relay first"},
    {[](const Case& each) { return each.Silent() && each.OthersAnswer(); }, "an antenna and its cable",
     "the unit is silent, while others on the same way answer"},
    {[](const Case& each) { return !each.Silent() && (each.ManyTries() || each.rejected > 0); },
     "an antenna and its cable", "it answers, but takes many tries or sends damaged lines"},
    {[](const Case& each) { return each.Silent() || each.unit.missing > each.unit.lost; },
     "a hand-held unit or a cable, and a computer",
     "readings that are not here yet may be in its memory: read it before the battery is changed"},
    {[](const Case& each) {
       return each.unit.state == UnitState::Late && !each.unit.answers.empty() && each.unit.answers.back();
     },
     "a hand-held unit or a cable, and a computer", "it answers and stores nothing new: it may have stopped logging"},
    {[](const Case& each) { return each.Has(TroubleKind::Clock) || each.Has(TroubleKind::Future); },
     "a clock to set it by", "its clock is off; where it answers, corvanectl set-date sets it from here"},
    {[](const Case& each) { return each.Has(TroubleKind::Sensor); }, "a sensor and its cable",
     "one stands still or measures what its table does not hold"},
};

class HealthWriter {
 public:
  HealthWriter(const UnitStatus& av_Unit, const NetworkStatus& av_Network, const HistoryContents& av_History)
      : unit_(av_Unit), network_(av_Network) {
    const auto record = std::find_if(av_History.units.begin(), av_History.units.end(),
                                     [&av_Unit](const UnitRecord& each) { return each.key == av_Unit.key; });
    if (record != av_History.units.end()) history_ = HistoryOf(av_History, *record);
  }

  UnitHealth Write() {
    if (history_.unit == nullptr) return {};
    TakeContacts();
    Say("State", std::string(NameOf(unit_.state)) + (unit_.why.empty() ? "" : ". " + unit_.why));
    if (!unit_.note.empty()) Say("Note", unit_.note);
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
  void Say(std::string as_About, std::string as_Text) {
    health_.lines.push_back({std::move(as_About), std::move(as_Text)});
  }

  void TakeContacts() {
    for (std::size_t i = history_.contacts.size(); i-- > 0 && health_.contacts.size() < kContactsShown;) {
      health_.contacts.push_back(history_.contacts[i]);
    }
    const std::int64_t from = network_.now.utc - kRejectedDays * kSecondsPerDay;
    for (const ContactRecord& contact : history_.contacts) {
      if (contact.at.utc >= from) rejected_ += contact.rejected;
    }
  }

  void SayAnswers() {
    if (unit_.asked == 0) {
      const auto source = static_cast<std::size_t>(history_.unit->get_from);
      return Say("Answers", "It was not asked lately; its readings come " +
                                std::string(source < kSources.size() ? kSources[source] : "from elsewhere"));
    }
    Say("Answers", "It answered " + std::to_string(unit_.answered) + " of the last " +
                       CountText(unit_.asked, "time", "times") + " that it was asked" +
                       (unit_.last_answered.IsNone() ? "" : ", last on " + WhenText(unit_.last_answered)));
  }

  void SayRelay() {
    for (const UnitStatus& other : network_.units) {
      if (other.key == unit_.key || other.relay != unit_.relay || other.answers.empty()) continue;
      if (other.state == UnitState::Off) continue;
      ++neighbours_.asked;
      if (other.answers.back()) ++neighbours_.answered;
    }
    const std::string way =
        unit_.relay.empty() ? "It is reached directly" : "It is reached through relay " + unit_.relay;
    if (neighbours_.asked == 0) return Say("Relay", way + "; no other unit that is reached so was asked");
    Say("Relay", way + "; of " + CountText(neighbours_.asked, "other unit", "other units") + " reached so " +
                     std::to_string(neighbours_.answered) + " answered when last asked");
  }

  void SayReadings() {
    if (unit_.last_reading.IsNone()) return Say("Readings", "None has ever come");
    std::string text = "The last is of " + WhenText(unit_.last_reading);
    if (unit_.reading_age) {
      text += ", " + SpanText(*unit_.reading_age) + (*unit_.reading_age < 0 ? " ahead of now" : " ago");
    }
    if (history_.scan != nullptr && history_.scan->period > 0) {
      text += "; one every " + DurationText(history_.scan->period, false) + " h";
    }
    if (unit_.complete) text += "; " + FixedText(std::floor(*unit_.complete * 1000) / 10, 1) + " % of the last 30 days";
    Say("Readings", text);
  }

  static std::string GapText(const GapRecord& gap) {
    std::string text = std::to_string(gap.missing) + " between " + WhenText(gap.from) + " and " + WhenText(gap.to);
    if (gap.state == GapState::Found) return text + ", not asked for yet";
    if (gap.state == GapState::Lost) return text + ", lost for ever";
    return text + ", asked for " + CountText(gap.tries, "time", "times");
  }

  void SayGaps() {
    std::size_t shown = 0;
    for (std::size_t i = history_.gaps.size(); i-- > 0;) {
      const GapRecord& gap = history_.gaps[i];
      const bool open = gap.state == GapState::Found || gap.state == GapState::Asked || gap.state == GapState::Lost;
      if (open && ++shown <= kGapsShown) Say("Missing", GapText(gap));
    }
    if (shown > kGapsShown) Say("Missing", "and " + CountText(std::ssize(history_.gaps), "gap", "gaps") + " in all");
  }

  void SayBattery() {
    if (!unit_.battery) return Say("Battery", "Not known");
    std::string text = FixedText(*unit_.battery, 2) + " V";
    if (unit_.battery_slope) {
      const double slope = *unit_.battery_slope;
      text += std::abs(slope) < kSteady ? ", steady" : slope < 0 ? ", falling by " : ", rising by ";
      if (std::abs(slope) >= kSteady) text += FixedText(std::abs(slope) * 1000, 1) + " mV a day";
    }
    if (unit_.battery_days)
      text += "; at its limit in about " + FixedText(std::floor(*unit_.battery_days), 0) + " days";
    Say("Battery", text);
  }

  void SayClock() {
    if (!unit_.clock_offset) return Say("Clock", "Not known");
    const std::int64_t offset = *unit_.clock_offset;
    std::string text = std::llabs(offset) < 60 ? "Right" : SpanText(offset) + (offset > 0 ? " ahead" : " behind");
    const bool troubled = std::any_of(unit_.troubles.begin(), unit_.troubles.end(),
                                      [](const Trouble& trouble) { return trouble.kind == TroubleKind::Clock; });
    if (!troubled && std::llabs(offset) > kClockOff) text += ", as it was set before or behind summer time";
    if (unit_.clock_drift) {
      text += *unit_.clock_drift < 0 ? "; it loses " : "; it gains ";
      text += FixedText(std::abs(*unit_.clock_drift), 1) + " s a day";
    }
    Say("Clock", text);
  }

  void SaySensors() {
    for (const Trouble& trouble : unit_.troubles) {
      if (trouble.kind == TroubleKind::Sensor) Say("Sensors", trouble.text);
    }
  }

  void SayLines() {
    if (rejected_ > 0) Say("Lines", CountText(rejected_, "line", "lines") + " rejected in the last 30 days");
  }

  void SayDelivery() {
    if (unit_.delivered.IsNone() && unit_.delivery_problem.empty()) return;
    std::string text = unit_.delivered.IsNone() ? "Never" : "Last on " + WhenText(unit_.delivered);
    if (!unit_.delivered_to.IsNone()) text += ", up to the reading of " + WhenText(unit_.delivered_to);
    if (!unit_.delivery_problem.empty()) text += "; then: " + unit_.delivery_problem;
    Say("Delivered", text);
  }

  void TakeAlong() {
    const Case each{unit_, network_, health_, neighbours_, rejected_};
    std::vector<HealthLine> things;
    for (const Rule& rule : kRules) {
      const bool named = std::any_of(things.begin(), things.end(),
                                     [&rule](const HealthLine& thing) { return thing.about == rule.what; });
      if (unit_.state != UnitState::Off && !named && rule.applies(each)) things.push_back({rule.what, rule.reason});
    }
    health_.take_along = std::move(things);
  }

  const UnitStatus& unit_;
  const NetworkStatus& network_;
  UnitHistory history_;
  UnitHealth health_;
  Neighbours neighbours_;
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

UnitHealth HealthOf(const UnitStatus& av_Unit, const NetworkStatus& av_Network, const HistoryContents& av_History) {
  return HealthWriter(av_Unit, av_Network, av_History).Write();
}

}  // namespace corvane
