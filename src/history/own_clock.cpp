#include "history/own_clock.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <utility>

namespace corvane {
namespace {

constexpr std::ptrdiff_t kFewestThatAgree = 2;

bool IsJump(std::int64_t al_Seconds) {
  return std::abs(al_Seconds) > kClockJump;
}

/// Whether this computer's clock has gone forward and a unit went back by as much.
bool Agree(const std::vector<std::int64_t>& av_Jumps, std::int64_t al_Forward) {
  return IsJump(al_Forward) &&
         std::ranges::any_of(av_Jumps, [al_Forward](std::int64_t jump) { return !IsJump(al_Forward + jump); });
}

/// Whether most units had to be set by less if this computer's clock has been set by `al_Passed` before.
bool MostAreNearer(const std::vector<std::int64_t>& av_Jumps, std::int64_t al_Passed) {
  const auto nearer = std::count_if(av_Jumps.begin(), av_Jumps.end(),
                                    [&](std::int64_t jump) { return std::abs(jump + al_Passed) < std::abs(jump); });
  return 2 * nearer > std::ssize(av_Jumps);
}

}  // namespace

OwnClock::OwnClock(std::span<const RoundRecord> av_Rounds) {
  for (const RoundRecord& round : av_Rounds) {
    if (round.clock_step != 0) steps_.push_back({round.key, round.clock_step});
  }
  std::sort(steps_.begin(), steps_.end(), [](const Step& one, const Step& other) { return one.round < other.round; });
  for (std::size_t i = steps_.size(); i-- > 1;) steps_[i - 1].set_back += steps_[i].set_back;
}

std::int64_t OwnClock::SetBackSince(std::int64_t al_Round) const {
  const auto next = std::upper_bound(steps_.begin(), steps_.end(), al_Round,
                                     [](std::int64_t round, const Step& step) { return round < step.round; });
  return next == steps_.end() ? 0 : next->set_back;
}

std::optional<std::int64_t> OwnClock::OffsetAt(const ContactRecord& av_Contact) const {
  if (!av_Contact.clock_offset) return std::nullopt;
  return *av_Contact.clock_offset + SetBackSince(av_Contact.round);
}

Moment OwnClock::TimeOf(const ContactRecord& av_Contact) const {
  return {av_Contact.at.utc - SetBackSince(av_Contact.round), av_Contact.at.ahead};
}

std::int64_t StepOf(std::vector<std::int64_t> av_Jumps, ClockMove av_Move, bool ab_Set) {
  if (av_Move.since_heard && !IsJump(av_Move.seconds)) return 0;
  if (ab_Set) return av_Move.since_heard && MostAreNearer(av_Jumps, av_Move.seconds) ? -av_Move.seconds : 0;
  // This clock's own move is known to the second, a unit's jump to the minute.
  if (Agree(av_Jumps, av_Move.seconds)) return -av_Move.seconds;
  std::sort(av_Jumps.begin(), av_Jumps.end());
  std::ptrdiff_t most = 0;
  std::int64_t step = 0;
  for (auto first = av_Jumps.begin(); first != av_Jumps.end(); ++first) {
    const auto end = std::upper_bound(first, av_Jumps.end(), *first + kClockJump);
    if (end - first <= most) continue;
    most = end - first;
    step = *(first + most / 2);
  }
  if (!IsJump(step)) return 0;
  return most >= kFewestThatAgree && 2 * most > std::ssize(av_Jumps) ? step : 0;
}

bool ClockSteps::Take(const std::vector<RoundRecord>& av_Rounds, std::int64_t al_Running) {
  bool changed = false;
  for (const RoundRecord& round : av_Rounds) {
    if (round.key == al_Running) continue;
    // What was said of a round last counts.
    changed |= std::erase_if(rounds_, [&round](const RoundRecord& each) { return each.key == round.key; }) > 0;
    if (round.clock_step == 0) continue;
    rounds_.push_back(round);
    changed = true;
  }
  if (changed) clock_ = OwnClock(rounds_);
  return changed;
}

std::int64_t ClockSteps::StepSoFar() const {
  if (jumps_.empty()) return 0;
  std::vector<std::int64_t> jumps;
  for (const auto& [unit, jump] : jumps_) jumps.push_back(jump);
  const std::int64_t step = StepOf(jumps, {round_base_ - base_, heard_}, set_);
  const std::int64_t off = clock_.SetBackSince(0);
  // What undoes the former steps but for what nobody knows that exactly has set this computer's clock right.
  if (step != 0 && Agree({step}, off)) return -off;
  if (step != 0 || heard_ || set_) return step;
  // Behind a start one unit does, too, that jumps by just what this computer's clock was off.
  return std::ranges::all_of(jumps, IsJump) && Agree(jumps, off) ? -off : 0;
}

std::int64_t ClockSteps::EndRound() {
  const std::int64_t step = StepSoFar();
  if (!jumps_.empty()) {
    base_ = round_base_;
    heard_ = true;
  }
  return step;
}

}  // namespace corvane
