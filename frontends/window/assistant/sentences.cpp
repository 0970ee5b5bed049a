#include "window/assistant/sentences.h"

#include <QLabel>

namespace corvane::window {

Sentences::Sentences(const std::vector<Row>& rows, QWidget& owner) {
  for (const Row& row : rows) {
    auto* label = new QLabel(row.text, &owner);
    label->setObjectName("sentence" + QString::number(row.text_id));
    label->setProperty("textId", row.text_id);
    label->hide();
    labels_[row.text_id] = label;
  }
}

QString Sentences::operator[](int text_id) const {
  const auto found = labels_.find(text_id);
  return found != labels_.end() ? found->second->text() : QString();
}

}  // namespace corvane::window
