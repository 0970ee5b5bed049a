#pragma once

#include <cstdint>
#include <optional>

#include "data/completeness.h"
#include "platform/history_records.h"

namespace corvane {

/// What the contacts with one unit tell of its clock and its log period, for the search for gaps.
class ClockBook {
 public:
  /// Takes one more contact; they come in the order of time.
  ///
  /// Between two that told the unit's clock it has been set when it jumped by more than two minutes against UTC: summer
  /// time here moves no unit's clock.
  void Take(const ContactRecord& av_Contact);
  [[nodiscard]] const ScanHints& hints() const { return hints_; }

 private:
  /// The unit's clock at a contact, and how far it was ahead of UTC.
  struct Look {
    DateTime unit_time;
    std::int64_t ahead = 0;
  };
  void TakeSetDate(const Look& av_Now);
  void TakeLook(const Look& av_Now);

  ScanHints hints_;
  std::optional<Look> last_;
};

}  // namespace corvane
