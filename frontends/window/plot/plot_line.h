#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

#include <QString>

#include "data/reading_series.h"
#include "lang/phrases.h"

namespace corvane::window {

/// Least and greatest of some values; none of them at first.
struct Extremes {
  double least = std::numeric_limits<double>::infinity();
  double most = -std::numeric_limits<double>::infinity();

  [[nodiscard]] bool empty() const { return least > most; }
  void Take(double value) {
    if (value < least) least = value;
    if (value > most) most = value;
  }
  void Take(const Extremes& other) {
    if (other.least < least) least = other.least;
    if (other.most > most) most = other.most;
  }
};

/// A stretch of time in seconds, with fractions while it is zoomed.
struct TimeSpan {
  double from = 0;
  double to = 0;

  [[nodiscard]] double length() const { return to - from; }
  bool operator==(const TimeSpan&) const = default;
};

/// One line of a plot: a column of a series, prepared so that the extremes of any stretch are found at once.
class PlotLine {
 public:
  /// `axis` is 0 for the left one, 1 for the right one.
  PlotLine(std::shared_ptr<const ReadingSeries> series, std::size_t column, QString name, int axis);

  [[nodiscard]] const QString& name() const { return name_; }
  [[nodiscard]] int axis() const { return axis_; }
  [[nodiscard]] std::size_t size() const { return series_->times.size(); }
  [[nodiscard]] std::int64_t TimeAt(std::size_t at) const { return series_->times[at]; }
  [[nodiscard]] double ValueAt(std::size_t at) const { return series_->columns[column_][at]; }
  /// The first reading not before that time; `size()` when there is none.
  [[nodiscard]] std::size_t FirstFrom(double time) const;
  /// The reading closest to that time; there has to be one.
  [[nodiscard]] std::size_t Nearest(double time) const;
  /// Whether the line is drawn at that time: not in a gap, not before its first reading or behind its last one.
  [[nodiscard]] bool Covers(double time) const;
  /// Of the readings from `first` up to but not including `end`.
  [[nodiscard]] Extremes Between(std::size_t first, std::size_t end) const;
  /// Whether a gap lies somewhere between two readings, the later one `behind`.
  [[nodiscard]] bool BrokenBetween(std::size_t before, std::size_t behind) const;

 private:
  std::shared_ptr<const ReadingSeries> series_;
  std::size_t column_;
  QString name_;
  int axis_;
  std::vector<std::vector<Extremes>> levels_;  ///< of 16 readings, of 256 and so on
};

/// All that a plot shows.
struct PlotContents {
  std::vector<PlotLine> lines;
  std::array<QString, 2> axis_titles;
  std::array<int, 2> decimals{};  ///< of the values of either axis
  QString problem;                ///< what is not shown and why, empty when all is
  Phrases phrases;                ///< what the lines and titles are told in

  /// From the first reading to the last one; empty when there is none.
  [[nodiscard]] TimeSpan Whole() const;
};

}  // namespace corvane::window
