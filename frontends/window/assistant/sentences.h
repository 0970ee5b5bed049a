#pragma once

#include <map>
#include <vector>

#include <QString>

class QLabel;
class QWidget;

namespace corvane::window {

/// What a dialog says that stands in no caption: sentences and titles that language files replace like captions.
class Sentences {
 public:
  struct Row {
    int text_id = 0;
    QString text;  ///< "%1" and the like stand for what is put in
  };

  /// Hidden labels of `owner` hold the texts.
  Sentences(const std::vector<Row>& rows, QWidget& owner);

  /// The sentence as it is now; empty when there is none of that ID.
  [[nodiscard]] QString operator[](int text_id) const;

 private:
  std::map<int, QLabel*> labels_;
};

}  // namespace corvane::window
