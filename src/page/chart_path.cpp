#include "page/chart_path.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace corvane {
namespace {

constexpr std::int64_t kColumns = 60;
constexpr std::int64_t kColumnWidth = kChartWidth / kColumns;

/// Writes the path, column by column.
class Pen {
 public:
  /// From `al_One` to `al_Other`, both counted from above; joined to the column before where `ab_Joined`.
  void Column(std::int64_t al_X, std::int64_t al_One, std::int64_t al_Other, bool ab_Joined) {
    const bool other_is_nearer = std::llabs(al_Other - y_) < std::llabs(al_One - y_);
    if (ab_Joined && other_is_nearer) std::swap(al_One, al_Other);
    if (ab_Joined) {
      path_ += al_One == y_ ? "h" : "l";
      path_ += std::to_string(al_X - x_);
      if (al_One != y_) Second(al_One - y_);
      alone_ = false;
    } else {
      Lift();
      path_ += "M" + std::to_string(al_X);
      Second(al_One);
      alone_ = true;
    }
    if (al_Other != al_One) {
      path_ += "v" + std::to_string(al_Other - al_One);
      alone_ = false;
    }
    x_ = al_X;
    y_ = al_Other;
  }
  /// A point that nothing is joined to is drawn as a dash.
  void Lift() {
    if (std::exchange(alone_, false)) path_ += "h1";
  }
  [[nodiscard]] std::string Take() { return std::move(path_); }

 private:
  /// The second number of a pair; a sign parts it from the first as well as a blank.
  void Second(std::int64_t al_Number) {
    if (al_Number >= 0) path_ += " ";
    path_ += std::to_string(al_Number);
  }

  std::string path_;
  std::int64_t x_ = 0;
  std::int64_t y_ = 0;
  bool alone_ = false;
};

struct Scale {
  double least = 0;
  double range = 0;

  [[nodiscard]] std::int64_t Height(double ad_Value) const {
    const double share = range > 0 ? (ad_Value - least) / range : 0.5;
    return kChartHeight - std::llround(share * static_cast<double>(kChartHeight));
  }
};

/// The extremes of the values of one column.
struct Column {
  std::int64_t place = -1;
  double least = 0;
  double most = 0;
  bool joined = false;  ///< to the one before
};

class ChartDrawing {
 public:
  explicit ChartDrawing(const ChartData& av_Data) : data_(av_Data) {}

  ChartPath Draw() {
    if (!TakeScale()) return chart_;
    auto next_break = data_.breaks.begin();
    bool joined = false;
    for (std::size_t place = 0; place < data_.times.size(); ++place) {
      for (; next_break != data_.breaks.end() && *next_break <= place; ++next_break) joined = false;
      if (!IsShown(place)) continue;
      Take(ColumnOf(place), data_.values[place], joined);
      joined = true;
    }
    DrawColumn();
    pen_.Lift();
    chart_.path = pen_.Take();
    return chart_;
  }

 private:
  [[nodiscard]] bool IsShown(std::size_t av_Place) const {
    const DateTime time(data_.times[av_Place]);
    return time >= data_.from && time <= data_.to && std::isfinite(data_.values[av_Place]);
  }

  [[nodiscard]] std::int64_t ColumnOf(std::size_t av_Place) const {
    const std::int64_t span = std::max<std::int64_t>(1, data_.to - data_.from);
    return (data_.times[av_Place] - data_.from.seconds()) * (kColumns - 1) / span;
  }

  /// False when nothing is shown.
  bool TakeScale() {
    bool any = false;
    for (std::size_t place = 0; place < data_.times.size(); ++place) {
      if (!IsShown(place)) continue;
      const double value = data_.values[place];
      chart_.least = any ? std::min(chart_.least, value) : value;
      chart_.most = any ? std::max(chart_.most, value) : value;
      any = true;
    }
    scale_.range = std::max(chart_.most - chart_.least, data_.least_range);
    scale_.least = (chart_.least + chart_.most - scale_.range) / 2;
    return any;
  }

  void Take(std::int64_t al_Column, double ad_Value, bool ab_Joined) {
    if (al_Column == column_.place && ab_Joined) {
      column_.least = std::min(column_.least, ad_Value);
      column_.most = std::max(column_.most, ad_Value);
      return;
    }
    DrawColumn();
    column_ = {al_Column, ad_Value, ad_Value, ab_Joined};
  }

  void DrawColumn() {
    if (column_.place < 0) return;
    pen_.Column(column_.place * kColumnWidth, scale_.Height(column_.least), scale_.Height(column_.most),
                column_.joined);
  }

  const ChartData& data_;
  ChartPath chart_;
  Scale scale_;
  Column column_;
  Pen pen_;
};

}  // namespace

ChartPath DrawChart(const ChartData& av_Data) {
  return ChartDrawing(av_Data).Draw();
}

}  // namespace corvane
