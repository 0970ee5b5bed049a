#include "window/plot/plot_view.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QAccessible>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include "base/numbers.h"

namespace corvane::window {
namespace {

constexpr double kZoomStep = 0.8;
constexpr double kWheelStep = 120;      // eighths of a degree
constexpr quint64 kOneWheelMove = 700;  // milliseconds
constexpr double kShortestSpan = 120;   // seconds
constexpr double kShortestDrag = 5;     // pixels
constexpr std::size_t kMostFormer = 100;
constexpr double kTipPadding = 6;
constexpr int kMinimumWidth = 260;
constexpr int kMinimumHeight = 160;

QString ValueText(const PlotContents& contents, const PlotLine& line, std::size_t at) {
  return QString::fromStdString(FixedText(line.ValueAt(at), contents.decimals[static_cast<std::size_t>(line.axis())]));
}

}  // namespace

PlotView::PlotView(QWidget* parent) : QWidget(parent) {
  setFocusPolicy(Qt::StrongFocus);
  setMouseTracking(true);
  setMinimumSize(kMinimumWidth, kMinimumHeight);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void PlotView::Show(std::shared_ptr<const PlotContents> contents, bool keeps_span) {
  contents_ = std::move(contents);
  const TimeSpan whole = contents_->Whole();
  const bool seen = span_.from < whole.to && span_.to > whole.from;
  if (!keeps_span || !seen || span_.length() <= 0) {
    former_.clear();
    span_ = whole;
  }
  if (cursor_) PutCursor(*cursor_, false);
  Draw();
  if (span_changed) span_changed();
}

void PlotView::SetMessage(const QString& message) {
  message_ = message;
  update();
}

void PlotView::Zoom(const TimeSpan& span) {
  SetSpan(span, true);
}

void PlotView::Back() {
  if (former_.empty()) return;
  const TimeSpan span = former_.back();
  former_.pop_back();
  SetSpan(span, false);
}

void PlotView::SetSpan(TimeSpan span, bool remembered) {
  const TimeSpan whole = contents_->Whole();
  if (whole.length() <= 0) return;
  const double length = std::clamp(span.length(), std::min(kShortestSpan, whole.length()), whole.length());
  const double from = std::clamp((span.from + span.to - length) / 2, whole.from, whole.to - length);
  span = {from, from + length};
  if (span == span_) return;
  if (remembered) former_.push_back(span_);
  if (former_.size() > kMostFormer) former_.erase(former_.begin());
  span_ = span;
  Draw();
  if (span_changed) span_changed();
}

void PlotView::ZoomAbout(double time, double factor, bool remembered) {
  SetSpan({time - (time - span_.from) * factor, time + (span_.to - time) * factor}, remembered);
}

void PlotView::Draw() {
  picture_ = QPixmap();
  update();
}

PlotPainter PlotView::PainterOn(QPainter& painter) const {
  painter.setFont(font());
  return {painter, QRectF(rect()), *contents_, span_};
}

void PlotView::paintEvent(QPaintEvent* /*event*/) {
  if (picture_.isNull() || picture_.deviceIndependentSize().toSize() != size()) {
    picture_ = QPixmap(size() * devicePixelRatioF());
    picture_.setDevicePixelRatio(devicePixelRatioF());
    QPainter painter(&picture_);
    PainterOn(painter).Paint(PlotColours::Of(palette()));
  }
  QPainter painter(this);
  painter.drawPixmap(0, 0, picture_);
  PlotPainter plot = PainterOn(painter);
  canvas_ = plot.canvas();
  if (!message_.isEmpty()) {
    painter.setPen(palette().color(QPalette::Text));
    painter.drawText(canvas_, Qt::AlignCenter | Qt::TextWordWrap, message_);
  }
  if (drag_from_ && !moves_) {
    QColor over = palette().color(QPalette::Highlight);
    over.setAlpha(70);
    painter.fillRect(QRectF(QPointF(std::min(*drag_from_, drag_to_), canvas_.top()),
                            QPointF(std::max(*drag_from_, drag_to_), canvas_.bottom())),
                     over);
  }
  if (cursor_) DrawCursor(plot, painter);
  if (hasFocus()) {
    painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(rect().adjusted(1, 1, -1, -1));
  }
}

void PlotView::DrawCursor(PlotPainter& plot, QPainter& painter) {
  const double x = plot.XOf(*cursor_);
  if (x < canvas_.left() - 1 || x > canvas_.right() + 1) return;
  const PlotColours colours = PlotColours::Of(palette());
  painter.setPen(QPen(colours.text, 1, Qt::DashLine));
  painter.drawLine(QPointF(x, canvas_.top()), QPointF(x, canvas_.bottom()));
  const QFontMetricsF metrics(painter.font());
  QStringList texts{TimeText(*cursor_, contents_->phrases)};
  std::vector<std::size_t> lines;
  for (std::size_t line = 0; line < contents_->lines.size(); ++line) {
    const PlotLine& shown = contents_->lines[line];
    if (!shown.Covers(*cursor_)) continue;
    const std::size_t at = shown.Nearest(*cursor_);
    const auto time = static_cast<double>(shown.TimeAt(at));
    plot.DrawMark(line, {plot.XOf(time), plot.YOf(shown.ValueAt(at), shown.axis())}, colours);
    texts << ValueText(*contents_, shown, at);
    lines.push_back(line);
  }
  double width = 0;
  for (const QString& text : texts) width = std::max(width, metrics.horizontalAdvance(text));
  QRectF box(x + 2 * kTipPadding, canvas_.top() + kTipPadding, width + 5 * kTipPadding,
             metrics.height() * static_cast<double>(texts.size()) + kTipPadding);
  if (box.right() > canvas_.right()) box.moveRight(x - 2 * kTipPadding);
  QColor back = colours.background;
  back.setAlpha(235);
  painter.setPen(colours.grid);
  painter.setBrush(back);
  painter.drawRect(box);
  for (qsizetype row = 0; row < texts.size(); ++row) {
    const QPointF place(box.left() + kTipPadding,
                        box.top() + kTipPadding / 2 + metrics.height() * static_cast<double>(row));
    const double indent = row == 0 ? 0 : 3 * kTipPadding;
    painter.setPen(colours.text);
    painter.drawText(place + QPointF(indent, metrics.ascent()), texts[row]);
    if (row == 0) continue;
    plot.DrawMark(lines[static_cast<std::size_t>(row - 1)], place + QPointF(kTipPadding, metrics.height() / 2),
                  colours);
  }
}

QString PlotView::CursorText() const {
  if (!cursor_) return {};
  QStringList texts;
  for (const PlotLine& line : contents_->lines) {
    if (line.Covers(*cursor_)) texts << line.name() + " " + ValueText(*contents_, line, line.Nearest(*cursor_));
  }
  return TimeText(*cursor_, contents_->phrases) + ": " + texts.join(", ");
}

void PlotView::ClearCursor() {
  cursor_.reset();
  update();
  if (cursor_changed) cursor_changed(false);
}

double PlotView::TimeUnder(double x) const {
  const double share = (x - canvas_.left()) / std::max(canvas_.width(), 1.0);
  return span_.from + std::clamp(share, 0.0, 1.0) * span_.length();
}

void PlotView::PutCursor(double time, bool by_keys) {
  std::optional<double> nearest;
  for (const PlotLine& line : contents_->lines) {
    if (line.size() == 0) continue;
    const auto found = static_cast<double>(line.TimeAt(line.Nearest(time)));
    if (!nearest || std::abs(found - time) < std::abs(*nearest - time)) nearest = found;
  }
  if (nearest == cursor_) return;
  cursor_ = nearest;
  update();
  if (cursor_changed) cursor_changed(by_keys);
}

void PlotView::StepCursor(bool forward) {
  if (!cursor_) return PutCursor(forward ? span_.from : span_.to, true);
  std::optional<double> next;
  for (const PlotLine& line : contents_->lines) {
    const std::size_t behind = line.FirstFrom(forward ? *cursor_ + 1 : *cursor_);
    if (forward ? behind >= line.size() : behind == 0) continue;
    const auto time = static_cast<double>(line.TimeAt(forward ? behind : behind - 1));
    if (!next || (forward ? time < *next : time > *next)) next = time;
  }
  if (!next) return;
  PutCursor(*next, true);
  if (*next < span_.from || *next > span_.to) {
    const double by = (forward ? 1 : -1) * span_.length() / 2;
    SetSpan({span_.from + by, span_.to + by}, false);
  }
}

void PlotView::wheelEvent(QWheelEvent* event) {
  const double steps = event->angleDelta().y() / kWheelStep;
  event->accept();
  if (steps == 0) return;
  // One turn of the wheel is one step back.
  const bool remembered = event->timestamp() - last_wheel_ > kOneWheelMove || last_wheel_ == 0;
  last_wheel_ = event->timestamp();
  ZoomAbout(TimeUnder(event->position().x()), std::pow(kZoomStep, steps), remembered);
}

void PlotView::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::RightButton) return Back();
  if (event->button() != Qt::LeftButton) return;
  drag_from_ = drag_to_ = event->position().x();
  moves_ = event->modifiers().testFlag(Qt::ShiftModifier);
  moved_from_ = span_;
}

