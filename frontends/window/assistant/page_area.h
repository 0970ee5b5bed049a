#pragma once

#include <QScrollArea>

namespace corvane::window::assistant {

/// What a page holds, to be scrolled only where the window is too small for it: sentences that wrap get the lines that
/// they need at the width there is. What has the focus is in sight, however it got it.
class PageArea : public QScrollArea {
 public:
  explicit PageArea(QWidget& content);

  /// Scrolls to a part of the page, as far as it has to.
  void Reveal(QWidget& part);

 protected:
  void resizeEvent(QResizeEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void FitHeight();
};

}  // namespace corvane::window::assistant
