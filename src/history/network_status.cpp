#include "history/network_status.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <map>

#include "history/status_texts.h"
#include "history/unit_status.h"

namespace corvane {
namespace {

constexpr std::int64_t kContactDays = 40;
constexpr std::int64_t kDays = 30;
constexpr std::int64_t kRounds = 20;
/// A round begins with the first heartbeat behind its time; two of the slowest, and a minute for what else is going on.
constexpr std::int64_t kBeginsWithin = 180;
constexpr std::int64_t kAliveWithin = 1800;
constexpr std::int64_t kLongestRound = kSecondsPerDay;
constexpr std::int64_t kFewestBehindRelay = 2;

constexpr std::array kStates = {Phrase{1065, "off"},  Phrase{1066, "new"},     Phrase{1067, "silent"},
                                Phrase{1068, "late"}, Phrase{1069, "trouble"}, Phrase{1070, "fine"}};
constexpr struct {
  CountPhrase undelivered{{1093, "%1 file has not got to the server"}, {1094, "%1 files have not got to the server"}};
  Phrase no_program{1300, "Automatic download is on, and no program is running that would do it"};
  Phrase not_heard_of{1301, "Automatic download is on, and the program has not been heard of since %1"};
  Phrase no_interval{1302, "Automatic download is on, and its interval in the settings is none"};
  Phrase round_missed{1303, "The round of %1 has not begun"};
} kNetworkStatusSays;
constexpr std::array<std::string_view, 5> kLetters = {"empty", "nobody collects", "critical", "warning", "well"};
/// The worst first.
constexpr std::array kOrder = {UnitState::Silent, UnitState::Late, UnitState::Trouble,
                               UnitState::New,    UnitState::Fine, UnitState::Off};

bool Collects(const RoundRecord& av_Round) {
  return av_Round.kind == RoundKind::Download || av_Round.kind == RoundKind::Fetch;
}

/// The whole network, behind its units.
class NetworkView {
 public:
  NetworkView(const HistoryContents& av_History, NetworkStatus& av_Status, Holder ae_Holder, const Phrases& av_Phrases)
      : history_(av_History), status_(av_Status), holder_(ae_Holder), phrases_(av_Phrases) {
    if (av_History.network) network_ = *av_History.network;
  }

  void Fill() {
    Count();
    TakeRounds();
    status_.next_round = network_.automatic ? network_.next_download : DateTime();
    status_.nobody_collects = WhyNobodyCollects();
    TakeWorstRelay();
    status_.letter = Letter();
    status_.sentence = Sentence();
  }

 private:
  void Count() {
    status_.counts.assign(kStates.size(), 0);
    for (const UnitStatus& unit : status_.units) ++status_.counts[static_cast<std::size_t>(unit.state)];
  }

  void TakeRounds() {
    for (const RoundRecord& round : history_.rounds) {
      if (Collects(round)) status_.last = round;
    }
    TakeLeftOut();
    if (status_.last.key == 0) return;
    status_.last_round = RoundText(status_.last, status_.LeftOutOf(status_.last.key), phrases_);
  }

  void TakeLeftOut() {
    const std::int64_t first = history_.rounds.empty() ? 0 : history_.rounds.front().key;
    for (const ContactRecord& contact : history_.contacts) {
      if (contact.outcome != Outcome::NotAsked && contact.outcome != Outcome::NoPort) continue;
      if (contact.round >= first) status_.left_out[contact.round].Take(contact);
    }
  }

  [[nodiscard]] bool AliveLately() const {
    return !network_.alive.IsNone() && status_.now - network_.alive <= kAliveWithin;
  }

  [[nodiscard]] bool RoundIsUnderWay() const {
    if (history_.rounds.empty()) return false;
    const RoundRecord& last = history_.rounds.back();
    // One that was killed never ends either, and another program may hold the folder by now.
    return last.ended.IsNone() && last.began <= status_.now && status_.now - last.began <= kLongestRound &&
           (holder_ == Holder::Somebody || (holder_ == Holder::Unknown && AliveLately()));
  }

  [[nodiscard]] bool RoundIsMissed() const {
    const DateTime planned = network_.next_download;
    if (planned.IsNone() || status_.now.Local() - planned <= kBeginsWithin || RoundIsUnderWay()) return false;
    return std::none_of(history_.rounds.begin(), history_.rounds.end(), [this, planned](const RoundRecord& round) {
      // One of a clock that was ahead stands in the future.
      return Collects(round) && round.began <= status_.now && round.began.Local() >= planned;
    });
  }

  /// One sentence; empty when somebody collects, or nobody has to.
  [[nodiscard]] std::string WhyNobodyCollects() const {
    if (!network_.automatic) return "";
    // A program that was ended in order has said so.
    if (holder_ == Holder::Nobody || (holder_ == Holder::Unknown && !network_.open)) {
      return phrases_.Text(kNetworkStatusSays.no_program);
    }
    if (holder_ == Holder::Unknown && !AliveLately()) {
      return phrases_.Text(kNetworkStatusSays.not_heard_of, {WhenText(network_.alive, phrases_)});
    }
    if (!network_.interval) return phrases_.Text(kNetworkStatusSays.no_interval);
    if (!RoundIsMissed()) return "";
    return phrases_.Text(kNetworkStatusSays.round_missed, {WhenText(network_.next_download, phrases_)});
  }

