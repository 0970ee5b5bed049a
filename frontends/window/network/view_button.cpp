#include "window/network/view_button.h"

#include <QPushButton>

namespace corvane::window {

QPushButton* NewButton(const QString& text, const QString& tip, int text_id, const char* name, QWidget* parent) {
  auto* button = new QPushButton(text, parent);
  button->setObjectName(name);
  button->setToolTip(tip);
  button->setProperty("textId", text_id);
  button->setAutoDefault(false);
  return button;
}

}  // namespace corvane::window
