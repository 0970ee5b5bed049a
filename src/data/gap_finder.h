#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "base/dates.h"
#include "data/completeness.h"

namespace corvane {

/// From one reading to the next one, later by so much.
struct Distance {
  DateTime from;
  DateTime to;
  std::int64_t told = 0;  ///< period in seconds that was set between the two, 0 none

  [[nodiscard]] std::int64_t length() const { return to - from; }
};

/// Readings that are missing, one every period behind a time at which one was or would have been.
struct Stretch {
  DateTime behind;
  std::int64_t period = 0;  ///< seconds
  std::int64_t count = 0;
};

/// What lies between two readings.
struct Verdict {
  enum Kind : std::uint8_t { Nothing, Gap, Clock };
  Kind kind = Nothing;
  DateTime from;
  DateTime to;
  std::int64_t missing = 0;        ///< readings
  std::int64_t period = 0;         ///< seconds between them
  std::int64_t jumped = 0;         ///< seconds of the distance that are the clock's
  std::vector<Stretch> stretches;  ///< of these readings, where a period was set within; else all are one

  [[nodiscard]] std::vector<Stretch> Stretches() const {
    return stretches.empty() ? std::vector{Stretch{from, period, missing}} : stretches;
  }
};

/// Finds gaps in the dates of readings, one after the other. The rule: docs/completeness.md.
class GapFinder {
 public:
  static constexpr std::size_t kWindow = 20;  ///< distances before and behind that count
  static constexpr std::size_t kPending = 2;  ///< distances behind that there have to be
  /// Nobody leaves a unit without readings for ten years: across more the clock has jumped.
  static constexpr std::int64_t kLongestGap = 3653 * kSecondsPerDay;

  explicit GapFinder(const ScanHints& av_Hints);
  /// Whether a clock may have jumped so between two readings. A jump longer than their distance was not in it: then the
  /// clock that was wrong was this computer's.
  [[nodiscard]] static bool MayHold(DateTime av_From, DateTime av_To, const ClockStep& av_Step);

  /// Takes the next reading. True when a distance became certain and is not `Nothing`: it is in `settled()`.
  bool Push(DateTime av_When) {
    if (last_.IsNone()) {
      last_ = av_When;
      return false;
    }
    const Distance distance{last_, av_When, 0};
    last_ = av_When;
    if (distance.length() > 0) return Add(distance);
    ++out_of_order_;
    return false;
  }
  [[nodiscard]] const Verdict& settled() const { return settled_; }
  /// What more readings may still change, as it looks now.
  [[nodiscard]] std::vector<Verdict> Unsettled() const;
  /// What lies between the last reading and `av_When`, readings after it being overdue.
  [[nodiscard]] Verdict Behind(DateTime av_When) const;
  /// Seconds between readings at present; 0: not known.
  [[nodiscard]] std::int64_t Period() const;
  /// The earliest date behind which more readings may still change something, as long as none comes that is earlier.
  [[nodiscard]] DateTime Boundary() const;
  [[nodiscard]] std::int64_t out_of_order() const { return out_of_order_; }

  /// The distances that are still needed, and how many of them are settled.
  [[nodiscard]] std::vector<Distance> Kept(std::size_t& al_Settled) const;
  /// Goes on from what `Kept` gave.
  void Restore(const std::vector<Distance>& av_Kept, std::size_t al_Settled, DateTime av_Last);

 private:
  static constexpr std::size_t kRing = 64;
  static_assert(kRing > 2 * kWindow + 1);

  bool Add(const Distance& av_Distance) {
    run_ = end_ > 0 && av_Distance.length() == At(end_ - 1).length() ? run_ + 1 : 1;
    ring_[end_++ % kRing] = av_Distance;
    if (!hints_.periods.empty() && Tell(ring_[(end_ - 1) % kRing])) run_ = 0;
    if (end_ - open_ <= kWindow) return false;
    const std::size_t at = open_++;
    return run_ <= 2 * kWindow && Settle(at);
  }
  bool Settle(std::size_t al_At);
  /// Notes a period that was set within the distance; true when there was one.
  bool Tell(Distance& av_Distance) const;
  [[nodiscard]] const Distance& At(std::size_t al_At) const { return ring_[al_At % kRing]; }
  [[nodiscard]] Verdict Judge(std::size_t al_At) const;
  [[nodiscard]] Verdict JudgeBy(const Distance& av_Distance, std::int64_t al_Before, std::int64_t al_After) const;
  /// The periods before and behind a distance, 0 not known, and whether the one behind was set within it.
  struct Periods {
    std::int64_t before = 0;
    std::int64_t behind = 0;
    bool told = false;
  };
  /// Whether that command has set the period behind, within the gap. Where none is known to, the first one counts that
  /// was not answered, or has no sure place, and would have set it.
  [[nodiscard]] static bool SetsPeriod(const PeriodChange& av_Change, const Verdict& av_Gap, const Periods& av_Periods);
  /// Counts what is missing where a period was set within the gap: each stretch by its own. Where the period before is
  /// not known, the first stretch lacks nothing that anybody could tell. `al_Inexact`: a reading that was due so near
  /// to a command counts for none.
  void CountByStretches(Verdict& av_Gap, const Periods& av_Periods, std::int64_t al_Inexact = 0) const;
  /// Whether the distance is long for the shorter of two periods alone, the clock having no part in it and the places
  /// of the commands being known.
  [[nodiscard]] bool IsLongForOne(const Distance& av_Distance, const Periods& av_Periods) const;
  /// The first distance of the window before that one.
  [[nodiscard]] static std::size_t WindowBegin(std::size_t al_At) { return al_At > kWindow ? al_At - kWindow : 0; }
  [[nodiscard]] bool IsShort(std::size_t al_At) const;
  /// The commonest of the last distances before that one, 0 none.
  [[nodiscard]] std::int64_t PeriodBefore(std::size_t al_At) const;
  [[nodiscard]] std::int64_t PeriodBehind(std::size_t al_At) const;

  const ScanHints& hints_;
  std::array<Distance, kRing> ring_;
  std::size_t end_ = 0;   ///< distances are counted from 0
  std::size_t open_ = 0;  ///< the first one that is not settled
  std::size_t run_ = 0;   ///< so many at the end are equal, none of them with a period set
  DateTime last_;
  std::int64_t out_of_order_ = 0;
  Verdict settled_;
};

}  // namespace corvane
