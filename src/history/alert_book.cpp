#include "history/alert_book.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <set>
#include <utility>

#include "history/alert_events.h"

namespace corvane {
namespace {

using namespace alert_cause;
using Key = AlertKey;
using Records = std::map<Key, AlertRecord>;

constexpr std::int64_t kFewestBehindRelay = 2;

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
    step.events = EventsToTell(step.standing, wrong_, view_);
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
    const bool was_told = !found->second.told.IsNone() || view_.perhaps_told.contains(key);
    if (!wrong && !was_told) records_.erase(found);
  }

  void SettleNetwork() {
    const bool ended = view_.round_ended;
    Settle(kNobodyCollects, 0, "", !status_.nobody_collects.empty(), ended);
    // Between rounds the last one says nothing new; who ends a round by hand knows of it.
    if (ended) {
      Settle(kRound, 0, "", status_.last.IsUnattended() && !status_.last.ending.empty(), true);
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
