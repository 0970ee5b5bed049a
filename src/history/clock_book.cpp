#include "history/clock_book.h"

#include <algorithm>
#include <cstdlib>

#include "state/link_state.h"

namespace corvane {
namespace {

constexpr std::int64_t kMinute = 60;

}  // namespace

std::optional<std::int64_t> ClockBook::JumpTo(const ContactRecord& av_Contact, const OwnClock& av_Here) const {
  if (!last_ || !av_Contact.clock_offset || last_->round == av_Contact.round) return std::nullopt;
  const std::int64_t set_back = av_Here.SetBackSince(last_->round) - av_Here.SetBackSince(av_Contact.round);
  return av_Contact.at.ahead + *av_Contact.clock_offset - last_->ahead - set_back;
}

void ClockBook::Take(const ContactRecord& av_Contact, const OwnClock& av_Here, bool ab_Own) {
  const bool answered = av_Contact.outcome == Outcome::Answered;
  if (!answered && !av_Contact.clock_offset && !av_Contact.period_minutes) return;
  if (last_) {
    last_->ahead += av_Here.SetBackSince(last_->round) - av_Here.SetBackSince(av_Contact.round);
    last_->round = av_Contact.round;
  }
  const DateTime here = av_Contact.at.Local();
  const std::int64_t offset = av_Contact.clock_offset.value_or(last_ ? last_->ahead - av_Contact.at.ahead : 0);
  const Look now{here + offset, av_Contact.at.ahead + offset, av_Contact.round};
  if (av_Contact.period_minutes)
    hints_.periods.push_back({now.unit_time, *av_Contact.period_minutes * kMinute, answered});
  if (!answered && !av_Contact.clock_offset) return;
  if (ab_Own) hints_.last_contact = now.unit_time;
  if (answered && av_Contact.command == kSetDate) {
    TakeSetDate(now);
  } else if (av_Contact.clock_offset) {
    TakeLook(now);
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
  last_ = av_Now;
}

void ClockBook::TakeLook(const Look& av_Now) {
  if (last_ && std::abs(av_Now.ahead - last_->ahead) > kClockJump) {
    hints_.steps.push_back({std::min(last_->unit_time, av_Now.unit_time), std::max(last_->unit_time, av_Now.unit_time),
                            av_Now.ahead - last_->ahead});
  }
  last_ = av_Now;
}

}  // namespace corvane
