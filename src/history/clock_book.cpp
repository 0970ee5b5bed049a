#include "history/clock_book.h"

#include <algorithm>
#include <cstdlib>

#include "state/link_state.h"

namespace corvane {
namespace {

constexpr std::int64_t kMinute = 60;
/// A header tells whole minutes: over less time that says little of how a clock goes.
constexpr std::int64_t kShortestGoing = 14 * kSecondsPerDay;
constexpr std::int64_t kMostGained = 20;    ///< seconds that a clock gains or loses a day by itself at most
constexpr std::int64_t kMostBetween = 600;  ///< between two contacts; more is told as a jump whatever the time

}  // namespace

std::optional<std::int64_t> ClockBook::JumpTo(const ContactRecord& av_Contact, const OwnClock& av_Here) const {
  if (!last_ || !av_Contact.clock_offset || round_ == av_Contact.round) return std::nullopt;
  const std::int64_t set_back = av_Here.SetBackSince(round_) - av_Here.SetBackSince(av_Contact.round);
  return av_Contact.at.ahead + *av_Contact.clock_offset - last_->ahead - set_back;
}

void ClockBook::Take(const ContactRecord& av_Contact, const OwnClock& av_Here, bool ab_Own) {
  const bool answered = av_Contact.outcome == Outcome::Answered;
  if (!answered && !av_Contact.clock_offset && !av_Contact.period_minutes) return;
  BringTo(av_Contact.round, av_Here);
  const DateTime here = av_Contact.at.Local();
  const std::int64_t expected = last_ ? AheadAt(av_Contact.at.utc, *first_, *last_) - av_Contact.at.ahead : 0;
  const std::int64_t offset = av_Contact.clock_offset.value_or(expected);
  const Look now{here + offset, av_Contact.at.ahead + offset, av_Contact.at.utc};
  if (av_Contact.period_minutes) TakePeriod(av_Contact, now);
  if (!answered && !av_Contact.clock_offset) return;
  if (ab_Own) hints_.last_contact = now.unit_time;
  if (answered && av_Contact.command == kSetDate) {
    TakeSetDate(now);
  } else if (av_Contact.clock_offset) {
    TakeLook(now);
  }
}

void ClockBook::TakePeriod(const ContactRecord& av_Contact, const Look& av_Now) {
  if (!av_Contact.clock_offset) commands_.push_back({hints_.periods.size(), av_Now.utc});
  hints_.periods.push_back({av_Now.unit_time, *av_Contact.period_minutes * kMinute,
                            av_Contact.outcome == Outcome::Answered, av_Contact.clock_offset.has_value()});
}

void ClockBook::PlaceCommands(const Look& av_Now) {
  const Look first = first_.value_or(av_Now);
  std::erase_if(commands_, [&](const Command& command) {
    PeriodChange& change = hints_.periods[command.period];
    const bool behind = last_ && command.utc >= last_->utc;
    change.at = Moment{command.utc, 0}.Local() + AheadAt(command.utc, behind ? *last_ : first, av_Now);
    change.placed = behind;
    return behind || av_Now.utc - first.utc >= kShortestGoing;
  });
}

std::int64_t ClockBook::AheadAt(std::int64_t al_Utc, const Look& av_First, const Look& av_Last) {
  const std::int64_t going = av_Last.utc - av_First.utc;
  const bool between = al_Utc > av_First.utc && al_Utc <= av_Last.utc;
  if (!between && going < kShortestGoing) return al_Utc > av_Last.utc ? av_Last.ahead : av_First.ahead;
  return av_Last.ahead + (av_Last.ahead - av_First.ahead) * (al_Utc - av_Last.utc) / going;
}

void ClockBook::BringTo(std::int64_t al_Round, const OwnClock& av_Here) {
  const std::int64_t set_back = av_Here.SetBackSince(round_) - av_Here.SetBackSince(al_Round);
  round_ = al_Round;
  for (Command& command : commands_) command.utc -= set_back;
  for (auto* const look : {&first_, &last_}) {
    if (!*look) continue;
    (*look)->ahead += set_back;
    (*look)->utc -= set_back;
  }
}

void ClockBook::TakeSetDate(const Look& av_Now) {
  ClockStep step{av_Now.unit_time, av_Now.unit_time, std::nullopt};
  if (last_) {
    step.seconds = av_Now.ahead - last_->ahead;
    step.from = std::min(av_Now.unit_time, av_Now.unit_time - *step.seconds);
    step.to = std::max(av_Now.unit_time, av_Now.unit_time - *step.seconds);
  }
  hints_.steps.push_back(step);
  commands_.clear();
  first_ = last_ = av_Now;
}

void ClockBook::TakeLook(const Look& av_Now) {
  const std::int64_t jump = last_ ? av_Now.ahead - last_->ahead : 0;
  // Of a long silence it may as well be what the clock has gained, and tells how it goes.
  const std::int64_t gained = last_ ? kMostGained * (av_Now.utc - last_->utc) / kSecondsPerDay : 0;
  if (std::abs(jump) > kClockJump) {
    hints_.steps.push_back(
        {std::min(last_->unit_time, av_Now.unit_time), std::max(last_->unit_time, av_Now.unit_time), jump});
  }
  if (std::abs(jump) > kClockJump + std::min(gained, kMostBetween)) {
    commands_.clear();
    first_.reset();
  } else {
    PlaceCommands(av_Now);
  }
  if (!first_) first_ = av_Now;
  last_ = av_Now;
}

}  // namespace corvane
