#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include <QPixmap>
#include <QWidget>

#include "window/plot/plot_painter.h"

namespace corvane::window {

/// A plot on the screen, with zoom and cursor.
///
/// Wheel and keys + and - zoom, dragging zooms into what was dragged over, with Shift it moves the plot; Backspace and
/// the right button go back. Arrows, Home and End move the cursor from reading to reading, Page Up and Page Down the
/// plot.
class PlotView : public QWidget {
 public:
  explicit PlotView(QWidget* parent = nullptr);

  /// Shows other lines. The span stays where `keeps_span`, as far as there are readings; else all is shown.
  void Show(std::shared_ptr<const PlotContents> contents, bool keeps_span);
  /// Shows a span and remembers the former one for `Back`.
  void Zoom(const TimeSpan& span);
  void Back();
  [[nodiscard]] bool CanGoBack() const { return !former_.empty(); }
  [[nodiscard]] const TimeSpan& span() const { return span_; }
  [[nodiscard]] const PlotContents& contents() const { return *contents_; }
  /// Said in place of lines where there are none.
  void SetMessage(const QString& message);
  /// The time and the values under the cursor, in words; empty without a cursor.
  [[nodiscard]] QString CursorText() const;
  void ClearCursor();

  std::function<void()> span_changed;                ///< after every change of the span
  std::function<void(bool by_keys)> cursor_changed;  ///< after every move of the cursor

 protected:
  void paintEvent(QPaintEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  [[nodiscard]] PlotPainter PainterOn(QPainter& painter) const;
  void Draw();
  void DrawCursor(PlotPainter& plot, QPainter& painter);
  void SetSpan(TimeSpan span, bool remembered);
  void ZoomAbout(double time, double factor, bool remembered);
  /// Puts the cursor on the reading of any line that is closest to a time.
  void PutCursor(double time, bool by_keys);
  /// Moves the cursor by so many readings of the line that has the next one.
  void StepCursor(bool forward);
  [[nodiscard]] double TimeUnder(double x) const;

  std::shared_ptr<const PlotContents> contents_ = std::make_shared<PlotContents>();
  QString message_;
  TimeSpan span_;
  std::vector<TimeSpan> former_;
  std::optional<double> cursor_;
  std::optional<double> drag_from_;  ///< where the left button went down
  double drag_to_ = 0;
  TimeSpan moved_from_;  ///< the span when a move with Shift began
  bool moves_ = false;
  quint64 last_wheel_ = 0;
  QPixmap picture_;  ///< the plot without cursor and drag; null when it has to be drawn
  QRectF canvas_;
};

}  // namespace corvane::window
