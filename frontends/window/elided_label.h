#pragma once

#include <QLabel>

namespace corvane::window {

/// A label that shortens a text that does not fit in its middle and shows all of it as the tool tip.
class ElidedLabel : public QLabel {
 public:
  using QLabel::QLabel;
  /// One line, whatever the text is: a long text that changes often is not measured for the layout.
  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  bool event(QEvent* event) override;

 private:
  [[nodiscard]] QString Shortened() const;
};

}  // namespace corvane::window
