#pragma once

#include <functional>

#include <QLineEdit>

#include "lang/phrases.h"

namespace corvane::window {

/// A date with its time, typed or moved by a day with arrow up and down.
///
/// What is typed counts with Enter, or when the field is left; what is no date is told of and not taken.
class TimeField : public QLineEdit {
 public:
  explicit TimeField(const char* name);

  /// Names months in these words from then on.
  void SetPhrases(const Phrases& phrases);
  /// Shows a time; 0 is none.
  void SetSeconds(double seconds);
  [[nodiscard]] double seconds() const { return seconds_; }
  [[nodiscard]] QSize sizeHint() const override;

  std::function<void()> chosen;                     ///< another time, by the person
  std::function<void(const QString& why)> refused;  ///< a text that is no date

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  /// Takes what was typed; false when it is no date.
  bool Take();
  void Choose(double seconds);
  [[nodiscard]] QString Shown() const;

  Phrases phrases_;
  double seconds_ = 0;
};

}  // namespace corvane::window
