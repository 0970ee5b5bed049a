#include "data/gap_finder.h"

#include <algorithm>
#include <limits>

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
  const std::int64_t before = PeriodBefore(al_At);
  const std::int64_t behind = PeriodBehind(al_At);
  Verdict verdict = JudgeBy(At(al_At), before, behind);
  // What a clock has jumped moves no reading to another stretch as long as it is small beside both periods.
  const std::int64_t shorter = behind > 0 ? std::min(verdict.period, behind) : verdict.period;
  const bool as_long = verdict.jumped <= std::max(kInexact, shorter / 2) ||
                       verdict.missing == Missing(At(al_At).length(), std::max<std::int64_t>(verdict.period, 1));
  const bool told = At(al_At).told > 0;
  // A command without an answer has reached the unit when it measures by it behind the gap and has not before.
  if (verdict.kind == Verdict::Gap && as_long && (told || behind != verdict.period))
    CountByStretches(verdict, told, before, behind);
  return verdict;
}

void GapFinder::CountByStretches(Verdict& av_Gap, bool ab_Certain, std::int64_t al_Before,
                                 std::int64_t al_Behind) const {
  const auto counts = [&](const PeriodChange& change) {
    const bool within = change.at >= av_Gap.from && change.at < av_Gap.to && change.seconds > 0;
    return within && change.certain == ab_Certain && (ab_Certain || change.seconds == al_Behind);
  };
  if (std::none_of(hints_.periods.begin(), hints_.periods.end(), counts)) return;
  DateTime begin = av_Gap.from;
  av_Gap.missing = 0;
  av_Gap.period_behind = av_Gap.period;
  for (const PeriodChange& change : hints_.periods) {
    if (!counts(change) || change.at < begin) continue;
    if (begin != av_Gap.from) {
      // Behind a command no reading shows where the next one was: units log at whole multiples of their period.
      av_Gap.missing += MultiplesBetween(begin, change.at, av_Gap.period_behind);
    } else if (al_Before > 0) {
      av_Gap.missing += (change.at - begin) / al_Before;
    }
    begin = change.at;
    av_Gap.period_behind = change.seconds;
    if (!ab_Certain) break;
  }
  av_Gap.behind = (av_Gap.to - begin - 1) / av_Gap.period_behind;
  av_Gap.missing += av_Gap.behind;
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
  for (const ClockStep& step : hints_.steps) {
    if (!MayHold(av_Distance.from, av_Distance.to, step)) continue;
    if (!step.seconds) return verdict;
    seconds -= std::max<std::int64_t>(*step.seconds, 0);
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
  return JudgeBy(distance, Period(), distance.told);
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
