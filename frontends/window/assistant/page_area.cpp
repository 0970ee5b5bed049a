#include "window/assistant/page_area.h"

#include <QEvent>
#include <QLayout>

namespace corvane::window::assistant {

PageArea::PageArea(QWidget& content) {
  setWidget(&content);
  setWidgetResizable(true);
  setFrameShape(QFrame::NoFrame);
  setFocusPolicy(Qt::NoFocus);
  content.installEventFilter(this);
}

void PageArea::resizeEvent(QResizeEvent* event) {
  QScrollArea::resizeEvent(event);
  FitHeight();
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
