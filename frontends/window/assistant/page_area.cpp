#include "window/assistant/page_area.h"

#include <QApplication>
#include <QEvent>
#include <QLayout>

namespace corvane::window::assistant {

PageArea::PageArea(QWidget& content) {
  setWidget(&content);
  setWidgetResizable(true);
  setFrameShape(QFrame::NoFrame);
  setFocusPolicy(Qt::NoFocus);
  content.installEventFilter(this);
  connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) {
    // A click must not lose what it points at.
    if (now != nullptr && QApplication::mouseButtons() == Qt::NoButton) Reveal(*now);
  });
}

void PageArea::Reveal(QWidget& part) {
  if (widget()->isAncestorOf(&part)) ensureWidgetVisible(&part);
}

void PageArea::resizeEvent(QResizeEvent* event) {
  QScrollArea::resizeEvent(event);
  FitHeight();
  if (QWidget* const focused = QApplication::focusWidget(); focused != nullptr) Reveal(*focused);
}

bool PageArea::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::LayoutRequest) FitHeight();
  return QScrollArea::eventFilter(watched, event);
}

void PageArea::FitHeight() {
  const QLayout& layout = *widget()->layout();
  if (layout.hasHeightForWidth()) widget()->setMinimumHeight(layout.minimumHeightForWidth(viewport()->width()));
}

}  // namespace corvane::window::assistant
