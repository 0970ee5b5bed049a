#include "history/alert_events.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <utility>

#include "history/status_texts.h"

namespace corvane {
namespace {

using namespace alert_cause;
using Key = AlertKey;

constexpr std::int64_t kRepeatAfter = kSecondsPerDay;
/// Rounds of one time of day end some minutes earlier or later.
constexpr std::int64_t kRoundsVary = 600;

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

bool IsRelayRecord(const AlertRecord& record) {
  return record.cause == kSilent && record.unit == 0;
}

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

}  // namespace

AlertKey KeyOf(const AlertRecord& record) {
  return {record.cause, record.unit, record.subject};
}

std::string TroublesOf(const UnitStatus& unit, std::string_view cause) {
  std::string text;
  for (const Trouble& trouble : unit.troubles) {
    const bool told = std::any_of(kTroubleCauses.begin(), kTroubleCauses.end(),
                                  [&](const auto& row) { return row.first == trouble.kind && row.second == cause; });
    if (told) text += (text.empty() ? "" : "; ") + trouble.text;
  }
  return text;
}

std::string RelayText(const UnitStatus& unit) {
  return unit.relay + " (" + std::to_string(unit.relay_id) + ")";
}

bool IsWatched(const UnitStatus& unit) {
  return unit.state != UnitState::Off && unit.state != UnitState::New;
}

std::int64_t ToBeAskedFor(const UnitStatus& unit) {
  return unit.missing - unit.lost - unit.given_up;
}

std::string_view NameOf(AlertKind ae_Kind) {
  return kKinds[static_cast<std::size_t>(ae_Kind)];
}

std::vector<AlertEvent> EventsToTell(const std::vector<AlertRecord>& av_Standing, const std::set<AlertKey>& av_Wrong,
                                     const AlertView& av_View) {
  return Telling(av_Standing, av_Wrong, av_View).Run();
}

}  // namespace corvane
