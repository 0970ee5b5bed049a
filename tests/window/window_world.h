#pragma once

#include <memory>
#include <string>

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QTabWidget>
#include <QTest>

#include "support/world.h"
#include "window/main_window.h"

namespace corvane::test {

/// The whole application on a fake machine and in virtual time, in a real window.
class WindowWorld : public World {
 public:
  explicit WindowWorld(const std::string& settings = "", HistoryStore* kept = nullptr) : World(settings) {
    history = kept;
    app_ = std::make_unique<Application>(Platform{loop, port, shell, dialogs, internet, zip, help, {}, history},
                                         home.path());
    window_ = std::make_unique<window::MainWindow>(*app_, loop);
  }

  /// Runs the creation steps, shows the window on the page of a unit and activates it.
  void Open(const std::string& switches = "") {
    app_->life().OnWindowCreate();
    ShowPage("tabUnit");
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
  [[nodiscard]] QAbstractButton& Button(const char* name) { return Widget<QAbstractButton>(name); }
  [[nodiscard]] QLineEdit& Field(const char* name) { return Widget<QLineEdit>(name); }
  [[nodiscard]] QAbstractItemView& List(const char* name) { return Widget<QAbstractItemView>(name); }
  [[nodiscard]] QAction& Entry(const char* menu, int entry) { return *Widget<QMenu>(menu).actions().at(entry); }
  [[nodiscard]] QModelIndex Cell(const char* list, int row, int column = 0) {
    return List(list).model()->index(row, column);
  }
  [[nodiscard]] int Rows(const char* list) { return List(list).model()->rowCount(); }
  /// Lets posted commands run.
  void Settle() { loop.Poll(); }

  void Click(const char* button) {
    Button(button).click();
    Settle();
  }
  void ClickRow(const char* list, int row, Qt::KeyboardModifiers keys = {}) {
    QTest::mouseClick(List(list).viewport(), Qt::LeftButton, keys, List(list).visualRect(Cell(list, row)).center());
    Settle();
  }
  void ChooseRow(const char* list, int row) {
    List(list).setCurrentIndex(Cell(list, row));
    Settle();
  }
  void Choose(const char* menu, int entry) {
    Entry(menu, entry).trigger();
    Settle();
  }
  void Press(QWidget& widget, Qt::Key key) {
    QTest::keyClick(&widget, key);
    Settle();
  }
  void ShowPage(const char* page) { Widget<QTabWidget>("tabs").setCurrentWidget(&Widget<QWidget>(page)); }
  void Type(const char* field, const QString& text) {
    Field(field).selectAll();
    QTest::keyClicks(&Field(field), text);
  }

  HelpFiles help{home.Name("guide/index.html"), home.Name("guide/index-of-words.html")};

 private:
  std::unique_ptr<Application> app_;
  std::unique_ptr<window::MainWindow> window_;
};

}  // namespace corvane::test
