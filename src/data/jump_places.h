#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "data/completeness.h"
#include "data/gap_finder.h"

namespace corvane {

/// Where a unit's clock has jumped forward, when readings are missing in several places between the two contacts that
/// showed the jump: it lies in one of them only.
class JumpPlaces {
 public:
  explicit JumpPlaces(const ScanHints& av_Hints) : hints_(av_Hints), places_(av_Hints.steps.size()) {}
  /// Takes a gap, or a distance that a jump explains.
  void Take(const Verdict& av_Verdict);
  /// The hints with each such jump in the one distance that it explains whole, of several in the one that it fits best;
  /// none where there is nothing to choose.
  [[nodiscard]] std::optional<ScanHints> Located() const;
  /// Whether a jump that one of these gaps may hold may also lie behind a reading at `av_When`.
  [[nodiscard]] static bool AreOpen(const ScanHints& av_Hints, const std::vector<GapRecord>& av_Gaps, DateTime av_When);

 private:
  struct Place {
    std::int64_t count = 0;           ///< distances that the jump may lie in
    std::optional<std::int64_t> fit;  ///< seconds by which the best one is longer or shorter than a period and the jump
    DateTime middle;                  ///< of the best one
  };
  const ScanHints& hints_;
  std::vector<Place> places_;  ///< by step
};

}  // namespace corvane
