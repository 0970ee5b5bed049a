#include "data/gap_finder.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace corvane {
namespace {

/// Counts how often each of a few numbers comes.
class Tally {
 public:
  void Add(std::int64_t al_Value) {
    std::size_t i = 0;
    while (i < size_ && values_[i] != al_Value) ++i;
    if (i == size_) {
      values_[size_++] = al_Value;
      counts_[i] = 0;
    }
    ++counts_[i];
  }
  /// The commonest; of several the one that came first, but where none came twice the shortest, since readings that are
  /// missing make distances longer; 0 when none came.
  [[nodiscard]] std::int64_t Commonest() const {
    if (size_ == 0) return 0;
    const auto* const most = std::max_element(counts_.data(), counts_.data() + size_);
    if (*most == 1) return *std::min_element(values_.data(), values_.data() + size_);
    return values_[static_cast<std::size_t>(most - counts_.data())];
  }

 private:
  std::array<std::int64_t, GapFinder::kWindow> values_;
  std::array<int, GapFinder::kWindow> counts_;
  std::size_t size_ = 0;
};

constexpr std::int64_t kInexact = 600;  ///< seconds that a jump may be known wrongly: a header tells whole minutes

/// Above one and a half times that period.
bool IsLong(std::int64_t al_Seconds, std::int64_t al_Period) {
  return 2 * al_Seconds > 3 * al_Period;
}

/// round(seconds / period) - 1, halves away from zero.
std::int64_t Missing(std::int64_t al_Seconds, std::int64_t al_Period) {
  return (2 * al_Seconds + al_Period) / (2 * al_Period) - 1;
}

/// Whether a reading of that period is due then; of one that divides no day nobody can tell.
bool IsMultiple(DateTime av_When, std::int64_t al_Period) {
  return al_Period <= 0 || kSecondsPerDay % al_Period != 0 || av_When.seconds() % al_Period == 0;
}

/// How many whole multiples of a period since midnight lie behind `av_From` and before `av_To`.
std::int64_t MultiplesBetween(DateTime av_From, DateTime av_To, std::int64_t al_Period) {
  return std::max<std::int64_t>((av_To.seconds() - 1) / al_Period - av_From.seconds() / al_Period, 0);
}

}  // namespace

GapFinder::GapFinder(const ScanHints& av_Hints) : hints_(av_Hints) {}

bool GapFinder::MayHold(DateTime av_From, DateTime av_To, const ClockStep& av_Step) {
  return av_Step.from <= av_To && av_Step.to >= av_From && av_Step.seconds.value_or(0) <= av_To - av_From + kInexact;
}

bool GapFinder::Tell(Distance& av_Distance) const {
  DateTime newest;
  av_Distance.told = 0;
  for (const PeriodChange& change : hints_.periods) {
    if (!change.certain || change.at < newest) continue;
    if (change.at < av_Distance.from || change.at >= av_Distance.to) continue;
    // Units log at whole multiples of their period: without a sure place it may have been set in another distance.
    if (!change.placed && !IsMultiple(av_Distance.to, change.seconds)) continue;
    newest = change.at;
    av_Distance.told = std::max<std::int64_t>(change.seconds, 0);
  }
  return av_Distance.told > 0;
}

bool GapFinder::Settle(std::size_t al_At) {
  if (IsShort(al_At)) return false;
  settled_ = Judge(al_At);
  return settled_.kind != Verdict::Nothing;
}

/// No distance can be a gap that is short beside the shortest in both windows: the periods are among them.
bool GapFinder::IsShort(std::size_t al_At) const {
  std::int64_t least = std::numeric_limits<std::int64_t>::max();
  const std::size_t begin = WindowBegin(al_At);
  for (std::size_t i = begin; i < std::min(end_, al_At + kWindow + 1); ++i) {
    least = std::min(least, At(i).length());
    if (At(i).told > 0) least = std::min(least, At(i).told);
  }
  return !IsLong(At(al_At).length(), least);
}

