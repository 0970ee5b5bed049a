#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>

#include <QPointer>

#include "platform/dialogs.h"
#include "platform/event_loop.h"
#include "qt/message_box.h"

class QDialog;
class QWidget;

namespace corvane {

/// Boxes and choices as dialogs over the main window, shown modal and waited for through the one loop.
class QtDialogs : public Dialogs {
 public:
  explicit QtDialogs(EventLoop& loop) : loop_(loop) {}
  ~QtDialogs() override;

  /// The window that the dialogs stand over; none before it is shown.
  void SetParent(QWidget* parent) { parent_ = parent; }

  BoxId OpenBox(const BoxContents& contents, std::function<void(int position)> on_click) override;
  void SetCountDown(BoxId box, const std::string& text) override;
  void CloseBox(BoxId box) override;
  std::optional<std::string> AskText(const std::string& title, const std::string& prompt,
                                     const std::string& initial) override;
  std::optional<std::string> ChooseFile(const std::string& title, const std::string& filter,
                                        const std::string& folder) override;
  std::optional<std::string> ChooseFolder(const std::string& title, const std::string& folder) override;

  /// Takes away whatever is shown, and whatever is asked from now on gets no answer: the program ends.
  void CloseAll();

  /// Called after a message box over the main window has closed; not after a choice, which the person asked for.
  std::function<void()> on_box_closed;

 private:
  void Closed();
  /// Shows the dialog over the window, modal; returns at once.
  void Show(QDialog& dialog);
  /// Shows the dialog until it is answered; true when it was accepted. **Yields.**
  bool Run(QDialog& dialog);

  EventLoop& loop_;
  QPointer<QWidget> parent_;
  std::map<BoxId, QPointer<MessageBox>> boxes_;
  std::map<QDialog*, QPointer<QDialog>> shown_;
  BoxId last_box_ = 0;
  bool ending_ = false;
};

}  // namespace corvane
