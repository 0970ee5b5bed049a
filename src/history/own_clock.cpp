#include "history/own_clock.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <iterator>
#include <utility>

namespace corvane {
namespace {

constexpr std::ptrdiff_t kFewestThatAgree = 2;

bool IsJump(std::int64_t al_Seconds) {
  return std::abs(al_Seconds) > kClockJump;
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

std::int64_t StepOf(std::vector<std::int64_t> av_Jumps, std::optional<std::int64_t> av_Passed, bool ab_Set) {
  if (av_Passed && !IsJump(*av_Passed)) return 0;
  if (ab_Set) return av_Passed && MostAreNearer(av_Jumps, *av_Passed) ? -*av_Passed : 0;
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
  if (av_Passed && std::abs(*av_Passed + step) <= kClockJump) return step;
  return most >= kFewestThatAgree && 2 * most > std::ssize(av_Jumps) ? step : 0;
}

bool ClockSteps::Take(const std::vector<RoundRecord>& av_Rounds) {
  const std::size_t known = rounds_.size();
  std::copy_if(av_Rounds.begin(), av_Rounds.end(), std::back_inserter(rounds_),
               [](const RoundRecord& round) { return round.clock_step != 0; });
  if (rounds_.size() == known) return false;
  clock_ = OwnClock(rounds_);
  return true;
}

std::int64_t ClockSteps::EndRound() {
  if (jumps_.empty()) return 0;
  const auto before = std::exchange(base_, round_base_);
  std::vector<std::int64_t> jumps;
  for (const auto& [unit, jump] : jumps_) jumps.push_back(jump);
  return StepOf(std::move(jumps), before ? std::optional(round_base_ - *before) : std::nullopt, set_);
}

}  // namespace corvane
