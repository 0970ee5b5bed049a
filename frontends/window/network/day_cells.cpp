#include "window/network/day_cells.h"

#include <algorithm>
#include <cmath>

#include <QPainter>
#include <QPalette>

#include "window/network/day_model.h"

namespace corvane::window {
namespace {

constexpr int kDot = 2;       ///< radius
constexpr int kFrame = 2;     ///< the pen of the cursor
constexpr int kNotch = 3;     ///< the least that is left out of a day that is nearly whole
constexpr int kDarkest = 96;  ///< lightness of a background from which on it counts as dark

/// Blue and orange stay apart for people who do not tell red from green; the red is crossed out besides.
struct DayColours {
  QColor whole, most, part, nothing, ground;
};

DayColours ColoursOn(const QPalette& palette) {
  if (palette.color(QPalette::Base).lightness() > kDarkest) {
    return {{44, 105, 168}, {178, 207, 234}, {224, 142, 20}, {186, 40, 32}, {252, 233, 200}};
  }
  return {{98, 164, 228}, {38, 72, 108}, {240, 168, 60}, {255, 120, 104}, {84, 60, 24}};
}

void FillShare(QPainter& painter, const QRect& area, int height, const QBrush& brush) {
  painter.fillRect(QRect(area.left(), area.bottom() - height + 1, area.width(), height), brush);
}

void PaintPart(QPainter& painter, const QRect& area, double share, const DayColours& colours) {
  painter.fillRect(area, colours.ground);
  const int height = std::clamp(static_cast<int>(std::lround(share * area.height())), 2, area.height() - kNotch);
  FillShare(painter, area, height, colours.part);
  FillShare(painter, area, height, QBrush(colours.part.darker(220), Qt::BDiagPattern));
}

void PaintNothing(QPainter& painter, const QRect& area, const DayColours& colours) {
  painter.setPen(colours.nothing);
  const QRect frame = area.adjusted(0, 0, -1, -1);
  painter.drawRect(frame);
  painter.drawLine(frame.topLeft(), frame.bottomRight());
  painter.drawLine(frame.topRight(), frame.bottomLeft());
}

void PaintLost(QPainter& painter, const QRect& area, const QPalette& palette) {
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(palette.color(QPalette::Base));
  painter.setBrush(palette.color(QPalette::Text));
  painter.drawEllipse(QRectF(area).center(), kDot, kDot);
}

}  // namespace

void PaintDay(QPainter& painter, const QRect& area, const DayCell& cell, const QPalette& colours) {
  const DayColours paints = ColoursOn(colours);
  painter.save();
  switch (GradeOf(cell)) {
    case DayGrade::NotDue:
      painter.fillRect(QRect(area.center(), QSize(1, 1)), colours.color(QPalette::Disabled, QPalette::Text));
      break;
    case DayGrade::Whole:
      painter.fillRect(area, paints.whole);
      break;
    case DayGrade::Most:
      painter.fillRect(area, paints.most);
      FillShare(painter, area, area.height() - kNotch, paints.whole);
      break;
    case DayGrade::Part:
      PaintPart(painter, area, cell.share().value_or(0), paints);
      break;
    case DayGrade::Unheard:
      painter.setPen(QPen(colours.color(QPalette::Disabled, QPalette::Text), 1, Qt::DotLine));
      painter.drawRect(area.adjusted(0, 0, -1, -1));
      break;
    case DayGrade::Nothing:
      PaintNothing(painter, area, paints);
      break;
  }
  if (cell.lost > 0) PaintLost(painter, area, colours);
  painter.restore();
}

void DayDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
  const auto* model = static_cast<const DayModel*>(index.model());
  painter->save();
  // What lay beyond the cell would stay when the cursor goes on: only the cell is painted anew then.
  painter->setClipRect(option.rect, Qt::IntersectClip);
  PaintDay(*painter, option.rect.adjusted(0, 1, -1, -1), model->CellAt(index), option.palette);
  if (option.state.testFlag(QStyle::State_HasFocus) || option.state.testFlag(QStyle::State_Selected)) {
    painter->setPen(QPen(option.palette.color(QPalette::Text), kFrame, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter->drawRect(option.rect.adjusted(kFrame / 2, kFrame / 2, -kFrame / 2, -kFrame / 2));
  }
  painter->restore();
}

DaySample::DaySample(const DayCell& cell, QWidget* parent) : QWidget(parent), cell_(cell) {
  const int height = fontMetrics().height();
  setFixedSize(height * 2 / 3, height);
}

void DaySample::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.fillRect(rect(), palette().color(QPalette::Base));
  PaintDay(painter, rect().adjusted(1, 1, -1, -1), cell_, palette());
}

}  // namespace corvane::window
