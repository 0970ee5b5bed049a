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

/// By how much this computer's clock has gone forward more than time has passed.
struct ClockMove {
  std::int64_t seconds = 0;
  bool since_heard = false;  ///< since units told their clocks last; else only since the program's start
};

/// The step of a round from the jumps of the units that told their clocks in it; 0 when it was not this computer's.
///
/// Where this computer's clock is known to have moved, one unit that has jumped back by as much will do; else more than
/// half of at least two have to agree.
/// `ab_Set`: the units were set by command, and what they jumped is not known for itself. Then this computer's clock
/// has moved if most of them were the nearer to it for that.
[[nodiscard]] std::int64_t StepOf(std::vector<std::int64_t> av_Jumps, ClockMove av_Move, bool ab_Set = false);

/// Finds the steps of this computer's clock, round by round, and keeps those that are known.
class ClockSteps {
 public:
  /// Takes the steps of rounds, what was said of each last; true when it changes anything. That of the round that runs,
  /// by its key, is left out: it may change with each unit.
  bool Take(const std::vector<RoundRecord>& av_Rounds, std::int64_t al_Running);
  void Forget() {
    const auto start = base_;
    *this = {};
    base_ = start;
  }
  [[nodiscard]] const OwnClock& clock() const { return clock_; }

  /// The program has started. `al_Base`, here and below: seconds UTC less monotonic ones.
  void Start(std::int64_t al_Base) { base_ = al_Base; }
  void BeginRound(std::int64_t al_Base) {
    jumps_.clear();
    set_ = false;
    round_base_ = al_Base;
  }
  /// Whether this computer's clock has not been set since the round's begin; behind that no unit's tells a jump.
  [[nodiscard]] bool IsSteady(std::int64_t al_Base) const {
    return al_Base - round_base_ <= kClockJump && round_base_ - al_Base <= kClockJump;
  }
  /// A unit's clock has jumped by so many seconds to its first contact of this round, in which it may have been set.
  void TakeJump(std::int64_t al_Unit, std::int64_t al_Seconds, bool ab_Set) {
    jumps_.try_emplace(al_Unit, al_Seconds);
    set_ = set_ || ab_Set;
  }
  /// The step of the round, by what units have told in it: a round that is killed has no end.
  [[nodiscard]] std::int64_t StepSoFar() const;
  /// The step of the round that ends.
  std::int64_t EndRound();

 private:
  std::map<std::int64_t, std::int64_t> jumps_;  ///< of this round, by unit
  bool set_ = false;                            ///< units were set in it
  std::vector<RoundRecord> rounds_;             ///< of steps
  OwnClock clock_;                              ///< that these make
  std::int64_t round_base_ = 0;
  std::int64_t base_ = 0;  ///< when units' clocks were heard last, or the program was started
  bool heard_ = false;     ///< units' clocks, since then
};

}  // namespace corvane
