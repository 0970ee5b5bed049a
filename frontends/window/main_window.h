#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include <QMainWindow>

#include "app/application.h"
#include "state/file_units.h"
#include "window/accessible_names.h"
#include "window/assistant/assistant.h"
#include "window/binder.h"
#include "window/captions.h"
#include "window/network/history_views.h"
#include "window/network/network_page.h"
#include "window/plot/plot_page.h"
#include "window/port_dialog.h"
#include "window/toolkit_language.h"
#include "window/tray.h"

namespace Ui {
class MainWindow;
}
class QLineEdit;

namespace corvane::window {

/// The main window: the Form shown in widgets, and the window's own events handed to it. No logic of its own.
class MainWindow : public QMainWindow {
 public:
  /// Shows the Form of `app` until it is destroyed; both must outlive the window.
  MainWindow(Application& app, EventLoop& loop);
  ~MainWindow() override;

  [[nodiscard]] Captions& captions() { return captions_; }
  [[nodiscard]] const Captions& captions() const { return captions_; }
  /// Takes away the window's own dialogs: the program ends.
  void CloseDialogs();
  /// Opens the assistant that sets a network up; for the loop.
  void OpenAssistant() { assistant_->Open(); }

 protected:
  void showEvent(QShowEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  [[nodiscard]] BindingContext Context();
  void ApplyListColours();
  void AddUnitFilter();
  void AddTray();
  /// The language file was read.
  void TakePhrases(const Phrases& phrases);
  /// How the network stands was read.
  void TakeStatus(const NetworkStatus& status, const std::string& headline);
  /// What stands beside a row of a list.
  [[nodiscard]] std::string NoteOf(const Control& list, const std::string& row);
  /// A control has changed and is about to be shown.
  void TakeChange(const Control& control, Aspect aspect);
  void AddPages();
  void AddTabShortcuts();
  void AddPortDialog();
  void AddAssistant();
  /// Shows the captions of a language file.
  void ShowLanguage(const std::string& file);
  void ShowPorts();
  void NameNewRecords();
  /// Shows the page of a name field and puts the focus there, with the text selected.
  void EditName(QLineEdit& name);

  Application& app_;
  EventLoop& loop_;
  std::unique_ptr<Ui::MainWindow> ui_;
  Captions captions_;
  ToolkitLanguage toolkit_;
  FileUnits file_units_;
  Announcer* announcer_ = nullptr;
  HistoryViews* history_views_ = nullptr;
  Tray* tray_ = nullptr;
  std::int64_t last_round_ = -1;  ///< key of the last one that has ended; -1 until that is known
  std::unique_ptr<Binder> binder_;
  NetworkPage* network_ = nullptr;
  PlotPage* plot_ = nullptr;
  PortDialog* ports_ = nullptr;
  Assistant* assistant_ = nullptr;
};

}  // namespace corvane::window
