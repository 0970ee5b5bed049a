// What the history of a network holds, as plain records. Format: docs/formats/history.md.
//
// The program's own events are moments in UTC, what comes from units is in the units' naive time (`DateTime`).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/dates.h"

namespace corvane {

/// One unit: client, radio address and raw file together tell which; another of these is another unit.
struct UnitRecord {
  std::int64_t key = 0;  ///< from 1, never used again
  std::int32_t client_id = 0;
  std::int32_t unit_id = 0;
  std::string file;           ///< name of the raw file, without folder
  std::int32_t position = 0;  ///< in the list of units from 1; 0: it is in the list no more
  std::string name;
  std::string client;
  std::string relay;  ///< name, empty for the direct path
  std::int32_t relay_id = 0;
  bool active = false;
  std::int32_t get_from = 0;  ///< see `GetFrom`
  bool sent = false;          ///< its file is sent to the server
  Moment added;
  Moment last_asked;
  Moment last_answered;

  bool operator==(const UnitRecord&) const = default;
};

/// What a round was for.
enum class RoundKind : std::uint8_t { Download = 0, Fetch = 1, Command = 2, Repair = 3 };

/// Who began a round.
enum class RoundStart : std::uint8_t {
  ByHand = 0,      ///< somebody who watches it
  BySchedule = 1,  ///< the schedule, or a start that downloads at once
  ByCommand = 2    ///< a command of the console, which nobody has to watch
};

/// One operation over units, from its beginning to its end.
struct RoundRecord {
  std::int64_t key = 0;  ///< from 1, counting up
  RoundKind kind = RoundKind::Download;
  RoundStart start = RoundStart::ByHand;
  bool all = false;  ///< over all active units, not only one
  Moment began;
  Moment ended;  ///< none while it runs, or when the program was killed in it
  std::int64_t asked = 0;
  std::int64_t answered = 0;
  std::int64_t stored = 0;      ///< readings
  std::int64_t problems = 0;    ///< units and files that ended untried or with a problem
  std::string ending;           ///< why it ended early, empty when it did not
  std::int64_t clock_step = 0;  ///< seconds by which this computer's clock was found set back since the rounds before

  /// Whether nobody has to watch it: people are told when it ends early.
  [[nodiscard]] bool IsUnattended() const { return start != RoundStart::ByHand; }
  bool operator==(const RoundRecord&) const = default;
};

enum class Outcome : std::uint8_t {
  Answered = 0,  ///< whole, or what the unit answered was taken
  Failed = 1,    ///< an answer that was none: an error reply, damaged lines
  Silent = 2,    ///< no answer
  NotAsked = 3,  ///< the round ended before it
  NoPort = 4     ///< the port could not be used
};

/// What one round had to do with one unit.
struct ContactRecord {
  std::int64_t round = 0;  ///< key of the round
  std::int64_t unit = 0;   ///< key of the unit
  Moment at;               ///< when it ended
  std::int32_t get_from = 0;
  std::int16_t command = 0;  ///< see `Command`
  std::int64_t tries = 0;
  Outcome outcome = Outcome::NotAsked;
  std::string error;           ///< empty when it went well
  std::int64_t announced = 0;  ///< readings by the header
  std::int64_t stored = 0;
  std::int64_t rejected = 0;                   ///< lines that were dropped or kept aside
  DateTime last_reading;                       ///< in the raw file afterwards, none when there is none
  std::optional<double> battery;               ///< volts, from the header or the last reading that came
  std::optional<double> ambient;               ///< degrees Celsius
  std::optional<std::int64_t> clock_offset;    ///< seconds that the unit's clock is ahead of this computer's
  std::int64_t milliseconds_on_air = 0;        ///< from the first command to the last line
  std::optional<std::int64_t> period_minutes;  ///< that a command has set, or may have: no answer came

  bool operator==(const ContactRecord&) const = default;
};

enum class Target : std::uint8_t { Server = 0, Fetched = 1, Backup = 2, Calibrated = 3 };

/// What became of one unit's file on its way to one target, lately.
struct DeliveryRecord {
  std::int64_t unit = 0;
  Target target = Target::Server;
  std::string file;  ///< its name at the target
  Moment tried;
  Moment done;             ///< the last time that it got there
  std::string problem;     ///< of the last try, empty when it went well
  std::int64_t bytes = 0;  ///< of the file that got there
  DateTime last_reading;   ///< in it