  void TakeWorstRelay() {
    std::map<std::string, std::int64_t> silent;
    std::int64_t most = kFewestBehindRelay - 1;
    for (const UnitStatus& unit : status_.units) {
      if (unit.state != UnitState::Silent || unit.relay.empty()) continue;
      if (++silent[unit.relay] <= most) continue;
      most = silent[unit.relay];
      status_.worst_relay = unit.relay;
    }
    silent_behind_relay_ = most;
  }

  [[nodiscard]] bool PortFailed() const {
    return std::any_of(history_.contacts.begin(), history_.contacts.end(), [this](const ContactRecord& contact) {
      return contact.round == status_.last.key && contact.outcome == Outcome::NoPort;
    });
  }

  [[nodiscard]] bool AnyLoud(std::initializer_list<UnitState> av_States) const {
    return std::any_of(status_.units.begin(), status_.units.end(), [av_States](const UnitStatus& unit) {
      return !unit.silenced && std::find(av_States.begin(), av_States.end(), unit.state) != av_States.end();
    });
  }

  [[nodiscard]] NetworkLetter Letter() const {
    if (!status_.nobody_collects.empty()) return NetworkLetter::NobodyCollects;
    if (status_.units.empty()) return NetworkLetter::Empty;
    if (AnyLoud({UnitState::Silent, UnitState::Late})) return NetworkLetter::Critical;
    if (AnyLoud({UnitState::Trouble}) || !UndeliveredText(status_).empty() || PortFailed())
      return NetworkLetter::Warning;
    return NetworkLetter::Well;
  }

  [[nodiscard]] std::string Sentence() const {
    if (!status_.nobody_collects.empty()) return "Nobody collects. " + status_.nobody_collects;
    if (status_.units.empty()) return "There are no units";
    std::string text = CountsText(status_);
    if (!status_.worst_relay.empty()) {
      text += "; " + std::to_string(silent_behind_relay_) + " of the silent ones behind relay " + status_.worst_relay;
    }
    if (PortFailed()) text += "; the port could not be used in the last round";
    if (const std::string files = UndeliveredText(status_); !files.empty()) text += "; " + files;
    return text;
  }

  const HistoryContents& history_;
  NetworkStatus& status_;
  Holder holder_;
  const Phrases& phrases_;
  NetworkRecord network_;
  std::int64_t silent_behind_relay_ = 0;
};

}  // namespace

std::string CountsText(const NetworkStatus& av_Status) {
  std::string text;
  for (const UnitState state : kOrder) {
    const std::int64_t count = av_Status.counts[static_cast<std::size_t>(state)];
    if (count == 0) continue;
    text += (text.empty() ? "" : ", ") + std::to_string(count) + " " + std::string(NameOf(state));
  }
  return CountText(std::ssize(av_Status.units), "unit: ", "units: ") + text;
}

std::string_view NameOf(UnitState ae_State) {
  return kStates[static_cast<std::size_t>(ae_State)].english;
}

std::string StateText(UnitState ae_State, const Phrases& av_Phrases) {
  return av_Phrases.Text(kStates[static_cast<std::size_t>(ae_State)]);
}

std::string UndeliveredText(const NetworkStatus& av_Status, const Phrases& av_Phrases) {
  const std::int64_t files = std::count_if(av_Status.units.begin(), av_Status.units.end(), [](const UnitStatus& unit) {
    return unit.state != UnitState::Off && !unit.silenced && !unit.delivery_problem.empty();
  });
  return files == 0 ? "" : CountText(files, kNetworkStatusSays.undelivered, av_Phrases);
}

int PlaceOf(UnitState ae_State) {
  return static_cast<int>(std::find(kOrder.begin(), kOrder.end(), ae_State) - kOrder.begin());
}

std::string_view NameOf(NetworkLetter ae_Letter) {
  return kLetters[static_cast<std::size_t>(ae_Letter)];
}

HistoryQuery StatusQuery(Moment av_Now) {
  HistoryQuery query;
  query.contacts_since = Moment{av_Now.utc - kContactDays * kSecondsPerDay, av_Now.ahead};
  query.rounds = kRounds;
  query.days_since = av_Now.Local().Midnight() - kDays * kSecondsPerDay;
  query.gaps = true;
  query.scans = true;
  return query;
}

NetworkStatus WorkOutStatus(const HistoryContents& av_History, Moment av_Now, Holder ae_Holder,
                            const Phrases& av_Phrases) {
  NetworkStatus status;
  status.now = av_Now;
  StatusRules rules;
  rules.now = av_Now;
  rules.phrases = av_Phrases;
  rules.own_clock = OwnClock(av_History.rounds);
  if (av_History.network) {
    rules.interval = av_History.network->interval;
    rules.late_after = av_History.network->late_after;
    rules.battery_limit = av_History.network->battery_limit;
    rules.repair_limit = av_History.network->repair_limit;
  }
  for (const UnitRecord& unit : av_History.units) {
    if (unit.position > 0) status.units.push_back(StatusOf(HistoryOf(av_History, unit), rules));
  }
  std::sort(status.units.begin(), status.units.end(), [](const UnitStatus& a, const UnitStatus& b) {
    const int place_a = PlaceOf(a.state);
    const int place_b = PlaceOf(b.state);
    return place_a != place_b ? place_a < place_b : a.position < b.position;
  });
  NetworkView(av_History, status, ae_Holder, av_Phrases).Fill();
  return status;
}

std::vector<Phrase> NetworkStatusPhrases() {
  std::vector<Phrase> all = PhrasesIn(kStates);
  const std::vector<Phrase> more = PhrasesIn(kNetworkStatusSays);
  all.insert(all.end(), more.begin(), more.end());
  return all;
}

}  // namespace corvane
