#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/dates.h"
#include "base/status.h"
#include "platform/history_records.h"

namespace corvane {

/// What to read of a history.
struct HistoryQuery {
  std::int64_t unit = 0;               ///< only this one; 0 all
  Moment contacts_since;               ///< contacts from then on, and the rounds that they belong to
  std::int64_t rounds = 0;             ///< besides, so many of the last rounds; those of clock steps always come
  std::optional<DateTime> days_since;  ///< days from then on; none: no days
  bool gaps = false;                   ///< all that are neither filled nor a matter of the clock
  bool scans = false;
  bool lists = true;  ///< units, deliveries, alerts that stand, notes and the network, all of each, and the rounds
  /// Instead of contacts and rounds by time: the last round whose key is at most this, its contacts, and as gaps those
  /// that changed while it ran, whatever became of them; no days and scans. 0: by time.
  std::int64_t round = 0;
};

/// The file that holds the history. Calls return at once but for the disk, and wait at most 100 ms for another program.
class HistoryStore {
 public:
  virtual ~HistoryStore() = default;
  HistoryStore() = default;
  HistoryStore(const HistoryStore&) = delete;
  HistoryStore& operator=(const HistoryStore&) = delete;

  /// Codes of failures that callers tell apart.
  static constexpr int kBusy = 1;     ///< another program holds it: try again
  static constexpr int kDamaged = 2;  ///< no history, or one that is damaged
  static constexpr int kNewer = 3;    ///< written by a newer version of the program
  static constexpr int kMissing =
      4;  ///< opened to read: there is none; opened to write: it was moved, and is closed now
  static constexpr int kFailed = 5;  ///< the disk is full, the folder read-only, ...

  /// Opens `as_File` for writing: it is made when it is missing or empty, and brought up to this version.
  ///
  /// A damaged one is set aside as "<name>.bad" (a former one of that name is replaced) and begun anew; `as_SetAside`
  /// then tells why, in one sentence. Damage that shows only later fails as `kDamaged`; opening the file once more then
  /// sets it aside.
  virtual Status OpenToWrite(const std::string& as_File, std::string& as_SetAside) = 0;
  /// Opens for reading, beside a program that writes; changes nothing.
  virtual Status OpenToRead(const std::string& as_File) = 0;
  virtual void Close() = 0;
  [[nodiscard]] virtual bool IsOpen() const = 0;

  /// Writes all of `av_Changes` in one transaction, or nothing of it.
  ///
  /// Records of a key that is there (unit; round; round and unit; unit and target; unit and day; unit and begin of the
  /// gap; unit; cause, unit and subject) replace it. A gap that is `Dropped` and a note without text are taken out.
  virtual Status Write(const HistoryContents& av_Changes) = 0;
  /// Replaces what is known of a unit from `av_From` on by what `av_Changes` holds of it, in the same transaction as
  /// the rest of that: days from its midnight on, gaps whose later reading is later. A gap that was filled stays unless
  /// `av_Changes` has one of the same begin.
  virtual Status Replace(std::int64_t al_Unit, DateTime av_From, const HistoryContents& av_Changes) = 0;
  /// Reads into `av_Result`; contacts in the order of units and rounds, whatever the clock said, all else in the order
  /// of keys.
  virtual Status Read(const HistoryQuery& av_Query, HistoryContents& av_Result) = 0;
  /// Forgets contacts, rounds, days and settled gaps and alerts from before `av_Before`, and units that are in the list
  /// no more and of which nothing is left. At most 200,000 contacts and as many days at once: the next call goes on.
  virtual Status Forget(Moment av_Before) = 0;
};

}  // namespace corvane
