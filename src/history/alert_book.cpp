#include "history/alert_book.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <set>
#include <tuple>
#include <utility>

#include "history/status_texts.h"

namespace corvane {
namespace {

using namespace alert_cause;

constexpr std::int64_t kRepeatAfter = kSecondsPerDay;
/// Rounds of one time of day end some minutes earlier or later.
constexpr std::int64_t kRoundsVary = 600;
constexpr std::int64_t kGoodRounds = 2;
constexpr std::int64_t kFewestBehindRelay = 2;

/// Words of a cause of units, the gravest cause first.
struct UnitCause {
  std::string_view cause;
  std::string_view one;
  std::string_view many;
  std::string_view one_cleared;
  std::string_view many_cleared;
};

constexpr std::array kUnitCauses = {
    UnitCause{kSilent, "is silent", "are silent", "answers again", "answer again"},
    UnitCause{kLate, "is late", "are late", "is up to date again", "are up to date again"},
    UnitCause{kLost, "has lost readings for ever", "have lost readings for ever", "", ""},
    UnitCause{kMissing, "lacks readings", "lack readings", "lacks no readings any more", "lack no readings any more"},
    UnitCause{kBattery, "has a low battery", "have low batteries", "has a good battery again",
              "have good batteries again"},
    UnitCause{kClock, "has a wrong clock", "have wrong clocks", "has the right time again",
              "have the right time again"},
    UnitCause{kSensor, "has a sensor to look at", "have sensors to look at", "has no sensor to look at any more",
              "have no sensors to look at any more"},
    UnitCause{kRejected, "sends lines that cannot be used", "send lines that cannot be used", "sends good lines again",
              "send good lines again"},
    UnitCause{kDelivery, "has a file that does not get to the server", "have files that do not get to the server",
              "has its file at the server again", "have their files at the server again"},
};

/// Troubles that are told as a cause of their own.
constexpr std::array<std::pair<TroubleKind, std::string_view>, 6> kTroubleCauses = {{
    {TroubleKind::Missing, kMissing},
    {TroubleKind::Rejected, kRejected},
    {TroubleKind::Clock, kClock},
    {TroubleKind::Future, kClock},
    {TroubleKind::Battery, kBattery},
    {TroubleKind::Sensor, kSensor},
}};

constexpr std::array<std::string_view, 5> kKinds = {"raised", "repeated", "cleared", "digest", "round"};

/// The sentences of a unit's troubles that are told as `cause`.
std::string TroublesOf(const UnitStatus& unit, std::string_view cause) {
  std::string text;
  for (const Trouble& trouble : unit.troubles) {
    const bool told = std::any_of(kTroubleCauses.begin(), kTroubleCauses.end(),
                                  [&](const auto& row) { return row.first == trouble.kind && row.second == cause; });
    if (told) text += (text.empty() ? "" : "; ") + trouble.text;
  }
  return text;
}

/// Relays are told apart by number; names may be the same.
std::string RelayText(const UnitStatus& unit) {
  return unit.relay + " (" + std::to_string(unit.relay_id) + ")";
}

bool IsWatched(const UnitStatus& unit) {
  return unit.state != UnitState::Off && unit.state != UnitState::New;
}

/// Readings that are missing, and that the unit will be asked for by itself.
std::int64_t ToBeAskedFor(const UnitStatus& unit) {
  return unit.missing - unit.lost - unit.given_up;
}

bool IsRelayRecord(const AlertRecord& record) {
  return record.cause == kSilent && record.unit == 0;
}

using Key = std::tuple<std::string, std::int64_t, std::string>;
using Records = std::map<Key, AlertRecord>;

Key KeyOf(const AlertRecord& record) {
  return {record.cause, record.unit, record.subject};
}

bool Same(const AlertRecord& a, const AlertRecord& b) {
  return a.raised == b.raised && a.told == b.told && a.good_rounds == b.good_rounds;
}

/// Takes records through one step and tells what has changed.
class Step {
 public:
  Step(const std::vector<AlertRecord>& former, Moment now) : now_(now) {
    for (const AlertRecord& record : former) former_[KeyOf(record)] = record;
    records_ = former_;
  }

  Records& records() { return records_; }
  [[nodiscard]] AlertStep Take() const {
    AlertStep step;
    for (const auto& [key, record] : former_) {
      if (records_.find(key) != records_.end()) continue;
      step.changed.push_back(record);
      step.changed.back().cleared = now_;
    }
    for (const auto& [key, record] : records_) {
      step.standing.push_back(record);
      const auto before = former_.find(key);
      if (before == former_.end() || !Same(before->second, record)) step.changed.push_back(record);
    }
    return step;
  }