void PlotView::mouseMoveEvent(QMouseEvent* event) {
  const double x = event->position().x();
  if (!drag_from_) return PutCursor(TimeUnder(x), false);
  drag_to_ = std::clamp(x, canvas_.left(), canvas_.right());
  if (moves_) {
    const double by = (*drag_from_ - x) / std::max(canvas_.width(), 1.0) * moved_from_.length();
    SetSpan({moved_from_.from + by, moved_from_.to + by}, false);
  }
  update();
}

void PlotView::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || !drag_from_) return;
  const double from = std::min(*drag_from_, drag_to_);
  const double to = std::max(*drag_from_, drag_to_);
  drag_from_.reset();
  update();
  if (moves_) {
    if (!(span_ == moved_from_)) former_.push_back(moved_from_);
    if (span_changed) span_changed();
  } else if (to - from >= kShortestDrag) {
    Zoom({TimeUnder(from), TimeUnder(to)});
  } else {
    PutCursor(TimeUnder(to), false);
  }
}

void PlotView::keyPressEvent(QKeyEvent* event) {
  const bool cursor_shown = cursor_ && *cursor_ >= span_.from && *cursor_ <= span_.to;
  const double middle = cursor_shown ? *cursor_ : (span_.from + span_.to) / 2;
  const double half = span_.length() / 2;
  switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
      return StepCursor(event->key() == Qt::Key_Right);
    case Qt::Key_Home:
      return PutCursor(span_.from, true);
    case Qt::Key_End:
      return PutCursor(span_.to, true);
    case Qt::Key_Plus:
    case Qt::Key_Equal:
      return ZoomAbout(middle, kZoomStep * kZoomStep, true);
    case Qt::Key_Minus:
      return ZoomAbout(middle, 1 / (kZoomStep * kZoomStep), true);
    case Qt::Key_PageUp:
      return SetSpan({span_.from - half, span_.to - half}, true);
    case Qt::Key_PageDown:
      return SetSpan({span_.from + half, span_.to + half}, true);
    case Qt::Key_Backspace:
      return Back();
    default:
      return QWidget::keyPressEvent(event);
  }
}

void PlotView::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) Draw();
  QWidget::changeEvent(event);
}

}  // namespace corvane::window
