#include "window/plot/plot_painter.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>

namespace corvane::window {
namespace {

// After Okabe and Ito: told apart with every kind of colour blindness; darkened or lightened to at least 3:1.
constexpr std::array kOnLight = {QColor(0, 114, 178), QColor(203, 82, 0),   QColor(0, 128, 94), QColor(170, 74, 130),
                                 QColor(156, 108, 0), QColor(48, 134, 185), QColor(40, 40, 40)};
constexpr std::array kOnDark = {QColor(86, 180, 233),  QColor(255, 140, 60), QColor(43, 217, 163),
                                QColor(240, 163, 206), QColor(240, 228, 66), QColor(130, 160, 255),
                                QColor(245, 245, 245)};
constexpr std::array kStrokes = {Qt::SolidLine, Qt::DashLine, Qt::DotLine, Qt::DashDotLine};
constexpr int kMarkShapes = 5;
constexpr double kMarkRadius = 3.5;
constexpr double kSample = 26;  // length of a line in the legend
constexpr double kMarkDistance = 110;
constexpr double kNumberDistance = 45;
constexpr double kRoomAbove = 0.05;  // of the range, above and below the values
constexpr double kLineWidth = 1.4;
constexpr std::size_t kReadingsPerColumn = 2;
constexpr double kPadding = 6;

}  // namespace

PlotColours PlotColours::Of(const QPalette& palette) {
  PlotColours colours;
  colours.background = palette.color(QPalette::Base);
  colours.text = palette.color(QPalette::Text);
  colours.dark_ = colours.background.lightness() < colours.text.lightness();
  colours.grid = colours.dark_ ? colours.background.lighter(190) : colours.background.darker(115);
  if (colours.dark_ && colours.background.lightness() < 20) colours.grid = QColor(60, 60, 60);
  return colours;
}

PlotColours PlotColours::OfPaper() {
  PlotColours colours;
  colours.background = Qt::white;
  colours.text = Qt::black;
  colours.grid = QColor(217, 217, 217);
  return colours;
}

QColor PlotColours::OfLine(std::size_t line) const {
  return dark_ ? kOnDark[line % kOnDark.size()] : kOnLight[line % kOnLight.size()];
}

PlotPainter::PlotPainter(QPainter& painter, const QRectF& area, const PlotContents& contents, const TimeSpan& span)
    : painter_(painter), area_(area), contents_(contents), span_(span) {
  Arrange();
}

void PlotPainter::Arrange() {
  const QFontMetricsF metrics(painter_.font());
  const double height = metrics.height();
  canvas_ = area_.adjusted(kPadding, kPadding + PlaceLegend(metrics), -2 * kPadding, -2.6 * height);
  const bool titled = !contents_.axis_titles[0].isEmpty() || !contents_.axis_titles[1].isEmpty();
  if (titled) canvas_.setTop(canvas_.top() + 1.3 * height);
  std::array<double, 2> widths{};
  for (int axis = 0; axis < 2; ++axis) {
    FindRange(axis);
    for (const Tick& tick : axes_[axis].ticks) {
      widths[axis] = std::max(widths[axis], metrics.horizontalAdvance(tick.text) + kPadding);
    }
  }
  canvas_.adjust(widths[0], 0, -widths[1], 0);
  const double time_distance = 1.3 * metrics.horizontalAdvance("30 Nov ");
  times_ = TimeTicks(span_, static_cast<int>(canvas_.width() / time_distance), contents_.phrases);
}

std::pair<std::size_t, std::size_t> PlotPainter::Shown(const PlotLine& line) const {
  // With the readings beside the span, so that the line reaches its edges.
  const std::size_t first = line.FirstFrom(span_.from);
  const std::size_t end = line.FirstFrom(span_.to + 1);
  return {first - (first > 0 ? 1 : 0), end + (end < line.size() ? 1 : 0)};
}

void PlotPainter::FindRange(int axis) {
  Axis& found = axes_[axis];
  for (const PlotLine& line : contents_.lines) {
    if (line.axis() != axis) continue;
    found.used = true;
    const auto [first, end] = Shown(line);
    found.values.Take(line.Between(first, end));
  }
  if (!found.used) return;
  if (found.values.empty()) found.values = {0, 1};
  const double length = found.values.most - found.values.least;
  const double room = length > 0 ? length * kRoomAbove : std::max(std::abs(found.values.most) * kRoomAbove, 0.1);
  found.values = {found.values.least - room, found.values.most + room};
  found.ticks =
      NumberTicks(found.values.least, found.values.most, static_cast<int>(canvas_.height() / kNumberDistance));
}

double PlotPainter::PlaceLegend(const QFontMetricsF& metrics) {
  const double row_height = metrics.height() + 2;
  const QPointF begin(area_.left() + kPadding, area_.top() + kPadding + row_height / 2);
  double width = 1;
  for (const PlotLine& line : contents_.lines) {
    width = std::max(width, kSample + metrics.horizontalAdvance(line.name()) + 4 * kPadding);
  }
  const auto columns = static_cast<std::size_t>(std::max((area_.width() - kPadding) / width, 1.0));
  const std::size_t rows = (contents_.lines.size() + columns - 1) / columns;
  for (std::size_t line = 0; line < contents_.lines.size(); ++line) {
    const auto column = static_cast<double>(line / rows);
    legend_.push_back(begin + QPointF(column * width, static_cast<double>(line % rows) * row_height));
  }
  return static_cast<double>(rows) * row_height;
}

double PlotPainter::XOf(double time) const {
  return canvas_.left() + (time - span_.from) / std::max(span_.length(), 1.0) * canvas_.width();
}

double PlotPainter::TimeAt(double x) const {
  return span_.from + (x - canvas_.left()) / std::max(canvas_.width(), 1.0) * span_.length();
}

double PlotPainter::YOf(double value, int axis) const {
  const Extremes& values = axes_[axis].values;
  return canvas_.bottom() - (value - values.least) / (values.most - values.least) * canvas_.height();
}

void PlotPainter::Paint(const PlotColours& colours) {
  painter_.fillRect(area_, colours.background);
  DrawAxes(colours);
  DrawTimeAxis(colours);
  DrawLegend(colours);
  painter_.save();
  painter_.setClipRect(canvas_);
  for (std::size_t line = 0; line < contents_.lines.size(); ++line) DrawLine(line, colours);
  painter_.restore();
}

void PlotPainter::DrawAxes(const PlotColours& colours) {
  const QFontMetricsF metrics(painter_.font());
  for (int axis = 0; axis < 2; ++axis) {
    if (!axes_[axis].used) continue;
    const bool left = axis == 0;
    for (const Tick& tick : axes_[axis].ticks) {
      const double y = YOf(tick.at, axis);
      painter_.setPen(QPen(colours.grid, 1, left ? Qt::SolidLine : Qt::DotLine));
      painter_.drawLine(QPointF(canvas_.left(), y), QPointF(canvas_.right(), y));
      painter_.setPen(colours.text);
      const double x = left ? area_.left() : canvas_.right() + kPadding;
      const double width = left ? canvas_.left() - kPadding - area_.left() : area_.right() - x;
      painter_.drawText(QRectF(x, y - metrics.height() / 2, width, metrics.height()),
                        (left ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter, tick.text);
    }
    const QRectF title(area_.left() + kPadding, canvas_.top() - 1.3 * metrics.height(), area_.width() - 2 * kPadding,
                       metrics.height());
    painter_.setPen(colours.text);
    painter_.drawText(title, (left ? Qt::AlignLeft : Qt::AlignRight) | Qt::AlignVCenter, contents_.axis_titles[axis]);
  }
  painter_.setPen(QPen(colours.text, 1));
  painter_.drawRect(canvas_);
}

void PlotPainter::DrawTimeAxis(const PlotColours& colours) {
  const QFontMetricsF metrics(painter_.font());
  double context_end = area_.left();
  const auto centred = [&](double x, const QString& text) {
    const double half = metrics.horizontalAdvance(text) / 2;
    return std::clamp(x - half, area_.left(), std::max(area_.right() - 2 * half, area_.left()));
  };
  for (const Tick& tick : times_) {
    const double x = XOf(tick.at);
    painter_.setPen(QPen(colours.grid, 1));
    painter_.drawLine(QPointF(x, canvas_.top()), QPointF(x, canvas_.bottom()));
    painter_.setPen(colours.text);
    painter_.drawLine(QPointF(x, canvas_.bottom()), QPointF(x, canvas_.bottom() + 3));
    const double baseline = canvas_.bottom() + 3 + metrics.ascent();
    painter_.drawText(QPointF(centred(x, tick.text), baseline), tick.text);
    const double context = centred(x, tick.context);
    if (tick.context.isEmpty() || context < context_end) continue;
    painter_.drawText(QPointF(context, baseline + metrics.height()), tick.context);
    context_end = context + metrics.horizontalAdvance(tick.context) + kPadding;
  }
}

void PlotPainter::DrawLegend(const PlotColours& colours) {
  const QFontMetricsF metrics(painter_.font());
  for (std::size_t line = 0; line < legend_.size(); ++line) {
    const QPointF begin = legend_[line];
    painter_.setPen(QPen(colours.OfLine(line), kLineWidth + 0.4, kStrokes[line % kStrokes.size()]));
    painter_.drawLine(begin, begin + QPointF(kSample, 0));
    DrawMark(line, begin + QPointF(kSample / 2, 0), colours);
    painter_.setPen(colours.text);
    const QPointF text = begin + QPointF(kSample + kPadding, (metrics.ascent() - metrics.descent()) / 2);
    painter_.drawText(text, metrics.elidedText(contents_.lines[line].name(), Qt::ElideMiddle,
                                               std::max(area_.right() - text.x(), 20.0)));
  }
}

void PlotPainter::DrawMark(std::size_t line, const QPointF& at, const PlotColours& colours) {
  const double r = kMarkRadius;
  const QColor colour = colours.OfLine(line);
  painter_.save();
  painter_.setRenderHint(QPainter::Antialiasing);
  painter_.setPen(QPen(colour, 1.2));
  // The second seven lines have the colours of the first and hollow marks.
  painter_.setBrush(line < kOnLight.size() ? colour : colours.background);
  // Lines whose colours are akin, such as the two blues, have other shapes.
  switch ((line + 2 * (line / kMarkShapes)) % kMarkShapes) {
    case 0:
      painter_.drawEllipse(at, r, r);
      break;
    case 1:
      painter_.drawRect(QRectF(at - QPointF(r, r), at + QPointF(r, r)).adjusted(0.5, 0.5, -0.5, -0.5));
      break;
    case 2:
      painter_.drawPolygon(QPolygonF({at + QPointF(0, -r - 1), at + QPointF(r + 0.5, r), at + QPointF(-r - 0.5, r)}));
      break;
    case 3:
      painter_.drawPolygon(QPolygonF(
          {at + QPointF(0, -r - 1), at + QPointF(r + 1, 0), at + QPointF(0, r + 1), at + QPointF(-r - 1, 0)}));
      break;
    default:
      painter_.drawPolygon(QPolygonF({at + QPointF(-r - 0.5, -r), at + QPointF(r + 0.5, -r), at + QPointF(0, r + 1)}));
      break;
  }
  painter_.restore();
}

void PlotPainter::DrawLine(std::size_t line, const PlotColours& colours) {
  const PlotLine& shown = contents_.lines[line];
  if (shown.size() == 0) return;
  const auto [first, end] = Shown(shown);
  const auto columns = static_cast<std::size_t>(std::max(canvas_.width(), 1.0));
  const bool dense = end - first > kReadingsPerColumn * columns;
  painter_.setRenderHint(QPainter::Antialiasing, !dense);
  painter_.setPen(QPen(colours.OfLine(line), dense ? 1 : kLineWidth,
                       dense ? Qt::SolidLine : kStrokes[line % kStrokes.size()], Qt::FlatCap, Qt::BevelJoin));
  if (dense) {
    DrawColumns(shown, first, end);
  } else {
    DrawReadings(shown, first, end);
  }
  DrawMarks(line, first, end, colours);
}

void PlotPainter::DrawColumns(const PlotLine& line, std::size_t first, std::size_t end) {
  const double step = 1 / painter_.device()->devicePixelRatioF();
  QPolygonF points;
  double last_y = 0;
  std::size_t before = first;
  for (double x = canvas_.left(); x <= canvas_.right() && first < end; x += step) {
    const std::size_t next = std::min(std::max(line.FirstFrom(TimeAt(x + step)), first), end);
    if (next == first) continue;
    const Extremes found = line.Between(first, next);
    double near = YOf(found.least, line.axis());
    double far = YOf(found.most, line.axis());
    if (!points.isEmpty() && std::abs(far - last_y) < std::abs(near - last_y)) std::swap(near, far);
    if (!points.isEmpty() && line.BrokenBetween(before, first)) {
      painter_.drawPolyline(points);
      points.clear();
    }
    points << QPointF(x, near) << QPointF(x, far);
    last_y = far;
    before = next - 1;
    first = next;
  }
  painter_.drawPolyline(points);
}

void PlotPainter::DrawReadings(const PlotLine& line, std::size_t first, std::size_t end) {
  QPolygonF points;
  const auto draw = [&] {
    // A reading between two gaps is a dot.
    if (points.size() == 1) {
      points.push_front(points.front() - QPointF(1, 0));
      points.back().rx() += 1;
    }
    painter_.drawPolyline(points);
    points.clear();
  };
  for (std::size_t at = first; at < end; ++at) {
    if (at > first && line.BrokenBetween(at - 1, at)) draw();
    points << PointOf(line, at);
  }
  draw();
}

QPointF PlotPainter::PointOf(const PlotLine& line, std::size_t at) const {
  const QPointF point(XOf(static_cast<double>(line.TimeAt(at))), YOf(line.ValueAt(at), line.axis()));
  const bool before = point.x() < canvas_.left();
  if (!before && point.x() <= canvas_.right()) return point;
  // Not every device cuts off what lies outside: the line ends where it crosses the edge.
  const std::size_t inner = before ? std::min(at + 1, line.size() - 1) : std::max<std::size_t>(at, 1) - 1;
  const QPointF other(XOf(static_cast<double>(line.TimeAt(inner))), YOf(line.ValueAt(inner), line.axis()));
  const double edge = before ? canvas_.left() : canvas_.right();
  const double share = other.x() == point.x() ? 0 : std::clamp((edge - point.x()) / (other.x() - point.x()), 0.0, 1.0);
  return {edge, point.y() + share * (other.y() - point.y())};
}

void PlotPainter::DrawMarks(std::size_t line, std::size_t first, std::size_t end, const PlotColours& colours) {
  const PlotLine& shown = contents_.lines[line];
  // Beside each other, so that lines that lie upon each other show all of their marks.
  const double begin = kMarkDistance * static_cast<double>(line % kMarkShapes + 1) / (kMarkShapes + 1);
  double next = canvas_.left() + begin;
  const bool each = static_cast<double>(end - first) * 4 * kMarkRadius < canvas_.width();
  for (std::size_t at = first; at < end;) {
    const double x = XOf(static_cast<double>(shown.TimeAt(at)));
    const bool inside = x >= canvas_.left() && x <= canvas_.right();
    if (inside && (each || x >= next)) DrawMark(line, {x, YOf(shown.ValueAt(at), shown.axis())}, colours);
    if (each) {
      ++at;
      continue;
    }
    while (next <= x) next += kMarkDistance;
    at = std::max(at + 1, shown.FirstFrom(TimeAt(next)));
  }
}

}  // namespace corvane::window
