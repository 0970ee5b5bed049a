#include "window/box_style.h"

#include <QPainter>
#include <QStyleOption>

namespace corvane::window {
namespace {

constexpr int kDarkest = 128;    ///< of a ground that the style's own frame is seen on
constexpr double kOfText = 0.6;  ///< the rest is of the ground
constexpr double kHalfPixel = 0.5;
constexpr double kCorner = 1;

QColor FrameOn(const QColor& ground, const QColor& text) {
  const auto part = [](int one, int other) { return static_cast<int>(kOfText * one + (1 - kOfText) * other); };
  return {part(text.red(), ground.red()), part(text.green(), ground.green()), part(text.blue(), ground.blue())};
}

}  // namespace

void BoxStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                             const QWidget* widget) const {
  QProxyStyle::drawPrimitive(element, option, painter, widget);
  const bool round = element == PE_IndicatorRadioButton;
  if ((element != PE_IndicatorCheckBox && !round) || baseStyle()->name() != "fusion") return;
  const QColor ground = option->palette.color(QPalette::Base);
  if (ground.lightness() >= kDarkest) return;
  const QRectF frame = QRectF(option->rect).adjusted(kHalfPixel, kHalfPixel, -kHalfPixel, -kHalfPixel);
  painter->save();
  painter->setRenderHint(QPainter::Antialiasing);
  painter->setBrush(Qt::NoBrush);
  painter->setPen(FrameOn(ground, option->palette.color(QPalette::Text)));
  if (round) {
    painter->drawEllipse(frame);
  } else {
    painter->drawRoundedRect(frame, kCorner, kCorner);
  }
  painter->restore();
}

}  // namespace corvane::window
