#pragma once

#include <cstdint>
#include <optional>

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
  /// The unit's clock at a contact, and how far it was ahead of UTC, as this computer's clock was in a round.
  struct Look {
    DateTime unit_time;
    std::int64_t ahead = 0;
    std::int64_t round = 0;
  };
  void TakeSetDate(const Look& av_Now);
  void TakeLook(const Look& av_Now);

  ScanHints hints_;
  std::optional<Look> last_;
};

}  // namespace corvane
