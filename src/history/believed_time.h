#pragma once

#include <cstdint>
#include <vector>

#include "base/dates.h"
#include "platform/history_records.h"

namespace corvane {

/// How late it is at most, whatever this computer's clock says: one that is ahead for a while must not make the history
/// old.
///
/// It is believed as far as a month ahead of the earliest of some last rounds and three days a day from then on, and
/// never further than a month ahead of what the units' last readings say.
class BelievedTime {
 public:
  static constexpr std::int64_t kRounds = 8;

  /// Takes the last rounds of the history, in order; the first ones that it gets count.
  void TakeRounds(const std::vector<RoundRecord>& av_Rounds);
  /// To be called once a day.
  [[nodiscard]] Moment Today(Moment av_Now, std::vector<DateTime> av_LastReadings);

 private:
  Moment believed_;  ///< none: nothing is known of it
};

}  // namespace corvane
