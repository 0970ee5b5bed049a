#pragma once

#include <array>
#include <cstddef>
#include <utility>
#include <vector>

#include <QColor>
#include <QPalette>
#include <QRectF>

#include "window/plot/plot_axes.h"
#include "window/plot/plot_line.h"

class QFontMetricsF;
class QPainter;

namespace corvane::window {

/// The colours of a plot, for a light or a dark background. Neighbouring lines differ in shape of mark and stroke too.
class PlotColours {
 public:
  /// Those that go with a window's colours.
  static PlotColours Of(const QPalette& palette);
  /// Those of a page of paper.
  static PlotColours OfPaper();

  QColor background;
  QColor text;
  QColor grid;
  [[nodiscard]] QColor OfLine(std::size_t line) const;

 private:
  bool dark_ = false;
};

/// Draws a plot: for each column of pixels the extremes of the readings in it, each reading where they stand apart.
class PlotPainter {
 public:
  /// `contents` must outlive this object. Everything is drawn within `area` of the painter's device.
  PlotPainter(QPainter& painter, const QRectF& area, const PlotContents& contents, const TimeSpan& span);

  void Paint(const PlotColours& colours);
  /// The rectangle within the axes.
  [[nodiscard]] const QRectF& canvas() const { return canvas_; }
  [[nodiscard]] double XOf(double time) const;
  [[nodiscard]] double TimeAt(double x) const;
  [[nodiscard]] double YOf(double value, int axis) const;
  /// Draws the sign of a line's reading at a point.
  void DrawMark(std::size_t line, const QPointF& at, const PlotColours& colours);

 private:
  struct Axis {
    Extremes values;
    std::vector<Tick> ticks;
    bool used = false;
  };

  void Arrange();
  void FindRange(int axis);
  /// The first reading of a line that is drawn, and the one behind the last.
  [[nodiscard]] std::pair<std::size_t, std::size_t> Shown(const PlotLine& line) const;
  [[nodiscard]] double PlaceLegend(const QFontMetricsF& metrics);
  void DrawAxes(const PlotColours& colours);
  void DrawTimeAxis(const PlotColours& colours);
  void DrawLegend(const PlotColours& colours);
  void DrawLine(std::size_t line, const PlotColours& colours);
  void DrawColumns(const PlotLine& line, std::size_t first, std::size_t end);
  void DrawReadings(const PlotLine& line, std::size_t first, std::size_t end);
  /// Where a reading is drawn; one beside the span at the edge, where the line crosses it.
  [[nodiscard]] QPointF PointOf(const PlotLine& line, std::size_t at) const;
  void DrawMarks(std::size_t line, std::size_t first, std::size_t end, const PlotColours& colours);

  QPainter& painter_;
  QRectF area_;
  const PlotContents& contents_;
  TimeSpan span_;
  QRectF canvas_;
  std::array<Axis, 2> axes_;
  std::vector<Tick> times_;
  std::vector<QPointF> legend_;  ///< where the sample of each line begins
};

}  // namespace corvane::window