 private:
  Moment now_;
  Records former_;
  Records records_;
};

/// Puts together what is to be told.
class Telling {
 public:
  /// All must outlive it; `wrong` are the records whose causes are so now.
  Telling(const std::vector<AlertRecord>& standing, const std::set<Key>& wrong, const AlertView& view)
      : standing_(standing), wrong_(wrong), view_(view), status_(view.status) {
    for (const UnitStatus& unit : status_.units) units_[unit.key] = &unit;
  }

  std::vector<AlertEvent> Run() {
    for (const AlertRecord& record : standing_) {
      if (const auto kind = KindOf(record)) Take(*kind, record);
    }
    std::vector<AlertEvent> events;
    for (auto& [place, event] : events_) {
      event.sentence = SentenceOf(event);
      events.push_back(std::move(event));
    }
    if (view_.known && DigestIsDue(standing_, view_.digest_at, status_.now)) events.push_back(Digest());
    if (view_.round_ended) events.push_back(Round());
    return events;
  }

 private:
  [[nodiscard]] std::optional<AlertKind> KindOf(const AlertRecord& record) const {
    if (record.cause == kDigest) return std::nullopt;
    if (record.good_rounds >= kGoodRounds) return AlertKind::Cleared;
    if (wrong_.find(KeyOf(record)) == wrong_.end()) return std::nullopt;
    if (record.told.IsNone()) return AlertKind::Raised;
    const std::int64_t after = kRepeatAfter - (view_.round_ended ? kRoundsVary : 0);
    const bool again = !IsToldOnce(record) && status_.now - record.told >= after;
    return again ? std::optional(AlertKind::Repeated) : std::nullopt;
  }

  /// What is lost, and what nobody asks for by itself.
  [[nodiscard]] bool IsToldOnce(const AlertRecord& record) const {
    if (record.cause != kMissing) return record.cause == kLost;
    const auto unit = units_.find(record.unit);
    return unit != units_.end() && ToBeAskedFor(*unit->second) == 0;
  }

  /// The network's causes come first, then those of units as their table has them.
  [[nodiscard]] static std::size_t PlaceOf(const AlertRecord& record) {
    constexpr std::array kNetwork = {kNobodyCollects, kRound, kHistory};
    const auto network = std::find(kNetwork.begin(), kNetwork.end(), record.cause) - kNetwork.begin();
    if (network < std::ssize(kNetwork)) return static_cast<std::size_t>(network);
    const auto unit = std::find_if(kUnitCauses.begin(), kUnitCauses.end(),
                                   [&record](const UnitCause& words) { return words.cause == record.cause; });
    return static_cast<std::size_t>(network + (unit - kUnitCauses.begin()));
  }

  void Take(AlertKind kind, const AlertRecord& record) {
    const std::string relay = IsRelayRecord(record) ? record.subject : "";
    AlertEvent& event = events_[{kind, PlaceOf(record), relay}];
    event.kind = kind;
    event.cause = record.cause;
    event.relay = relay;
    if (event.since.IsNone() || record.raised < event.since) event.since = record.raised;
    event.records.push_back(record);
    if (!relay.empty()) return TakeUnitsBehind(event);
    const auto unit = units_.find(record.unit);
    if (unit == units_.end()) return;
    event.units.push_back(
        {unit->second, kind == AlertKind::Cleared ? "" : WhyOf(*unit->second, record.cause), record.raised});
  }

  void TakeUnitsBehind(AlertEvent& event) const {
    for (const UnitStatus& unit : status_.units) {
      if (unit.relay.empty() || RelayText(unit) != event.relay || !IsWatched(unit) || unit.silenced) continue;
      event.units.push_back({&unit, event.kind == AlertKind::Cleared ? "" : unit.why, event.since});
    }
  }

  [[nodiscard]] static std::string WhyOf(const UnitStatus& unit, std::string_view cause) {
    if (cause == kSilent || cause == kLate) return unit.why;
    if (cause == kDelivery) return unit.delivery_problem;
    if (cause == kLost) return CountText(unit.lost, "reading is lost for ever", "readings are lost for ever");
    const std::string text = TroublesOf(unit, cause);
    if (cause != kMissing || !text.empty()) return text;
    return CountText(unit.missing - unit.lost, "reading is missing", "readings are missing");
  }

  [[nodiscard]] std::string NetworkSentence(const AlertEvent& event) const {
    const bool cleared = event.kind == AlertKind::Cleared;
    if (event.cause == kNobodyCollects) {
      return cleared ? "Somebody collects again" : "Nobody collects. " + status_.nobody_collects;
    }
    if (event.cause == kRound) {
      return cleared ? "Rounds go to their end again" : "The last round ended early: " + status_.last.ending;
    }
    return cleared ? "The history can be used again" : "The history cannot be used: " + view_.history_problem;
  }