  bool operator==(const DeliveryRecord&) const = default;
};

/// One day of one unit, in the unit's time.
struct DayRecord {
  std::int64_t unit = 0;
  DateTime day;  ///< its midnight
  std::int64_t expected = 0;
  std::int64_t stored = 0;
  DateTime first;
  DateTime last;
  std::optional<double> battery;     ///< volts, of the last reading
  std::int64_t outside = 0;          ///< readings with the worst channel outside its table
  std::int32_t outside_channel = 0;  ///< item of the reading, counted from 0 for the date; 0 none

  bool operator==(const DayRecord&) const = default;
};

enum class GapState : std::uint8_t {
  Found = 0,  ///< nobody has asked for it yet
  Asked = 1,  ///< asked for, and still there
  Filled = 2,
  Lost = 3,    ///< the unit has answered across it and does not hold it
  Clock = 4,   ///< the unit's clock was set: nothing is missing
  Dropped = 5  ///< was none: is taken out of the history
};

/// Readings that are missing between two that are there.
struct GapRecord {
  std::int64_t unit = 0;
  DateTime from;  ///< the reading before
  DateTime to;    ///< the reading behind
  std::int64_t missing = 0;
  GapState state = GapState::Found;
  std::int64_t tries = 0;
  Moment found;
  Moment changed;

  bool operator==(const GapRecord&) const = default;
};

/// How far a raw file was read, and which file it was.
struct ScanRecord {
  std::int64_t unit = 0;
  std::uint64_t inode = 0;
  std::int64_t size = 0;
  std::int64_t modified = 0;   ///< nanoseconds since 1970
  std::uint32_t tail_crc = 0;  ///< of the last 4 KiB
  std::string state;           ///< what the scan needs to go on; its own affair
  std::int64_t readings = 0;
  DateTime first;
  DateTime last;
  std::int64_t period = 0;         ///< seconds, the present one; 0 when it is not known
  std::int32_t still_channel = 0;  ///< the item that has not changed for longest, 0 none
  DateTime still_since;

  bool operator==(const ScanRecord&) const = default;
};

/// A cause that was told, or is to be told.
struct AlertRecord {
  std::string cause;      ///< "silent", "late", ...
  std::int64_t unit = 0;  ///< 0: the network, or the relay in `subject`
  std::string subject;
  Moment raised;
  Moment told;
  Moment cleared;                ///< none while it stands
  std::int64_t good_rounds = 0;  ///< in a row since it was last true

  bool operator==(const AlertRecord&) const = default;
};

/// What the person in charge has written about a unit; it silences the unit's alerts.
struct NoteRecord {
  std::int64_t unit = 0;
  std::string text;  ///< empty: the note is taken away
  Moment written;
  DateTime until;  ///< none: until it is taken away

  bool operator==(const NoteRecord&) const = default;
};

/// What the status needs to know of the settings. Never a password.
struct NetworkRecord {
  std::string version;  ///< of the program that wrote this
  bool automatic = false;
  std::optional<std::int64_t> interval;  ///< seconds between rounds, none when the setting holds none
  DateTime next_download;                ///< local time, none when there is none
  bool goes_on = false;
  double late_after = 2;        ///< intervals
  double battery_limit = 11.5;  ///< volts
  bool repairs_gaps = false;
  std::int64_t repair_limit = 2000;  ///< lines that a repair takes of a unit at most
  Moment alive;                      ///< when the holder of the folder last wrote
  bool open = false;                 ///< a program holds the folder; still set behind a kill

  bool operator==(const NetworkRecord&) const = default;
};

/// Any part of the history: what is written in one transaction, or what was read.
struct HistoryContents {
  std::vector<UnitRecord> units;
  std::vector<RoundRecord> rounds;
  std::vector<ContactRecord> contacts;
  std::vector<DeliveryRecord> deliveries;
  std::vector<DayRecord> days;
  std::vector<GapRecord> gaps;
  std::vector<ScanRecord> scans;
  std::vector<AlertRecord> alerts;
  std::vector<NoteRecord> notes;
  std::optional<NetworkRecord> network;

  bool operator==(const HistoryContents&) const = default;
};

}  // namespace corvane
