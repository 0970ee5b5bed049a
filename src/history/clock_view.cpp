#include "history/clock_view.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "history/trend.h"
#include "state/link_state.h"

namespace corvane {
namespace {

constexpr std::int64_t kNearSeason = 600;
constexpr std::size_t kFewestHeaders = 5;
/// A header tells whole minutes: over so many days that makes four seconds a day.
constexpr double kShortestSpan = 14;

bool SetsClock(const ContactRecord& av_Contact) {
  return av_Contact.command == kSetDate && av_Contact.outcome == Outcome::Answered;
}

/// Seconds that the unit was ahead of UTC, which nobody moves.
std::int64_t AheadOfUtc(const ContactRecord& av_Contact, const OwnClock& av_Here) {
  return *av_Here.OffsetAt(av_Contact) + av_Contact.at.ahead;
}

/// One point a day since the clock was last set, the last of each.
std::vector<TrendPoint> PointsSinceSet(std::span<const ContactRecord> av_Contacts, const OwnClock& av_Here) {
  std::vector<TrendPoint> points;
  for (const ContactRecord& contact : av_Contacts) {
    if (SetsClock(contact)) points.clear();
    if (SetsClock(contact) || !contact.clock_offset) continue;
    const auto offset = static_cast<double>(AheadOfUtc(contact, av_Here));
    if (!points.empty() && std::abs(points.back().value - offset) > kClockJump) points.clear();
    const double day = static_cast<double>(av_Here.TimeOf(contact).utc) / static_cast<double>(kSecondsPerDay);
    if (!points.empty() && std::int64_t(points.back().days) == std::int64_t(day)) points.pop_back();
    points.push_back({day, offset});
  }
  return points;
}

}  // namespace

ClockView ClockOf(const UnitRecord& av_Unit, std::span<const ContactRecord> av_Contacts, Moment av_Now,
                  const OwnClock& av_Here) {
  ClockView view;
  std::int64_t ahead_of_utc = 0;
  for (const ContactRecord& contact : av_Contacts) {
    if (!contact.clock_offset && !SetsClock(contact)) continue;
    // This computer's clock was ahead then, by what is not known: what it was held against is worth nothing now.
    if (av_Here.TimeOf(contact) > av_Now) continue;
    // A clock that was just set shows this computer's time, unless it is known better.
    ahead_of_utc =
        contact.clock_offset ? AheadOfUtc(contact, av_Here) : contact.at.ahead + av_Here.SetBackSince(contact.round);
    view.offset = ahead_of_utc - av_Now.ahead;
  }
  if (!view.offset) return view;
  const auto fits = [ahead_of_utc](Moment when) {
    return !when.IsNone() && std::abs(ahead_of_utc - when.ahead) <= kNearSeason;
  };
  view.of_another_season =
      !fits(av_Now) && (fits(av_Unit.added) || std::any_of(av_Contacts.begin(), av_Contacts.end(),
                                                           [&fits](const auto& each) { return fits(each.at); }));
  const std::vector<TrendPoint> points = PointsSinceSet(av_Contacts, av_Here);
  if (points.empty() || points.back().days - points.front().days < kShortestSpan) return view;
  if (const auto trend = RobustTrend(points, kFewestHeaders)) view.drift = trend->slope;
  return view;
}

}  // namespace corvane