std::int64_t GapFinder::PeriodBefore(std::size_t al_At) const {
  Tally tally;
  std::int64_t told = 0;
  const std::size_t begin = WindowBegin(al_At);
  for (std::size_t i = al_At; i > begin; --i) {
    told = At(i - 1).told;
    if (told > 0) break;
    tally.Add(At(i - 1).length());
  }
  const std::int64_t commonest = tally.Commonest();
  return commonest > 0 ? commonest : told;
}

std::int64_t GapFinder::PeriodBehind(std::size_t al_At) const {
  if (At(al_At).told > 0) return At(al_At).told;
  Tally tally;
  for (std::size_t i = al_At + 1; i < std::min(end_, al_At + kWindow + 1) && At(i).told == 0; ++i) {
    tally.Add(At(i).length());
  }
  return tally.Commonest();
}

Verdict GapFinder::Judge(std::size_t al_At) const {
  const Distance& distance = At(al_At);
  const Periods periods{PeriodBefore(al_At), PeriodBehind(al_At), distance.told > 0};
  Verdict verdict = JudgeBy(distance, periods.before, periods.behind);
  if (verdict.kind == Verdict::Nothing && IsLongForOne(distance, periods)) {
    Verdict within = verdict;
    within.kind = Verdict::Gap;
    CountByStretches(within, periods, kInexact);
    return within.missing > 0 ? within : verdict;
  }
  // What a clock has jumped moves no reading to another stretch as long as it is small beside both periods.
  const std::int64_t shorter = periods.behind > 0 ? std::min(verdict.period, periods.behind) : verdict.period;
  const bool as_long = verdict.jumped <= std::max(kInexact, shorter / 2) ||
                       verdict.missing == Missing(distance.length(), std::max<std::int64_t>(verdict.period, 1));
  if (verdict.kind == Verdict::Gap && as_long) CountByStretches(verdict, periods);
  return verdict;
}

bool GapFinder::IsLongForOne(const Distance& av_Distance, const Periods& av_Periods) const {
  const std::int64_t shorter = std::min(av_Periods.before, av_Periods.behind);
  if (shorter <= 0 || !IsLong(av_Distance.length(), shorter)) return false;
  const auto may_hold = [&](const ClockStep& step) { return MayHold(av_Distance.from, av_Distance.to, step); };
  const auto may_be_elsewhere = [&](const PeriodChange& change) {
    return !change.placed && change.at >= av_Distance.from && change.at < av_Distance.to;
  };
  return std::ranges::none_of(hints_.steps, may_hold) && std::ranges::none_of(hints_.periods, may_be_elsewhere);
}

bool GapFinder::SetsPeriod(const PeriodChange& av_Change, const Verdict& av_Gap, const Periods& av_Periods) {
  if (av_Change.at < av_Gap.from || av_Change.at >= av_Gap.to || av_Change.seconds <= 0) return false;
  if (av_Periods.told) return av_Change.certain;
  // A command without an answer has reached the unit when it measures by it behind the gap and has not before; so it
  // shows, too, that a command whose place is not known was here.
  const bool known = av_Change.certain && av_Change.placed;
  return !known && av_Change.seconds == av_Periods.behind && av_Periods.behind != av_Gap.period;
}

