// How a network stands: worked out from its history in one place, shown by every view.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/dates.h"
#include "history/status_texts.h"
#include "lang/phrases.h"
#include "platform/history_records.h"
#include "platform/history_store.h"

namespace corvane {

/// How a unit stands; the first that applies, in this order.
enum class UnitState : std::uint8_t { Off, New, Silent, Late, Trouble, Fine };
/// "off", "new", "silent", "late", "trouble", "fine".
[[nodiscard]] std::string_view NameOf(UnitState ae_State);
/// The same in another language.
[[nodiscard]] std::string StateText(UnitState ae_State, const Phrases& av_Phrases);

/// Where a state stands when the worst comes first, from 0.
[[nodiscard]] int PlaceOf(UnitState ae_State);

/// What a trouble is about; alerts tell each kind of a unit once.
enum class TroubleKind : std::uint8_t { Missing, Rejected, Clock, Future, Battery, Sensor };

struct Trouble {
  TroubleKind kind = TroubleKind::Missing;
  std::string text;  ///< one sentence
};

struct UnitStatus {
  std::int64_t key = 0;       ///< in the history
  std::int32_t position = 0;  ///< in the list of units, from 1
  std::int32_t id = 0;
  std::int32_t client_id = 0;
  std::string name;
  std::string client;
  std::string relay;
  std::int32_t relay_id = 0;
  std::string file;
  UnitState state = UnitState::New;
  std::string why;                          ///< one sentence, empty for a unit that is fine
  std::vector<Trouble> troubles;            ///< all that is wrong, whatever the state
  DateTime last_reading;                    ///< none when there is none
  std::optional<std::int64_t> reading_age;  ///< seconds by this computer's clock, below 0 for one in the future
  Moment last_asked;
  Moment last_answered;
  Moment last_contact;                       ///< when a round had to do with it last, also where it was not asked
  std::string contact;                       ///< what came of that, in a few words
  std::int64_t asked = 0;                    ///< of the last 20 rounds
  std::int64_t answered = 0;                 ///< of those
  std::vector<bool> answers;                 ///< of those, the oldest first
  std::optional<double> battery;             ///< volts
  std::optional<double> battery_slope;       ///< volts a day
  std::optional<double> battery_days;        ///< until the limit, at that slope
  std::optional<std::int64_t> clock_offset;  ///< seconds that the unit is ahead
  std::optional<double> clock_drift;         ///< seconds a day
  bool clock_of_another_season = false;      ///< it is off as summer time is, and nobody sets all units for that
  std::optional<double> complete;            ///< share of the readings expected in the last 30 days, 0 to 1
  std::int64_t gaps = 0;                     ///< that are neither filled nor a matter of the clock
  std::int64_t missing = 0;                  ///< readings in them
  std::int64_t lost = 0;                     ///< of these for ever
  std::int64_t given_up = 0;                 ///< of those missing and not lost: nobody asks for them by itself
  std::int64_t given_up_lately = 0;          ///< of these in the last 30 days
  Moment delivered;                          ///< to the server; none: never, or it is not sent
  DateTime delivered_to;                     ///< the last reading that was delivered
  std::string delivery_problem;
  std::string note;
  bool silenced = false;  ///< a note holds back its alerts
};

/// How the network stands as a whole.
enum class NetworkLetter : std::uint8_t { Empty, NobodyCollects, Critical, Warning, Well };
/// "empty", "nobody collects", "critical", "warning", "well".
[[nodiscard]] std::string_view NameOf(NetworkLetter ae_Letter);

struct NetworkStatus {
  Moment now;
  NetworkLetter letter = NetworkLetter::Empty;
  std::string sentence;                      ///< how things stand, in one line, English
  std::string nobody_collects;               ///< why nobody collects; empty when somebody does
  std::string last_round;                    ///< the last round in one sentence
  RoundRecord last;                          ///< that round, key 0 when there was none
  std::map<std::int64_t, LeftOut> left_out;  ///< by the keys of the rounds that left units out
  DateTime next_round;                       ///< local time, none when nothing is planned
  std::vector<std::int64_t> counts;          ///< units, by `UnitState`
  std::string worst_relay;        ///< behind which most silent units lie, empty when fewer than two lie behind one
  std::vector<UnitStatus> units;  ///< the worst first

  /// What the round of that key has left out.
  [[nodiscard]] LeftOut LeftOutOf(std::int64_t al_Round) const {
    const auto found = left_out.find(al_Round);
    return found != left_out.end() ? found->second : LeftOut();
  }
};

/// Whether some program holds the folder.
enum class Holder : std::uint8_t { Unknown, Nobody, Somebody };

/// What the status reads of the history, at `av_Now`.
[[nodiscard]] HistoryQuery StatusQuery(Moment av_Now);
/// Works out how the network stands. Depends on nothing but its arguments.
///
/// Told in the words of `av_Phrases`; the sentence for other programs stays English but for what it quotes.
[[nodiscard]] NetworkStatus WorkOutStatus(const HistoryContents& av_History, Moment av_Now, Holder ae_Holder,
                                          const Phrases& av_Phrases = {});

/// "2 files have not got to the server"; empty when all that were to go have.
[[nodiscard]] std::string UndeliveredText(const NetworkStatus& av_Status, const Phrases& av_Phrases = {});

/// What the texts of the network and its states are made of.
[[nodiscard]] std::vector<Phrase> NetworkStatusPhrases();
/// How many units there are and how they stand, such as "3 units: 1 silent, 2 fine".
[[nodiscard]] std::string CountsText(const NetworkStatus& av_Status);

}  // namespace corvane
