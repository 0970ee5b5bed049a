#include "window/main_window.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include <QApplication>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QScreen>
#include <QScrollArea>
#include <QShortcut>
#include <QTabBar>
#include <QVBoxLayout>

#include "setup/practice.h"
#include "ui_main_window.h"
#include "window/access_keys.h"
#include "window/assistant/practice_banner.h"
#include "window/colours.h"
#include "window/key_codes.h"
#include "window/list_filter.h"

namespace corvane::window {
namespace {

constexpr int kCharactersOfUnitList = 30;
constexpr double kShareOfScreen = 0.9;
constexpr const char* kIconResource = ":/corvane.png";
constexpr int kFewestRows = 3;        ///< of the list of units
constexpr int kUnitFilterText = 816;  ///< and its tool tip the next

/// Hands a key to a control: the key that went down, then the character that it types. True when it is discarded.
template <class Target>
bool HandKey(Target& target, const QKeyEvent& event) {
  if (target.Key(KeyCode(event.key()), true)) return true;
  const QString typed = event.text();
  return !typed.isEmpty() && target.Key(typed.at(0).unicode(), false);
}

}  // namespace

MainWindow::MainWindow(Application& app, EventLoop& loop)
    : app_(app),
      loop_(loop),
      ui_(std::make_unique<Ui::MainWindow>()),
      captions_(app.form(), *this),
      file_units_(app.names(), app.registry(), app.form().Lbl_Path) {
  ReadValuesWithTheirCaptions();
  ui_->setupUi(this);
  ui_->splitter->setStretchFactor(0, 0);
  ui_->splitter->setStretchFactor(1, 1);
  // The names of the units need less than a list asks for; the pages need all there is on a small screen.
  ui_->splitter->setSizes({fontMetrics().averageCharWidth() * kCharactersOfUnitList, width()});
  resize(size().boundedTo(screen()->availableSize() * kShareOfScreen));
  setWindowIcon(QIcon(kIconResource));
  AddPages();
  ApplyListColours();
  const auto areas = findChildren<QScrollArea*>();
  for (QScrollArea* area : areas) area->setFocusPolicy(Qt::NoFocus);
  ui_->Cmd_Cancel->installEventFilter(this);
  AddPortDialog();
  AddAssistant();
  NameNewRecords();
  AddUnitFilter();
  announcer_ = new Announcer(app_.form(), ui_->bottomPane);
  AddTray();
  captions_.on_phrases = [this](const Phrases& phrases) { TakePhrases(phrases); };
  network_->on_status = [this](const NetworkStatus& status, const std::string& headline) {
    TakeStatus(status, headline);
  };
  binder_ = std::make_unique<Binder>(app_.form(), Context());
  binder_->on_change = [this](const Control& control, Aspect aspect) { TakeChange(control, aspect); };
  app_.form().SetView(binder_.get());
}

MainWindow::~MainWindow() {
  app_.form().SetView(nullptr);
}

BindingContext MainWindow::Context() {
  return {
      .window = *this,
      .loop = loop_,
      .port_text = [this](int number) { return app_.ports().Look(number).text; },
      .problem_of = [this](const Control& field) { return app_.checks().ProblemOf(field); },
      .show_hint = [this](const std::string& problem) { ui_->hintLabel->setText(QString::fromStdString(problem)); },
      .note_of = [this](const Control& list, const std::string& row) { return NoteOf(list, row); },
  };
}

void MainWindow::ApplyListColours() {
  const auto widgets = findChildren<QWidget*>();
  for (QWidget* widget : widgets) {
    if (!widget->property("cream").toBool()) continue;
    QPalette colours = widget->palette();
    for (const auto role : {QPalette::Base, QPalette::AlternateBase, QPalette::Button}) {
      colours.setColor(role, kCream);
    }
    for (const auto role : {QPalette::Text, QPalette::ButtonText, QPalette::WindowText}) {
      colours.setColor(role, kTextOnCream);
      colours.setColor(QPalette::Disabled, role, kDisabledOnCream);
    }
    widget->setPalette(colours);
  }
}

void MainWindow::AddPages() {
  network_ = new NetworkPage(app_, loop_);
  plot_ = new PlotPage(app_);
  ui_->tabs->addTab(network_, "Network");
  ui_->tabs->addTab(plot_, "Plot");
  const auto show_plot = [this](std::int64_t position, DateTime day) {
    ui_->tabs->setCurrentWidget(plot_);
    plot_->ShowUnit(position, day);
  };
  network_->show_plot = [show_plot](std::int64_t position) { show_plot(position, DateTime()); };
  network_->FollowCommand(*ui_->Cmd_DownloadAll_1);
  history_views_ = new HistoryViews(app_, loop_, *network_->findChild<QTabWidget*>("networkViews"));
  history_views_->setParent(this);
  history_views_->show_plot = show_plot;
  AddTabShortcuts();
  Captions::NumberPages(*ui_->tabs);
  // Intended: the pages keep their numbers for language files and keys; these two only stand first.
  ui_->tabs->tabBar()->moveTab(ui_->tabs->indexOf(network_), 0);
  ui_->tabs->tabBar()->moveTab(ui_->tabs->indexOf(plot_), 1);
  ui_->tabs->setCurrentWidget(network_);
}

void MainWindow::AddUnitFilter() {
  auto* filter = new ListFilter(*ui_->Lst_Units);
  // The window has to fit a small screen at twice its size, the field above included.
  ui_->Lst_Units->setMinimumHeight(kFewestRows * fontMetrics().lineSpacing());
  auto* row = new QHBoxLayout;
  auto* label = new QLabel("Find:");
  label->setObjectName("unitFilterLabel");
  label->setProperty("textId", kUnitFilterText);
  label->setBuddy(filter);
  row->addWidget(label);
  row->addWidget(filter);
  static_cast<QVBoxLayout*>(ui_->group_3->layout())->insertLayout(0, row);
  filter->setObjectName("unitFilter");
  filter->setToolTip("Shows the units whose name holds this text, and the selected one");
  filter->setProperty("textId", kUnitFilterText + 1);
}

void MainWindow::AddTray() {
  tray_ = new Tray(windowIcon(), "Corvane", this);
  tray_->on_click = [this] {
    if (isMinimized()) showNormal();
    show();
    raise();
    activateWindow();
  };
}

void MainWindow::TakePhrases(const Phrases& phrases) {
  network_->SetPhrases(phrases);
  history_views_->SetPhrases(phrases);
  tray_->SetPhrases(phrases);
  plot_->SetPhrases(phrases);
  app_.setup().SetPhrases(phrases);
  toolkit_.Show(QString::fromStdString(phrases.Text(kLanguageCode)));
}

void MainWindow::TakeStatus(const NetworkStatus& status, const std::string& headline) {
  tray_->Take(status, headline);
  const bool runs = status.last.ended.IsNone();
  const std::int64_t ended = runs ? std::max<std::int64_t>(status.last.key - 1, 0) : status.last.key;
  const std::int64_t before = std::exchange(last_round_, ended);
  if (!runs && before >= 0 && before < ended) announcer_->Say(QString::fromStdString(status.last_round));
}

std::string MainWindow::NoteOf(const Control& list, const std::string& row) {
  return &list == &app_.form().Lst_LocalFiles ? file_units_.NameOf(row) : "";
}

void MainWindow::TakeChange(const Control& control, Aspect aspect) {
  const Form& form = app_.form();
  const bool rows = aspect == Aspect::Rows || aspect == Aspect::Row;
  if (rows && (&control == &form.Lst_Units || &control == &form.Lst_LocalFiles)) file_units_.Forget();
  if (&control == &form.Cmd_Close && aspect == Aspect::Enabled) history_views_->SetIdle(control.enabled());
  if (&control == &form.Chk_TrayIcon) tray_->SetOn(form.Chk_TrayIcon.ticked());
  announcer_->Hear(control, aspect);
}

void MainWindow::AddTabShortcuts() {
  for (int tab = 0; tab < ui_->tabs->count(); ++tab) {
    const auto digit = static_cast<Qt::Key>(Qt::Key_0 + (tab + 1) % 10);
    auto* shortcut = new QShortcut(QKeySequence(Qt::ALT | digit), this);
    QWidget* const page = ui_->tabs->widget(tab);
    connect(shortcut, &QShortcut::activated, this, [this, page] { ui_->tabs->setCurrentWidget(page); });
  }
}

void MainWindow::AddPortDialog() {
  ports_ = new PortDialog(app_.ports(), this);
  NameControls(*ports_);
  ports_->assignment_changed = [this] { ShowPorts(); };
  ports_->number_of = [this](int use) { return int{app_.form().Cmb_Port[use].SelectedItemData()}; };
  ports_->number_chosen = [this](int use, int number) {
    // A search for the port goes through the numbers.
    if (!app_.slot().Taken()) app_.form().Cmb_Port[use].SelectByItemData(number);
  };
  ports_->help_asked = [this] { loop_.Post([this] { app_.form().mnu_Help.Click(0); }); };
  connect(ui_->portsButton, &QAbstractButton::clicked, this, [this] {
    // In the words of a language file that was read since.
    NameControls(*ports_);
    ports_->OpenFor(app_.form().Cmb_Port[0].SelectedItemData());
  });
}

void MainWindow::AddAssistant() {
  assistant_ = new Assistant(app_, loop_, this);
  assistant_->show_language = [this](const std::string& file) { ShowLanguage(file); };
  assistant_->put_in = [this] {
    ui_->tabs->setCurrentWidget(network_);
    // The units as they are now stand there before the first of them is asked.
    app_.history().FollowUnits();
    network_->Refresh();
  };
  assistant_->name_controls = NameControls;
  assistant_->practise = StartPractice;
  network_->set_up = [this] { OpenAssistant(); };
  auto* banner = new PracticeBanner(ui_->centralWidget);
  banner->ended = [this] { loop_.Post([this] { app_.commands().Close(false); }); };
  banner->setVisible(IsPractice(app_.app().Folder()));
  static_cast<QVBoxLayout*>(ui_->centralWidget->layout())->insertWidget(0, banner);
}

void MainWindow::ShowLanguage(const std::string& file) {
  captions_.RestoreBuiltIn();
  app_.LoadCaptions(file, captions_);
  SpreadAccessKeys(*ui_->menuBar, *ui_->tabs, *this);
  NameControls(*this);
  assistant_->ShowTexts();
}

void MainWindow::CloseDialogs() {
  ports_->reject();
  assistant_->Abandon();
}

void MainWindow::NameNewRecords() {
  for (const auto& [button, menu, name] : {std::tuple(ui_->Cmd_Units_0, ui_->mnu_Units, ui_->Txt_UnitName),
                                           std::tuple(ui_->Cmd_Relays_0, ui_->mnu_Relays, ui_->Txt_RelayName),
                                           std::tuple(ui_->Cmd_Clients_0, ui_->mnu_Clients, ui_->Txt_ClientName)}) {
    // Behind the command, which is posted too.
    const auto after_command = [this, field = name] {
      loop_.Post([this, field] { loop_.Post([this, field] { EditName(*field); }); });
    };
    connect(button, &QAbstractButton::clicked, this, after_command);
    connect(menu, &QMenu::triggered, this, [menu = menu, after_command](const QAction* entry) {
      if (entry == menu->actions().value(0)) after_command();
    });
  }
}

void MainWindow::EditName(QLineEdit& name) {
  if (!name.isEnabled() || QApplication::activeModalWidget() != nullptr) return;
  for (QWidget* page = &name; page != nullptr; page = page->parentWidget()) {
    if (ui_->tabs->indexOf(page) >= 0) ui_->tabs->setCurrentWidget(page);
  }
  name.setFocus(Qt::TabFocusReason);
}

void MainWindow::ShowPorts() {
  for (const Selector& port : app_.form().Cmb_Port) binder_->ControlChanged(port, Aspect::Rows, 0);
}

void MainWindow::showEvent(QShowEvent* event) {
  // The devices behind the numbers were read behind the numbers themselves.
  ShowPorts();
  SpreadAccessKeys(*ui_->menuBar, *ui_->tabs, *this);
  NameControls(*this);
  QMainWindow::showEvent(event);
}

void MainWindow::closeEvent(QCloseEvent* event) {
  // What runs has to unwind first; then the main loop ends.
  event->ignore();
  loop_.Post([this] { app_.commands().Close(false); });
}

void MainWindow::changeEvent(QEvent* event) {
  if (event->type() == QEvent::WindowStateChange) app_.form().Frm_Main.SetMinimised(isMinimized());
  QMainWindow::changeEvent(event);
}

void MainWindow::keyPressEvent(QKeyEvent* event) {
  // What a field does not use (a lone Shift, Return) comes up to the window; it was still typed into the field.
  const bool in_field = qobject_cast<QLineEdit*>(focusWidget()) != nullptr;
  const bool for_window = !in_field || event->key() == Qt::Key_Escape || event->key() == Qt::Key_F1;
  if (!for_window || !HandKey(app_.form().Frm_Main, *event)) QMainWindow::keyPressEvent(event);
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress) return HandKey(app_.form().Cmd_Cancel, static_cast<QKeyEvent&>(*event));
  // A space bar that went down without effect comes up without one.
  if (event->type() == QEvent::KeyRelease) return static_cast<QKeyEvent*>(event)->key() == Qt::Key_Space;
  return QMainWindow::eventFilter(watched, event);
}

}  // namespace corvane::window
