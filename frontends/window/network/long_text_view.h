#pragma once

#include <QPlainTextEdit>
#include <QString>
#include <QTimer>

namespace corvane::window {

/// A text of any length to be read, selected and copied. A long one is put in bit by bit: the window answers meanwhile.
class LongTextView : public QPlainTextEdit {
 public:
  explicit LongTextView(QWidget* parent);

  /// Shows a text. Where it is the one that is shown, what is selected in it stays selected.
  void Show(const QString& text);
  /// All of the text, whether it is put in yet or not.
  [[nodiscard]] const QString& text() const { return text_; }

 private:
  void PutMore();

  QString text_;
  qsizetype put_ = 0;  ///< so much of it
  QTimer more_;
};

}  // namespace corvane::window
