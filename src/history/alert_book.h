// What of a network is told to its people, and when: raised once, repeated after a day, cleared behind two good rounds.
//
// Pure: what is told follows from the former records, how the network stands, and the time.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "base/dates.h"
#include "history/network_status.h"
#include "platform/history_records.h"

namespace corvane {

/// A cause of the network has unit 0; "silent" with unit 0 means all units behind the relay in `subject`.
namespace alert_cause {
inline constexpr std::string_view kNobodyCollects = "nobody collects";
inline constexpr std::string_view kRound = "round";
inline constexpr std::string_view kHistory = "history";
inline constexpr std::string_view kSilent = "silent";
inline constexpr std::string_view kLate = "late";
inline constexpr std::string_view kMissing = "missing";
inline constexpr std::string_view kLost = "lost";  ///< `subject` is the number of readings
inline constexpr std::string_view kRejected = "rejected";
inline constexpr std::string_view kClock = "clock";
inline constexpr std::string_view kBattery = "battery";
inline constexpr std::string_view kSensor = "sensor";
inline constexpr std::string_view kDelivery = "delivery";
inline constexpr std::string_view kDigest = "digest";  ///< no cause: `told` is when the last one was told
}  // namespace alert_cause

/// Cause, unit and subject of a record.
using AlertKey = std::tuple<std::string, std::int64_t, std::string>;
/// That of a record: two of one key tell of the same matter.
[[nodiscard]] AlertKey KeyOf(const AlertRecord& av_Record);

/// A unit in an event.
struct AlertUnit {
  const UnitStatus* status = nullptr;
  std::string why;  ///< one sentence
  Moment since;     ///< none in a digest
};

enum class AlertKind : std::uint8_t { Raised, Repeated, Cleared, Digest, Round };
/// "raised", "repeated", "cleared", "digest", "round".
[[nodiscard]] std::string_view NameOf(AlertKind ae_Kind);

/// One thing to tell.
struct AlertEvent {
  AlertKind kind = AlertKind::Raised;
  std::string cause;  ///< empty for a digest and a round
  std::string relay;  ///< behind which all units are silent; empty otherwise
  std::string sentence;
  Moment since;                      ///< when the oldest of its causes was raised; none for a digest and a round
  std::vector<AlertUnit> units;      ///< those concerned; empty for the network as a whole
  std::vector<AlertRecord> records;  ///< what this tells of
};

/// What the alerts look at.
struct AlertView {
  const NetworkStatus& status;                 ///< must outlive the events that are made of it
  std::string history_problem;                 ///< why the history cannot be written; empty when it can
  std::optional<std::int64_t> digest_at = {};  ///< seconds behind local midnight; none: no digest
  bool known = true;         ///< false: the history cannot be read, and `status` holds no more than the time
  bool round_ended = false;  ///< `status.last` has ended since the last look
  std::set<AlertKey> perhaps_told = {};  ///< records that may have been told before a kill
};

/// The alerts behind a step: those that stand, and the records that have to be written. `cleared` is set in those that
/// are over; they are written once more and stand no longer.
struct AlertStep {
  std::vector<AlertRecord> standing;
  std::vector<AlertRecord> changed;
  std::vector<AlertEvent> events;  ///< to tell, the gravest first; they refer to the status that was looked at
};

/// What stands after a look at how things are, and what there is to tell.
///
/// What is new stands with `told` none. What was told and is good for two rounds stands with `good_rounds` 2 until its
/// end was told too. What nobody was told of just ends, as does what concerns a unit that is off, gone or silenced by a
/// note. A round counts for a unit that has answered in it.
[[nodiscard]] AlertStep LookAtAlerts(const std::vector<AlertRecord>& av_Former, const AlertView& av_View);

/// What stands once the records of events, made with `av_Standing`, were told.
[[nodiscard]] AlertStep AfterTelling(const std::vector<AlertRecord>& av_Standing,
                                     const std::vector<AlertRecord>& av_Told, Moment av_Now);

/// Whether a digest is due: once a local day, at its time or as soon behind it as somebody looks.
[[nodiscard]] bool DigestIsDue(const std::vector<AlertRecord>& av_Records, std::optional<std::int64_t> av_DigestAt,
                               Moment av_Now);

}  // namespace corvane
