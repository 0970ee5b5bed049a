// Takes the pictures of the user guide from the window itself, while it works on a simulated network.
#include <cstdint>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QStyleFactory>
#include <QTabWidget>
#include <QTableView>
#include <QTreeView>
#include <QWizard>

#include "app/application.h"
#include "base/status.h"
#include "curl/curl_internet_client.h"
#include "desktop/posix_shell.h"
#include "qt/qt_dialogs.h"
#include "qt/qt_loop.h"
#include "serial/termios_port.h"
#include "sqlite/sqlite_history_store.h"
#include "window/assistant/assistant.h"
#include "window/box_style.h"
#include "window/main_window.h"
#include "window/plot/plot_page.h"
#include "zip/libzip_component.h"

namespace corvane::window {
namespace {

constexpr QSize kWindowSize(1120, 680);
constexpr int kPortsGroup = 3;
constexpr int kFilesCommand = 2;
constexpr std::int32_t kNumberOfAbsentDevice = 9;
constexpr int kPassesUntilPainted = 10;
constexpr int kGapMapView = 1;
constexpr int kRoundsView = 2;
constexpr int kUnitWithGaps = 3;       ///< place in the list, from 0
constexpr int kDayWithAGap = 69;       ///< of the 90 of the gap map
constexpr int kReadingOfCursor = 130;  ///< in the plot, from the newest

QPalette DarkColours() {
  const QColor dark(45, 45, 48);
  const QColor light(225, 225, 225);
  QPalette colours(dark);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
    colours.setColor(role, light);
    colours.setColor(QPalette::Disabled, role, QColor(130, 130, 130));
  }
  colours.setColor(QPalette::Base, QColor(30, 30, 32));
  colours.setColor(QPalette::AlternateBase, dark);
  colours.setColor(QPalette::Highlight, QColor(42, 100, 160));
  colours.setColor(QPalette::HighlightedText, Qt::white);
  return colours;
}

/// The simulated port, among devices such as a field office has.
class PicturePort : public TermiosPort {
 public:
  using TermiosPort::TermiosPort;
  [[nodiscard]] std::vector<SerialDeviceInfo> ListDevices() const override {
    return {{"/dev/serial/by-id/usb-FTDI_FT232R_USB_UART_A50285BI-if00-port0", "/dev/ttyUSB0", ""},
            {"/dev/serial/by-id/usb-Prolific_PL2303_Serial-if00-port0", "/dev/ttyUSB1", ""},
            {"/dev/ttyS0", "/dev/ttyS0", ""}};
  }
};

/// The program as it runs for a person, on a folder and a network made for the pictures.
class Photographer {
 public:
  Photographer(std::string folder, QString target)
      : port_(loop_, loop_),
        dialogs_(loop_),
        internet_(loop_),
        zip_(loop_),
        app_(Platform{loop_, port_, shell_, dialogs_, internet_, zip_, {}, {}, &history_}, std::move(folder)),
        window_(app_, loop_),
        target_(std::move(target)) {
    window_.resize(kWindowSize);
  }

  void TakeAll() {
    app_.life().OnWindowCreate();
    window_.show();
    app_.life().OnWindowActivate("");
    Form& form = app_.form();
    form.Chk_ShowTrace.SetTicked(true);
    form.Chk_Direct.SetTicked(true);
    form.Cmd_DownloadAll[1].Click();
    form.Lst_Units.SetCurrent(2);
    ShowRemoteFolder("orchard");
    TakeNetwork();
    ShowPage("tabUnit");
    Take("unit");
    TakeTabs();
    TakePortDialog();
    TakeAssistant();
    TakePortProblem();
    TakeWhileDownloading();
  }

 private:
  /// Lists the server's folder, and goes into one of the folders there.
  void ShowRemoteFolder(const std::string& folder) {
    Form& form = app_.form();
    form.Cmd_FTP[kFilesCommand].Click();
    std::int64_t row = 0;
    while (row < form.Lst_RemoteFiles.count() && form.Lst_RemoteFiles.text(row) != folder + "\t[DIR]") ++row;
    if (row == form.Lst_RemoteFiles.count()) throw RunTimeError("the FTP server has no folder " + folder);
    form.Lst_RemoteFiles.Open(row);
  }

  /// How things stand behind a round; the row of the worst unit is chosen, and a day of one that lacks readings.
  void TakeNetwork() {
    ShowPage("tabNetwork");
    auto* table = window_.findChild<QTreeView*>("stationTable");
    while (table->model()->rowCount() == 0) loop_.Yield();
    table->setCurrentIndex(table->model()->index(0, 0));
    Take("network");
    ShowTab("networkViews", kGapMapView);
    auto* map = window_.findChild<QTableView*>("gapMapTable");
    while (map->model()->rowCount() == 0) loop_.Yield();
    map->setCurrentIndex(map->model()->index(kUnitWithGaps, kDayWithAGap));
    Take("gap-map");
    ShowTab("networkViews", kRoundsView);
    const auto* sentences = window_.findChild<QPlainTextEdit*>("roundsText");
    while (sentences->toPlainText().isEmpty()) loop_.Yield();
    Take("rounds");
  }