void GapFinder::CountByStretches(Verdict& av_Gap, const Periods& av_Periods, std::int64_t al_Inexact) const {
  std::vector<Stretch> found;
  DateTime begin;
  for (const PeriodChange& change : hints_.periods) {
    if (!SetsPeriod(change, av_Gap, av_Periods) || change.at < begin) continue;
    if (found.empty()) {
      const std::int64_t until = std::max<std::int64_t>(change.at - av_Gap.from - al_Inexact, 0);
      found.push_back({av_Gap.from, av_Periods.before, av_Periods.before > 0 ? until / av_Periods.before : 0});
    } else {
      // Behind a command no reading shows where the next one was: units log at whole multiples of their period.
      Stretch& between = found.back();
      between.count = MultiplesBetween(begin, change.at, between.period);
      between.behind = begin - begin.seconds() % between.period;
    }
    begin = change.at;
    found.push_back({begin, change.seconds, 0});
    if (!av_Periods.told) break;
  }
  if (found.empty()) return;
  Stretch& last = found.back();
  last.count = std::max<std::int64_t>(av_Gap.to - begin - al_Inexact - 1, 0) / last.period;
  last.behind = av_Gap.to - (last.count + 1) * last.period;
  av_Gap.missing = 0;
  for (const Stretch& stretch : found) av_Gap.missing += stretch.count;
  av_Gap.stretches = std::move(found);
  if (av_Gap.missing == 0) av_Gap.kind = Verdict::Nothing;
}

Verdict GapFinder::JudgeBy(const Distance& av_Distance, std::int64_t al_Before, std::int64_t al_After) const {
  Verdict verdict;
  verdict.from = av_Distance.from;
  verdict.to = av_Distance.to;
  verdict.period = al_Before > 0 ? al_Before : al_After;
  const std::int64_t longest = std::max(al_Before, al_After);
  std::int64_t seconds = av_Distance.length();
  if (longest == 0 || !IsLong(seconds, longest)) return verdict;
  verdict.kind = Verdict::Clock;
  if (seconds > kLongestGap) return verdict;
  std::int64_t unknown = 0;
  for (const ClockStep& step : hints_.steps) {
    if (!MayHold(av_Distance.from, av_Distance.to, step)) continue;
    if (!step.seconds) unknown = std::max(unknown, std::min(step.to, av_Distance.to) - av_Distance.from);
    seconds -= std::max<std::int64_t>(step.seconds.value_or(0), 0);
  }
  if (unknown > 0) {
    // The clock was set forward by no more than what lies before that: what lies behind it is missing for certain.
    const std::int64_t behind = seconds - unknown;
    if (!IsLong(behind, longest)) return verdict;
    if (unknown > behind) seconds = behind;
  }
  if (!IsLong(seconds, longest)) return verdict;
  verdict.jumped = av_Distance.length() - seconds;
  verdict.kind = Verdict::Gap;
  verdict.missing = Missing(seconds, verdict.period);
  return verdict;
}

std::vector<Verdict> GapFinder::Unsettled() const {
  std::vector<Verdict> found;
  for (std::size_t i = open_; i + kPending < end_; ++i) {
    Verdict verdict = Judge(i);
    if (verdict.kind != Verdict::Nothing) found.push_back(verdict);
  }
  return found;
}

Verdict GapFinder::Behind(DateTime av_When) const {
  Distance distance{last_, av_When, 0};
  if (last_.IsNone() || distance.length() <= 0) return {};
  Tell(distance);
  const Periods periods{Period(), distance.told, distance.told > 0};
  Verdict verdict = JudgeBy(distance, periods.before, periods.behind);
  if (verdict.kind == Verdict::Gap) CountByStretches(verdict, periods);
  return verdict;
}

std::int64_t GapFinder::Period() const {
  return PeriodBefore(end_);
}

DateTime GapFinder::Boundary() const {
  DateTime earliest = last_;
  for (std::size_t i = open_; i < end_; ++i) earliest = std::min(earliest, At(i).from);
  return earliest;
}

std::vector<Distance> GapFinder::Kept(std::size_t& al_Settled) const {
  const std::size_t begin = WindowBegin(open_);
  al_Settled = open_ - begin;
  std::vector<Distance> kept;
  for (std::size_t i = begin; i < end_; ++i) kept.push_back(At(i));
  return kept;
}

void GapFinder::Restore(const std::vector<Distance>& av_Kept, std::size_t al_Settled, DateTime av_Last) {
  for (const Distance& distance : av_Kept) {
    ring_[end_ % kRing] = distance;
    Tell(ring_[end_++ % kRing]);
  }
  open_ = al_Settled;
  last_ = av_Last;
}

}  // namespace corvane
