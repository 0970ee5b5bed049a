#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <vector>

#include "base/dates.h"
#include "platform/history_records.h"

namespace corvane {

/// When this computer's clock was set, or was wrong for a while, as the clocks of the units tell: they do not jump
/// together by themselves.
///
/// A step is by how much the units' clocks jumped forward against this computer's, so far as this computer's was set
/// back. It belongs to the first round behind it.
class OwnClock {
 public:
  OwnClock() = default;
  /// The steps that rounds know of, whatever their order.
  explicit OwnClock(std::span<const RoundRecord> av_Rounds);

  /// Seconds by which the units have jumped against this computer in the rounds later than `al_Round`.
  [[nodiscard]] std::int64_t SetBackSince(std::int64_t al_Round) const;
  /// The clock's offset at a contact, as this computer's present clock sees it; none when the contact told none.
  [[nodiscard]] std::optional<std::int64_t> OffsetAt(const ContactRecord& av_Contact) const;
  /// When the contact was, by this computer's present clock.
  [[nodiscard]] Moment TimeOf(const ContactRecord& av_Contact) const;

 private:
  struct Step {
    std::int64_t round = 0;
    std::int64_t set_back = 0;  ///< in this round and all later ones
  };
  std::vector<Step> steps_;  ///< by round
};

/// Seconds that a clock may have gone wrong between two contacts by itself, a header telling no seconds; more is a
/// jump.
inline constexpr std::int64_t kClockJump = 120;

/// The step of a round from the jumps of the units that told their clocks in it; 0 when it was not this computer's.
///
/// `av_Passed`: by how much this computer's clock has gone forward more than time has passed, where that is known.
/// Where it is, one unit that has jumped back by as much will do; else more than half of at least two have to agree.
[[nodiscard]] std::int64_t StepOf(std::vector<std::int64_t> av_Jumps, std::optional<std::int64_t> av_Passed);

/// Finds the steps of this computer's clock, round by round, and keeps those that are known.
class ClockSteps {
 public:
  /// Takes the steps of rounds; true when there were any.
  bool Take(const std::vector<RoundRecord>& av_Rounds);
  void Forget() { *this = {}; }
  [[nodiscard]] const OwnClock& clock() const { return clock_; }

  void BeginRound() { jumps_.clear(); }
  /// A unit's clock has jumped by so many seconds to its first contact of this round.
  void TakeJump(std::int64_t al_Unit, std::int64_t al_Seconds) { jumps_.try_emplace(al_Unit, al_Seconds); }
  /// The step of the round that ends; `al_Base`: seconds UTC less monotonic ones.
  [[nodiscard]] std::int64_t EndRound(std::int64_t al_Base);

 private:
  std::map<std::int64_t, std::int64_t> jumps_;  ///< of this round, by unit
  std::vector<RoundRecord> rounds_;             ///< of steps
  OwnClock clock_;                              ///< that these make
  std::optional<std::int64_t> base_;            ///< when units' clocks were heard last
};

}  // namespace corvane
