#pragma once

#include <memory>
#include <string>

#include <QAbstractButton>
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QTest>

#include "support/world.h"
#include "window/main_window.h"

namespace corvane::test {

/// The whole application on a fake machine and in virtual time, in a real window.
class WindowWorld : public World {
 public:
  explicit WindowWorld(const std::string& settings = "") : World(settings) {
    app_ = std::make_unique<Application>(Platform{loop, port, shell, dialogs, internet, zip, help}, home.path());
    window_ = std::make_unique<window::MainWindow>(*app_, loop);
  }

  /// Runs the creation steps, shows the window and activates it.
  void Open(const std::string& switches = "") {
    app_->life().OnWindowCreate();
    window_->show();
    app_->life().OnWindowActivate(switches);
  }

  [[nodiscard]] Application& app() { return *app_; }
  [[nodiscard]] Form& form() { return app_->form(); }
  [[nodiscard]] window::MainWindow& window() { return *window_; }

  /// The widget of that name as the kind asked for.
  template <class Kind>
  [[nodiscard]] Kind& Widget(const char* name) {
    auto* found = window_->findChild<Kind*>(name);
    if (found == nullptr) throw std::runtime_error(std::string("no widget ") + name);
    return *found;
  }
  /// Lets posted commands run.
  void Settle() { loop.Poll(); }

  void Click(const char* button) {
    Widget<QAbstractButton>(button).click();
    Settle();
  }
  void Choose(const char* menu, int entry) {
    Widget<QMenu>(menu).actions().at(entry)->trigger();
    Settle();
  }
  void Type(const char* field, const QString& text) {
    auto& edit = Widget<QLineEdit>(field);
    edit.selectAll();
    QTest::keyClicks(&edit, text);
  }
  /// Ends the typing in a field as leaving it does.
  void Leave(const char* field) {
    Q_EMIT Widget<QLineEdit>(field).editingFinished();
    Settle();
  }

  HelpFiles help{"/guide/index.html", "/guide/index-of-words.html"};

 private:
  std::unique_ptr<Application> app_;
  std::unique_ptr<window::MainWindow> window_;
};

}  // namespace corvane::test