  void TakeTabs() {
    const std::vector<std::pair<const char*, const char*>> pages = {
        {"tabRelays", "relays"}, {"tabClients", "clients"}, {"tabFiles", "files"},
        {"tabFTP", "ftp"},       {"tabLog", "log"},         {"tabTerminal", "terminal"}};
    for (const auto& [page, name] : pages) {
      ShowPage(page);
      Take(name);
    }
    TakePlot();
    ShowPage("tabSettings");
    const std::vector<const char*> groups = {"settings-folders", "settings-readings", "settings-lookups",
                                             "settings-ports",   "settings-schedule", "settings-network"};
    for (std::size_t group = 0; group < groups.size(); ++group) {
      ShowTab("settingsTabs", static_cast<int>(group));
      Take(groups[group]);
    }
  }

  /// A week with a gap: temperatures and battery, with the cursor on a reading.
  void TakePlot() {
    ShowPage("tabPlot");
    auto& plot = dynamic_cast<PlotPage&>(*window_.findChild<QWidget*>("tabPlot"));
    plot.ShowUnit(kUnitWithGaps + 1);
    while (plot.Busy()) loop_.Yield();
    Choose("plotLeft", "Temperature");
    Choose("plotRight", "Battery");
    Choose("plotSpan", "Week");
    while (plot.Busy()) loop_.Yield();
    for (int reading = 0; reading < kReadingOfCursor; ++reading) {
      QKeyEvent left(QEvent::KeyPress, Qt::Key_Left, Qt::NoModifier);
      QApplication::sendEvent(&plot.view(), &left);
    }
    Take("plot");
  }

  /// Chooses an entry as a person does.
  void Choose(const char* selector, const char* entry) {
    auto* box = window_.findChild<QComboBox*>(selector);
    const int place = box->findText(entry);
    if (place < 0) throw RunTimeError(std::string(selector) + " has no entry " + entry);
    box->setCurrentIndex(place);
    Q_EMIT box->activated(place);
  }

  /// A round over a port whose adapter is not there.
  void TakePortProblem() {
    Form& form = app_.form();
    const std::int32_t number = form.Cmb_Port[0].SelectedItemData();
    form.Cmb_Port[0].SelectByItemData(kNumberOfAbsentDevice);
    form.Cmd_ProcessAll[kGetDate].Click();
    ShowTab("settingsTabs", kPortsGroup);
    Take("port-problem");
    form.Cmb_Port[0].SelectByItemData(number);
  }

  void TakePortDialog() {
    ShowTab("settingsTabs", kPortsGroup);
    window_.findChild<QAbstractButton*>("portsButton")->click();
    Take("ports-dialog", *QApplication::activeModalWidget());
    window_.CloseDialogs();
  }

  /// The assistant as it shows a network that exists, for the guide of each language.
  void TakeAssistant() {
    auto& assistant = dynamic_cast<Assistant&>(*window_.findChild<QWizard*>("Assistant"));
    const std::string folder = app_.app().Folder() + "/";
    for (const auto& [language, suffix] : {std::pair("hvdeu.lng", "-de"), std::pair("hveng.lng", "")}) {
      assistant.show_language(folder + language);
      window_.OpenAssistant();
      for (const SetupPage page : kSetupPages) {
        if (page == SetupPage::Stations) Take(QString("set-up-stations") + suffix, assistant);
        if (page == SetupPage::Summary) Take(QString("set-up-summary") + suffix, assistant);
        assistant.next();
      }
      assistant.Abandon();
    }
  }

  void ShowPage(const char* page) {
    window_.findChild<QTabWidget*>("tabs")->setCurrentWidget(window_.findChild<QWidget*>(page));
  }
  void ShowTab(const char* tabs, int tab) { window_.findChild<QTabWidget*>(tabs)->setCurrentIndex(tab); }

  void Take(const QString& name) { Take(name, window_); }
  void Take(const QString& name, QWidget& widget) {
    for (int pass = 0; pass < kPassesUntilPainted; ++pass) loop_.Yield();
    const QString path = target_ + "/" + name + ".png";
    if (!widget.grab().save(path)) throw RunTimeError("cannot write " + path.toStdString());
    std::cout << path.toStdString() << "\n";
  }

  /// The main picture is taken in the middle of a round, once in each colour scheme.
  void TakeWhileDownloading() {
    const Form& form = app_.form();
    ShowPage("tabUnit");
    bool taken = false;
    const auto watch = loop_.MakeTimer([this, &form, &taken] {
      if (taken || form.Bar_Unit.value() < 40 || form.Bar_Download.value() < 40) return;
      taken = true;
      Take("main");
      QApplication::setPalette(DarkColours());
      Take("main-dark");
      app_.commands().Cancel();
    });
    watch->Start(20);
    app_.commands().DownloadAll(true, kRadioUnits, false);
    if (!taken) throw RunTimeError("the network did not answer");
  }

  QtLoop loop_;
  PosixShell shell_{"corvane"};
  PicturePort port_;
  QtDialogs dialogs_;
  CurlInternetClient internet_;
  LibzipComponent zip_;
  SqliteHistoryStore history_;
  Application app_;
  MainWindow window_;
  QString target_;
};

}  // namespace
}  // namespace corvane::window

int main(int argc, char** argv) {
  QApplication toolkit(argc, argv);
  QApplication::setStyle(new corvane::window::BoxStyle("Fusion"));
  const QStringList arguments = QCoreApplication::arguments();
  if (arguments.size() != 3) {
    std::cerr << "usage: corvane-pictures APPLICATION-FOLDER TARGET-FOLDER\n";
    return 2;
  }
  try {
    corvane::window::Photographer(arguments[1].toStdString(), arguments[2]).TakeAll();
  } catch (const corvane::RunTimeError& error) {
    std::cerr << "corvane-pictures: " << error.what() << "\n";
    return 1;
  }
  return 0;
}