  [[nodiscard]] std::string SentenceOf(const AlertEvent& event) const {
    const auto words = std::find_if(kUnitCauses.begin(), kUnitCauses.end(),
                                    [&event](const UnitCause& row) { return row.cause == event.cause; });
    std::string text;
    if (words == kUnitCauses.end()) {
      text = NetworkSentence(event);
    } else if (const bool cleared = event.kind == AlertKind::Cleared; !event.relay.empty()) {
      text = (cleared ? "Units behind relay " : "All units behind relay ") + event.relay + " ";
      text += cleared ? words->many_cleared : words->many;
    } else if (event.units.size() == 1) {
      text = event.units[0].status->name + " ";
      text += cleared ? words->one_cleared : words->one;
    } else {
      text = std::to_string(event.units.size()) + " units ";
      text += cleared ? words->many_cleared : words->many;
    }
    return event.kind == AlertKind::Repeated ? text + " (since " + WhenText(event.since) + ")" : text;
  }

  [[nodiscard]] AlertEvent Digest() const {
    AlertEvent event;
    event.kind = AlertKind::Digest;
    event.sentence = status_.sentence;
    for (const UnitStatus& unit : status_.units) {
      if (!IsWatched(unit) || unit.state == UnitState::Fine) continue;
      event.units.push_back({&unit, unit.why + (unit.note.empty() ? "" : " (note: " + unit.note + ")"), {}});
    }
    AlertRecord record;
    record.cause = kDigest;
    record.raised = status_.now;
    event.records.push_back(record);
    return event;
  }

  [[nodiscard]] AlertEvent Round() const {
    AlertEvent event;
    event.kind = AlertKind::Round;
    event.sentence = "Round: " + status_.last_round;
    return event;
  }

  const std::vector<AlertRecord>& standing_;
  const std::set<Key>& wrong_;
  const AlertView& view_;
  const NetworkStatus& status_;
  std::map<std::int64_t, const UnitStatus*> units_;
  std::map<std::tuple<AlertKind, std::size_t, std::string>, AlertEvent> events_;
};

/// One look at how things stand.
class Look {
 public:
  Look(const std::vector<AlertRecord>& former, const AlertView& view)
      : view_(view), status_(view.status), step_(former, view.status.now), records_(step_.records()) {}

  AlertStep Run() {
    ForgetTheFuture();
    Settle(kHistory, 0, "", !view_.history_problem.empty(), view_.round_ended);
    if (view_.known) {
      SettleNetwork();
      SettleUnits();
    } else {
      for (const auto& [key, record] : records_) settled_.insert(key);
    }
    std::erase_if(records_, [this](const auto& each) { return settled_.find(each.first) == settled_.end(); });
    AlertStep step = step_.Take();
    step.events = Telling(step.standing, wrong_, view_).Run();
    return step;
  }

 private:
  /// A clock that was ahead and was set right must not keep anything back until then.
  void ForgetTheFuture() {
    for (auto& [key, record] : records_) {
      for (Moment AlertRecord::*const moment : {&AlertRecord::raised, &AlertRecord::told}) {
        if (record.*moment > status_.now) record.*moment = status_.now;
      }
      if (record.cause == kDigest) settled_.insert(key);
    }
  }

  /// `counts`: a round has shown it to be good, where it is.
  void Settle(std::string_view cause, std::int64_t unit, const std::string& subject, bool wrong, bool counts) {
    const Key key(cause, unit, subject);
    const auto found = records_.find(key);
    settled_.insert(key);
    if (wrong) wrong_.insert(key);
    if (wrong && found == records_.end()) {
      AlertRecord& record = records_[key];
      record.cause = cause;
      record.unit = unit;
      record.subject = subject;
      record.raised = status_.now;
      return;
    }
    if (found == records_.end()) return;
    std::int64_t& good_rounds = found->second.good_rounds;
    if (wrong) {
      good_rounds = 0;
    } else if (counts) {
      good_rounds = std::min(good_rounds + 1, kGoodRounds);
    }
    if (!wrong && found->second.told.IsNone()) records_.erase(found);
  }

  void SettleNetwork() {
    const bool ended = view_.round_ended;
    Settle(kNobodyCollects, 0, "", !status_.nobody_collects.empty(), ended);
    // Between rounds the last one says nothing new; who ends a round by hand knows of it.
    if (ended) {
      Settle(kRound, 0, "", status_.last.automatic && !status_.last.ending.empty(), true);
    } else {
      settled_.insert(Key(kRound, 0, ""));
    }
  }

  [[nodiscard]] bool AnsweredNow(const UnitStatus& unit) const {
    return view_.round_ended && (unit.asked == 0 || unit.last_answered >= status_.last.began);
  }

