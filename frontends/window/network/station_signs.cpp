#include "window/network/station_signs.h"

#include <QColor>
#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>

namespace corvane::window {
namespace {

constexpr QColor kGreen(0, 112, 84);
constexpr QColor kOrange(176, 88, 0);
constexpr QColor kViolet(136, 60, 130);
constexpr QColor kRed(178, 24, 24);
constexpr QColor kBlue(0, 94, 160);
constexpr QColor kGrey(110, 110, 110);
constexpr double kSide = 16;  ///< of the square that the shapes are given in

QColor ColourOf(StationSign sign) {
  switch (sign) {
    case StationSign::Silent:
      return kRed;
    case StationSign::Late:
      return kViolet;
    case StationSign::Trouble:
      return kOrange;
    case StationSign::Fine:
      return kGreen;
    case StationSign::Off:
      return kGrey;
    default:
      return kBlue;
  }
}

QPainterPath ShapeOf(StationSign sign) {
  QPainterPath shape;
  switch (sign) {
    case StationSign::Silent:
      shape.addRoundedRect(QRectF(1.5, 1.5, 13, 13), 2, 2);
      break;
    case StationSign::Late:
      shape.addPolygon(QPolygonF({{8, 0.5}, {15.5, 8}, {8, 15.5}, {0.5, 8}, {8, 0.5}}));
      break;
    case StationSign::Trouble:
      shape.addPolygon(QPolygonF({{8, 1}, {15.5, 14.5}, {0.5, 14.5}, {8, 1}}));
      break;
    case StationSign::Running:
      shape.addPolygon(QPolygonF({{3, 1}, {14.5, 8}, {3, 15}, {3, 1}}));
      break;
    default:
      shape.addEllipse(QRectF(1.5, 1.5, 13, 13));
  }
  return shape;
}

/// What stands in white in the shape: a tick, a cross, the hands of a clock ...
QPainterPath MarkOf(StationSign sign) {
  QPainterPath mark;
  const auto line = [&mark](std::initializer_list<QPointF> points) { mark.addPolygon(QPolygonF(points)); };
  switch (sign) {
    case StationSign::Fine:
      line({{4.5, 8.5}, {7, 11}, {11.5, 5.5}});
      break;
    case StationSign::Silent:
      line({{5, 5}, {11, 11}});
      line({{11, 5}, {5, 11}});
      break;
    case StationSign::Late:
      line({{8, 4.5}, {8, 8.5}, {10.5, 10}});
      break;
    case StationSign::Trouble:
      line({{8, 6}, {8, 10}});
      line({{8, 12}, {8, 12.5}});
      break;
    case StationSign::New:
      line({{8, 4.5}, {8, 11.5}});
      line({{4.5, 8}, {11.5, 8}});
      break;
    case StationSign::Off:
      line({{5, 8}, {11, 8}});
      break;
    case StationSign::Running:
      break;
  }
  return mark;
}

}  // namespace

StationSign SignOf(UnitState state) {
  switch (state) {
    case UnitState::Off:
      return StationSign::Off;
    case UnitState::New:
      return StationSign::New;
    case UnitState::Silent:
      return StationSign::Silent;
    case UnitState::Late:
      return StationSign::Late;
    case UnitState::Fine:
      return StationSign::Fine;
    case UnitState::Trouble:
      break;
  }
  return StationSign::Trouble;
}

void PaintSign(QPainter& painter, const QRectF& where, StationSign sign) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.translate(where.topLeft());
  painter.scale(where.width() / kSide, where.height() / kSide);
  const QPainterPath shape = ShapeOf(sign);
  painter.strokePath(shape, QPen(Qt::white, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.fillPath(shape, ColourOf(sign));
  painter.strokePath(MarkOf(sign), QPen(Qt::white, 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.restore();
}

}  // namespace corvane::window
