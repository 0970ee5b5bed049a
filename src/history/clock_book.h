#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "data/completeness.h"
#include "history/own_clock.h"
#include "platform/history_records.h"

namespace corvane {

/// What the contacts with one unit tell of its clock and its log period, for the search for gaps.
class ClockBook {
 public:
  /// Takes one more contact; they come in the order of time.
  ///
  /// Between two that told the unit's clock it has been set when it jumped by more than two minutes against UTC: summer
  /// time here moves no unit's clock, nor does what sets this computer's.
  /// `ab_Own`: it was with this entry of the list, else with another one of the same station.
  void Take(const ContactRecord& av_Contact, const OwnClock& av_Here, bool ab_Own = true);
  /// How far the unit's clock has jumped to a contact that `Take` has not got, by this computer's clock, by itself or
  /// because it was set; none when that is not known, or it was heard in that round before.
  [[nodiscard]] std::optional<std::int64_t> JumpTo(const ContactRecord& av_Contact, const OwnClock& av_Here) const;
  [[nodiscard]] const ScanHints& hints() const { return hints_; }

 private:
  /// The unit's clock at a contact, and how far it was ahead of UTC.
  struct Look {
    DateTime unit_time;
    std::int64_t ahead = 0;
    std::int64_t utc = 0;
  };
  /// A command that has set the log period, whose place in the unit's time may become known better.
  struct Command {
    std::size_t period = 0;  ///< of the hints
    std::int64_t utc = 0;
  };
  void TakePeriod(const ContactRecord& av_Contact, const Look& av_Now);
  void TakeSetDate(const Look& av_Now);
  void TakeLook(const Look& av_Now);
  /// Places the commands anew by how the unit's clock went until it was heard now, not having been set.
  void PlaceCommands(const Look& av_Now);
  /// How far a clock is ahead of UTC at a time, by how it went from one look at it to a later one; by the nearer of the
  /// two where that says little.
  [[nodiscard]] static std::int64_t AheadAt(std::int64_t al_Utc, const Look& av_First, const Look& av_Last);
  /// What was heard before, as this computer's clock is in that round.
  void BringTo(std::int64_t al_Round, const OwnClock& av_Here);

  ScanHints hints_;
  std::int64_t round_ = 0;     ///< whose clock of this computer times are told by
  std::optional<Look> first_;  ///< since the clock was set
  std::optional<Look> last_;
  std::vector<Command> commands_;  ///< that may be placed better
};

}  // namespace corvane