  void SettleRelays() {
    struct Relay {
      std::int64_t units = 0;
      std::int64_t silent = 0;
      bool loud = false;
      bool answered = false;
    };
    std::map<std::string, Relay> relays;
    for (const UnitStatus& unit : status_.units) {
      if (unit.relay.empty() || unit.asked == 0 || !IsWatched(unit)) continue;
      Relay& relay = relays[RelayText(unit)];
      ++relay.units;
      relay.silent += unit.state == UnitState::Silent ? 1 : 0;
      relay.loud = relay.loud || !unit.silenced;
      relay.answered = relay.answered || AnsweredNow(unit);
    }
    for (const auto& [name, relay] : relays) {
      const bool down = relay.units >= kFewestBehindRelay && relay.silent == relay.units && relay.loud;
      Settle(kSilent, 0, name, down, relay.answered);
      const auto record = records_.find(Key(kSilent, 0, name));
      if (record != records_.end() && record->second.good_rounds < kGoodRounds) down_.insert(name);
    }
  }

  void SettleUnits() {
    SettleRelays();
    for (const UnitStatus& unit : status_.units) {
      if (IsWatched(unit) && !unit.silenced) SettleUnit(unit);
    }
  }

  void SettleUnit(const UnitStatus& unit) {
    const bool answered = AnsweredNow(unit);
    // Of units behind a relay that is down the relay tells.
    if (unit.relay.empty() || down_.find(RelayText(unit)) == down_.end()) {
      Settle(kSilent, unit.key, "", unit.state == UnitState::Silent, answered);
    }
    Settle(kLate, unit.key, "", unit.state == UnitState::Late, answered);
    for (const std::string_view cause : {kRejected, kClock, kBattery, kSensor}) {
      Settle(cause, unit.key, "", !TroublesOf(unit, cause).empty(), answered);
    }
    // What nobody asks for by itself is over without a word behind some days: it is not there again.
    const std::int64_t told = ToBeAskedFor(unit) + unit.given_up_lately;
    if (told > 0 || unit.given_up == 0) Settle(kMissing, unit.key, "", told > 0, view_.round_ended);
    Settle(kDelivery, unit.key, "", !unit.delivery_problem.empty(), view_.round_ended);
    SettleLost(unit);
  }

  /// What is lost stays lost, so only more of it is news.
  void SettleLost(const UnitStatus& unit) {
    AlertRecord record;
    record.cause = kLost;
    record.unit = unit.key;
    record.raised = status_.now;
    std::int64_t former = 0;
    const auto found = records_.lower_bound(Key(kLost, unit.key, ""));
    if (found != records_.end() && found->second.cause == kLost && found->second.unit == unit.key) {
      const std::string& number = found->second.subject;
      std::from_chars(number.data(), number.data() + number.size(), former);
      if (unit.lost <= former) record = found->second;
      records_.erase(found);
    }
    if (unit.lost == 0) return;
    record.subject = std::to_string(unit.lost);
    settled_.insert(KeyOf(record));
    wrong_.insert(KeyOf(record));
    records_[KeyOf(record)] = record;
  }

  const AlertView& view_;
  const NetworkStatus& status_;
  Step step_;
  Records& records_;
  std::set<Key> settled_;       ///< what this look has an opinion of; the rest is over
  std::set<Key> wrong_;         ///< of these
  std::set<std::string> down_;  ///< relays
};

}  // namespace

std::string_view NameOf(AlertKind ae_Kind) {
  return kKinds[static_cast<std::size_t>(ae_Kind)];
}

AlertStep LookAtAlerts(const std::vector<AlertRecord>& av_Former, const AlertView& av_View) {
  return Look(av_Former, av_View).Run();
}

AlertStep AfterTelling(const std::vector<AlertRecord>& av_Standing, const std::vector<AlertRecord>& av_Told,
                       Moment av_Now) {
  Step step(av_Standing, av_Now);
  for (const AlertRecord& told : av_Told) {
    const auto found = step.records().find(KeyOf(told));
    if (found == step.records().end() && told.cause != kDigest) continue;
    if (told.good_rounds >= kGoodRounds) {
      step.records().erase(found);
    } else {
      AlertRecord& record = found == step.records().end() ? (step.records()[KeyOf(told)] = told) : found->second;
      record.told = av_Now;
    }
  }
  return step.Take();
}

bool DigestIsDue(const std::vector<AlertRecord>& av_Records, std::optional<std::int64_t> av_DigestAt, Moment av_Now) {
  if (!av_DigestAt || av_Now.Local().TimeOfDay() < *av_DigestAt) return false;
  const auto last = std::find_if(av_Records.begin(), av_Records.end(),
                                 [](const AlertRecord& record) { return record.cause == kDigest; });
  return last == av_Records.end() || last->told.Local().Midnight() < av_Now.Local().Midnight();
}

}  // namespace corvane
