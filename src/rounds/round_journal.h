#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include "data/raw_conversion.h"
#include "form/form.h"
#include "history/file_scans.h"
#include "history/history.h"
#include "platform/event_loop.h"
#include "platform/history_records.h"
#include "rounds/file_results.h"
#include "rounds/network_watch.h"
#include "rounds/unit_attempts.h"
#include "state/file_names.h"
#include "state/link_state.h"
#include "state/records.h"
#include "state/run_flags.h"

namespace corvane {

/// Whoever watches a round while it runs. Calls come in the middle of it: they have to return at once.
struct RoundFollower {
  std::function<void(std::int64_t al_Position)> on_asking;   ///< this unit has its turn; 0: none has
  std::function<void(std::int64_t al_Position)> on_contact;  ///< what became of it can be read in the history
  std::function<void()> on_round_end;                        ///< all of it can
};

/// Tells the history what happens in a round: who was asked, what came, where the files went.
class RoundJournal {
 public:
  /// What the journal looks at and tells; all must outlive this object.
  struct Parts {
    const Form& form;
    const Registry& registry;
    const LinkState& link;
    const DownloadState& download;
    const RunFlags& flags;
    const FileNames& names;
    History& history;
    FileScans& scans;
    NetworkWatch& watch;
    EventLoop& loop;
  };
  explicit RoundJournal(const Parts& av_Parts) : p_(av_Parts) {}

  /// Runs `av_Round` as a round of the history; inside another one it is part of that. Behind it the raw files are
  /// scanned and whoever waits for the status gets it. **Yields.**
  void Run(RoundKind ae_Kind, bool ab_All, const std::function<void()>& av_Round);

  /// Adds what a round that is no run over units has come to: asked, answered, stored, problems.
  void Count(const RoundRecord& av_Counts);
  /// The marked ones of these units are to be asked.
  void BeginContacts(UnitSpan av_Units, std::int16_t ai_Command);
  /// Unit `al_Index` (from 1) has its turn.
  void BeginTurn(std::int64_t al_Index) const;
  /// A try with unit `al_Index` (from 1) has ended.
  void NoteTry(std::int64_t al_Index, TryEnd ae_End);
  /// No more tries with that unit for now.
  void EndTurn(std::int64_t al_Index);
  /// No more units will be asked.
  void EndContacts();
  /// A step with a unit's file on the way to a server, from there or to the backup has ended, within a round or not.
  void NoteTransfer(const TransferResult& av_Result);
  /// A conversion of a raw file has ended; of a file that is no unit's nothing is noted.
  void NoteConversion(const ConversionResult& av_Result, const std::string& as_RawFile);

  RoundFollower follower;  ///< set by a front end

 private:
  /// One unit in a run over units.
  struct Turn {
    ContactRecord contact;
    std::int64_t rejected = 0;  ///< lines dropped in all tries
    bool sent = false;          ///< the command has left
    bool heard = false;         ///< something has come back
    bool noted = false;
    std::optional<std::int64_t> clock_ahead;  ///< of UTC, seconds that the unit's clock was
  };
  void End(const std::string& as_Error);
  [[nodiscard]] std::string Ending(const std::string& as_Error) const;
  [[nodiscard]] std::string WhyNotAsked() const;
  [[nodiscard]] bool TransferHasCancelled() const;
  void TakeOutcome(Turn& av_Turn, TryEnd ae_End, const std::string& as_Problem) const;
  void TakeDownload(Turn& av_Turn, const Unit& av_Unit) const;
  void TakeHeader(Turn& av_Turn) const;
  void TakeAnswer(Turn& av_Turn) const;
  /// The last reading and, where some came, its battery and ambient value.
  void TakeLastReading(Turn& av_Turn, std::int64_t al_Index);
  void NoteTurn(std::int64_t al_Index);
  /// The last reading in the unit's raw file.
  [[nodiscard]] DateTime LastReadingOf(std::int64_t al_Index);

  Parts p_;
  std::int16_t command_ = kIdle;
  std::map<std::int64_t, Turn> turns_;              ///< by position
  std::map<std::int64_t, DateTime> last_readings_;  ///< by position, as far as they are known in this round
  RoundRecord counts_;
  std::int64_t planned_ = 0;          ///< units that were to be asked
  std::string ending_;                ///< why units were left out
  std::int64_t problems_before_ = 0;  ///< of the operation, when the round began
  bool not_sent_ = false;             ///< a file could not be sent
  bool waits_for_units_ = false;      ///< a command: its round begins with the first unit
  bool all_ = false;                  ///< it is for all units
};

}  // namespace corvane
