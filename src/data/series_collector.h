#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <utility>
#include <vector>

#include "base/dates.h"
#include "data/gap_finder.h"
#include "data/reading_series.h"

namespace corvane {

/// What both kinds of files have in common: the readings of the span, in the order of their times, and their gaps.
class SeriesCollector {
 public:
  SeriesCollector(const SeriesRequest& av_Request, ReadingSeries& av_Series)
      : request_(av_Request), series_(av_Series) {}

  /// Makes room for the readings of a file of that size.
  void Expect(std::int64_t al_Bytes, std::size_t al_LineLength) {
    const std::int64_t lines = al_Bytes / static_cast<std::int64_t>(std::max<std::size_t>(al_LineLength, 1));
    const auto room = static_cast<std::size_t>(std::min(lines, kMostReserved));
    series_.times.reserve(room);
    for (std::size_t i = 0; i < series_.columns.size(); ++i) {
      if (wanted_[i]) series_.columns[i].reserve(room);
    }
  }
  void Want(std::vector<bool> av_Wanted) {
    wanted_ = std::move(av_Wanted);
    series_.columns.resize(wanted_.size());
  }
  /// True when the values of this reading are wanted.
  [[nodiscard]] bool Take(DateTime av_When) {
    if (finder_.Push(av_When)) gaps_.push_back(finder_.settled().to.seconds());
    if (av_When < request_.from || (!request_.to.IsNone() && av_When > request_.to)) return false;
    const std::int64_t time = av_When.seconds();
    ordered_ = ordered_ && (series_.times.empty() || time >= series_.times.back());
    series_.times.push_back(time);
    return true;
  }
  void Put(std::size_t al_Column, double ad_Value) { series_.columns[al_Column].push_back(ad_Value); }
  [[nodiscard]] bool Wanted(std::size_t al_Column) const { return wanted_[al_Column]; }

  void Finish() {
    if (!ordered_) Order();
    for (const Verdict& verdict : finder_.Unsettled()) gaps_.push_back(verdict.to.seconds());
    for (const std::int64_t behind : gaps_) {
      const auto at = std::lower_bound(series_.times.begin(), series_.times.end(), behind);
      if (at != series_.times.begin() && at != series_.times.end()) {
        series_.breaks.push_back(static_cast<std::size_t>(at - series_.times.begin()));
      }
    }
    std::sort(series_.breaks.begin(), series_.breaks.end());
    series_.breaks.erase(std::unique(series_.breaks.begin(), series_.breaks.end()), series_.breaks.end());
  }

 private:
  static constexpr std::int64_t kMostReserved = 1 << 20;

  /// Readings of a clock that was set back, or put in by hand, go where their times say.
  void Order() {
    std::vector<std::size_t> order(series_.times.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [this](std::size_t a, std::size_t b) { return series_.times[a] < series_.times[b]; });
    const auto arrange = [&order](auto& column) {
      if (column.empty()) return;
      auto former = column;
      for (std::size_t i = 0; i < order.size(); ++i) column[i] = former[order[i]];
    };
    arrange(series_.times);
    for (auto& column : series_.columns) arrange(column);
  }

  const SeriesRequest& request_;
  ReadingSeries& series_;
  ScanHints hints_;
  GapFinder finder_{hints_};
  std::vector<std::int64_t> gaps_;  ///< the reading behind each
  std::vector<bool> wanted_;        ///< by channel
  bool ordered_ = true;
};

}  // namespace corvane
