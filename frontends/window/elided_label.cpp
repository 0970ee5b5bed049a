#include "window/elided_label.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

namespace corvane::window {

QSize ElidedLabel::sizeHint() const {
  const QMargins around = contentsMargins();
  return {0, fontMetrics().height() + around.top() + around.bottom() + 2 * margin()};
}

QSize ElidedLabel::minimumSizeHint() const {
  return sizeHint();
}

QString ElidedLabel::Shortened() const {
  return fontMetrics().elidedText(text().simplified(), Qt::ElideMiddle, contentsRect().width());
}

void ElidedLabel::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  drawFrame(&painter);
  style()->drawItemText(&painter, contentsRect(), static_cast<int>(alignment()), palette(), isEnabled(), Shortened(),
                        foregroundRole());
}

bool ElidedLabel::event(QEvent* event) {
  if (event->type() == QEvent::ToolTip && Shortened() != text()) {
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), text(), this);
    return true;
  }
  return QLabel::event(event);
}

}  // namespace corvane::window
