#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "data/completeness.h"
#include "history/believed_time.h"
#include "history/network_status.h"
#include "history/own_clock.h"
#include "history/unit_catalogue.h"
#include "history/unit_memories.h"
#include "platform/event_loop.h"
#include "platform/history_records.h"
#include "platform/history_store.h"
#include "state/file_names.h"
#include "state/records.h"
#include "trace/trace.h"

namespace corvane {

/// Writes down what happens to each unit, in the file "history.db" of the application folder.
///
/// Nothing of it stops or delays a round: what cannot be written is kept, up to `kMostWaiting` records, and written
/// later; a failure is told once a round. Without a store nothing is kept and every call does nothing. Positions are
/// those of the list of units, from 1.
class History {
 public:
  /// All must outlive this object.
  struct Parts {
    HistoryStore* store;  ///< none: no history is kept
    const Registry& registry;
    const FileNames& names;
    EventLoop& loop;
    Trace& trace;
  };
  explicit History(const Parts& av_Parts) : p_(av_Parts) {}

  /// Opens the history of an application folder; called by the program that holds the folder, once its settings are
  /// loaded.
  void Open(const std::string& as_Folder);
  /// Writes what waits and closes it.
  void Close();
  /// True between `Open` and `Close`, also while the file cannot be used.
  [[nodiscard]] bool Kept() const { return !file_.empty(); }

  /// True when the file is open, or could be opened now; behind a failure it is left alone for half a minute.
  [[nodiscard]] bool IsReady();

  /// A round begins; units are followed first. One that never ended is left as it is.
  void BeginRound(RoundKind ae_Kind, RoundStart ae_Start, bool ab_All);
  /// The round ends as `av_Counts` says: asked, answered, stored, problems, ending.
  void EndRound(const RoundRecord& av_Counts);
  /// The round that runs; key 0: none does.
  [[nodiscard]] const RoundRecord& Round() const { return round_; }
  /// Works out how the network stands and hands it to `after_round`; where that cannot be known calls `in_the_dark`.
  void TellStatus();
  /// How the network stands now; none when the history cannot be read.
  [[nodiscard]] std::optional<NetworkStatus> StatusNow();
  /// Why the history cannot be written or read; empty when it can, or when none is kept.
  [[nodiscard]] const std::string& Problem() const { return problem_; }

  /// Follows the list of units: names, clients, new and deleted ones.
  void FollowUnits();
  /// The key of a unit, 0 when it has none.
  [[nodiscard]] std::int64_t KeyOf(std::int64_t al_Position) const { return units_.KeyOf(al_Position); }
  /// Where the units of these keys are in the list, from 1; those that are in it no more are left out.
  [[nodiscard]] std::vector<std::int64_t> PositionsOf(const std::vector<std::int64_t>& av_Keys) const;
  /// So many units are in the list.
  [[nodiscard]] std::int64_t Positions() const { return p_.registry.Units.count(); }
  /// What is known of the unit of a key.
  [[nodiscard]] UnitMemory& Of(std::int64_t al_Key) { return memory_.Of(al_Key); }
  /// The same, with its contacts of former times in the clock book; without where they cannot be read now: see
  /// `clock_read`. May give units other keys where `IsReady` was not asked before.
  [[nodiscard]] UnitMemory& WithClock(std::int64_t al_Key);

  /// What the round that runs had to do with a unit; replaces what it has noted of it before. `at` is now.
  void NoteContact(std::int64_t al_Position, ContactRecord av_Contact);
  /// What became of a unit's file; `tried` is now, and so is `done` when it got there.
  void NoteDelivery(std::int64_t al_Position, DeliveryRecord av_Delivery, bool ab_Arrived);
  /// New states, tries or parts of gaps of a unit, as a repair has found them; `changed` is now.
  void NoteGaps(std::int64_t al_Position, const std::vector<GapRecord>& av_Gaps);
  /// What a scan has found of the unit of a key, and what its gaps are now; false when it could not be written: then
  /// the next scan begins where the former did.
  bool NoteScan(std::int64_t al_Key, const RawScan& av_Scan, const std::vector<GapRecord>& av_Gaps);
  /// Writes what the status needs of the settings.
  void NoteNetwork(const NetworkRecord& av_Network);
  /// The last reading that got to a target, none when that is not known.
  [[nodiscard]] DateTime DeliveredTo(std::int64_t al_Position, Target ae_Target) const;

  /// Writes any other records, now or later.
  void Write(const HistoryContents& av_Changes);
  /// Writes what waits, where the file can be used again.
  void Flush();
  /// Forgets what is older than `al_Years`, once a day. A clock that is ahead by more than some days is not believed.
  void ForgetBefore(std::int64_t al_Years);
  /// Reads from the file, what still waits to be written left out. One that turns out to be damaged is
  /// begun anew, and the call fails.
  Status Read(const HistoryQuery& av_Query, HistoryContents& av_Result);

  // Set by the composition root.
  /// Gets how the network stands behind a round.
  std::function<void(const NetworkStatus&)> after_round;
  /// Called instead when the history cannot be read.
  std::function<void()> in_the_dark;
  /// Whether anybody wants either; empty: somebody does.
  std::function<bool()> wants_status;

 private:
  Status OpenStore();
  void Adopt(const HistoryContents& av_Stored);
  /// Begins a file anew that turned out to be damaged, with all that is known.
  Status BeginAnew();
  /// Gives what waits the keys that the file has.
  void Renumber(const std::map<std::int64_t, std::int64_t>& av_Units, std::int64_t al_Rounds);
  /// `as_CannotBe`: "written" or "read".
  void Report(const std::string& as_CannotBe, const Status& av_Failure);
  /// Reports what fails with what the file holds; one that is damaged is begun anew.
  void GiveUp(const std::string& as_CannotBe, const Status& av_Failure);
  /// Keeps how far a unit's clock has jumped to a contact of the round that runs.
  void TakeJump(std::int64_t al_Position, ContactRecord av_Contact);
  /// Seconds UTC less monotonic ones.
  [[nodiscard]] std::int64_t ClockBase() const;
  /// Takes the clock steps of rounds; what is known of units' clocks is read anew.
  void TakeSteps(const std::vector<RoundRecord>& av_Rounds);
  /// Adds all contacts with the unit of a key, those that wait behind those of the file; false when it cannot be read.
  bool ReadContacts(std::int64_t al_Key, std::vector<ContactRecord>& av_Contacts);
  void DropOldest();
  [[nodiscard]] bool TryAgainNow() const;

  Parts p_;
  std::string file_;
  UnitCatalogue units_;
  UnitMemories memory_;
  std::map<std::pair<std::int64_t, Target>, DeliveryRecord> deliveries_;  ///< by key and target
  RoundRecord round_;                                                     ///< that runs
  ClockSteps clock_steps_;
  std::int64_t last_round_ = 0;  ///< key
  bool keys_are_known_ = false;  ///< the file was open once: keys are its own
  HistoryContents waiting_;      ///< to be written
  std::string problem_;
  bool reported_ = false;      ///< a failure, in this round
  bool dropped_ = false;       ///< records were lost, which was told
  std::int64_t next_try_ = 0;  ///< monotonic milliseconds: not before, behind a failure
  Moment forgotten_;           ///< when something was forgotten last
  BelievedTime believed_;
};

}  // namespace corvane
