#pragma once

#include <functional>

#include <QDialog>

#include "platform/dialogs.h"

class QLabel;

namespace corvane {

/// The program's own message box: text, icon, up to three buttons and a count-down.
class MessageBox : public QDialog {
 public:
  /// `on_done` gets the position of the button, from 1, or 0 when the box was closed without one; called once.
  MessageBox(QWidget* parent, const BoxContents& contents, std::function<void(int position)> on_done);

  void SetCountDown(const QString& text);

 private:
  QWidget* MakeTextRow(const BoxContents& contents);
  QWidget* MakeButtonRow(const BoxContents& contents);

  QLabel* closes_in_;
  QLabel* count_down_;
  QLabel* seconds_;
};

}  // namespace corvane
