#pragma once

#include <array>
#include <functional>

#include <QDialog>

#include "link/port_choices.h"
#include "window/assistant/sentences.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTreeWidget;
class QVBoxLayout;

namespace corvane::window {

/// Gives a port number its device, chosen from those found or typed, and explains permissions.
class PortDialog : public QDialog {
 public:
  /// `choices` must outlive the dialog.
  explicit PortDialog(PortChoices& choices, QWidget* parent = nullptr);

  /// Looks for devices and opens the dialog for one port number; returns at once.
  void OpenFor(int number);

  /// A number stands for another device now.
  std::function<void()> assignment_changed;
  /// The port number that a use (0 the radio base station, 1 the hand-held unit) has now; none changes nothing.
  std::function<int(int use)> number_of;
  /// The person gives a use the number that is shown.
  std::function<void(int use, int number)> number_chosen;
  /// The person asks for the guide.
  std::function<void()> help_asked;

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void AddPortSelector(QVBoxLayout& layout);
  void AddDeviceList(QVBoxLayout& layout);
  void AddDeviceField(QVBoxLayout& layout);
  void AddPermissionHelp(QVBoxLayout& layout);
  void OrderTabs();
  void Connect();

  /// Shows the ports and devices as they are now; what was typed stays.
  void LookAgain();
  void FillPorts();
  void FillDevices();
  /// Shows what the chosen number stands for, in the field and in the list as well.
  void ShowPort();
  void ShowState();
  void ShowCheck();
  void ShowProblem(const QString& problem);
  void TakeFromList();
  void Assign(const QString& device);
  [[nodiscard]] int Number() const;

  PortChoices& choices_;
  Sentences sentences_;
  QComboBox* ports_ = nullptr;
  QLabel* state_ = nullptr;
  std::array<QPushButton*, 2> uses_{};
  QTreeWidget* devices_ = nullptr;
  QPushButton* look_again_ = nullptr;
  QLineEdit* device_ = nullptr;
  QLabel* check_ = nullptr;
  QPushButton* use_ = nullptr;
  QPushButton* built_in_ = nullptr;
  QPushButton* close_ = nullptr;
};

}  // namespace corvane::window
