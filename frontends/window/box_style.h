#pragma once

#include <QProxyStyle>

namespace corvane::window {

/// The style of the desktop, with boxes to be ticked that are seen on a dark ground too: Fusion draws their frame
/// darker than the window there.
class BoxStyle : public QProxyStyle {
 public:
  using QProxyStyle::QProxyStyle;

  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget = nullptr) const override;
};

}  // namespace corvane::window
