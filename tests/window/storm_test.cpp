// The window under random use, and closed in every state.
#include <algorithm>
#include <filesystem>
#include <random>
#include <set>
#include <utility>

#include <QRegularExpression>
#include <QTimer>

#include <gtest/gtest.h>

#include "qt/qt_dialogs.h"
#include "qt/qt_loop.h"
#include "serial/termios_port.h"
#include "sqlite/sqlite_history_store.h"
#include "window_world.h"

namespace corvane::test {
namespace {

/// Of virtual time; CORVANE_STORM_SECONDS makes it a longer one.
const std::int64_t kStormMilliseconds = 1000 * std::max(60, qEnvironmentVariableIntValue("CORVANE_STORM_SECONDS"));
const std::int64_t kLongestRun = 6 * 3'600'000 + kStormMilliseconds;
constexpr int kReadings = 24;

struct KeptHistory {
  SqliteHistoryStore store;
};

/// A person who clicks, types and answers at random while slow units are downloaded.
class Storm : private KeptHistory, public WindowWorld {
 public:
  explicit Storm(unsigned seed) : WindowWorld(SmallNetwork(4) + "[Clients]\nNumClients=2\n", &store), random_(seed) {
    WriteTables(home);
    readings.clear();
    for (int hour = 0; hour < kReadings; ++hour) {
      readings.push_back("2010/3/11 " + std::to_string(hour) + ":00,12500,29310,1,1500,900,29300");
    }
    dialogs.answer_plain_boxes = false;
    port.on_line = [this](const std::string& line) { Converse(line); };
    port.on_escape = [this] { ++exchange_, talking_ = false; };
    loop.After(kLongestRun, [] { throw std::logic_error("an operation does not come to its end"); });
  }

  void Rage() {
    Open();
    Step();
    Choose("mnu_Download", 1);
    while (loop.MonotonicMilliseconds() < kStormMilliseconds) loop.Advance(1000);
    window().showNormal();
  }
  /// Puts the fields right that a download needs, and downloads one more unit.
  void DownloadUnit4242() {
    Form& f = form();
    const std::pair<TextField*, const char*> rows[] = {
        {&f.Txt_Folder, "data"},     {&f.Txt_Prefix, ""},         {&f.Txt_RawFileExtension, "epd"},
        {&f.Txt_Timeout[0], "45"},   {&f.Txt_Timeout[1], "10"},   {&f.Txt_Timeout[2], "1"},
        {&f.Txt_MaxRetries, "3"},    {&f.Txt_MaxOveruns, "10"},   {&f.Txt_CalibratedFileExtension, "txt"},
        {&f.Txt_Settings, "9600,N"}, {&f.Txt_Correction[0], "0"}, {&f.Txt_Correction[1], "0"},
        {&f.Txt_Depths, "10;20"}};
    for (const auto& [field, text] : rows) field->SetText(text);
    f.Chk_Automatic.SetTicked(false);
    Click("Cmd_Units_0");
    f.Txt_UnitID.SetText("4242");
    f.Cmb_GetFrom.SelectByItemData(kFromRadio);
    Choose("mnu_Download", 1);
    loop.Advance(60'000);
  }

  int overlaps = 0;  ///< commands sent while the answer to another was under way
  int operations = 0;

 private:
  int Below(std::size_t count) { return static_cast<int>(random_() % count); }
  template <class All>
  auto Pick(const All& all) {
    return all[static_cast<typename All::size_type>(Below(static_cast<std::size_t>(all.size())))];
  }
  /// A widget of that kind whose name fits.
  template <class Kind>
  Kind* Any(const char* pattern = ".*") {
    return Pick(window().findChildren<Kind*>(QRegularExpression(QRegularExpression::anchoredPattern(pattern))));
  }

  /// One act of the person, and the next one after a while. A box takes every act until it is answered.
  void Step() {
    loop.After(1 + Below(300), [this] { Step(); });
    if (dialogs.open_boxes > 0) {
      dialogs.AnswerOpenBox(Below(dialogs.boxes.back().buttons.size() + 1));
      return Activate();
    }
    if (loop.MonotonicMilliseconds() >= kStormMilliseconds) return;
    operations += app().slot().Taken() ? 1 : 0;
    Below(3) == 0 ? ActOnPages() : Act();
    // What was read on threads arrives.
    QCoreApplication::processEvents();
  }
  /// As the program does after a box: one that arises while something runs is dropped.
  void Activate() {
    if (app().slot().Taken() || activating_) return;
    loop.Post([this] {
      activating_ = true;
      app().life().OnWindowActivate("");
      activating_ = false;
    });
  }
  void Act() {
    static const std::vector<QString> kTexts = {"", "7", "12", "x", "01:00", "36", "A:\\b", "0.5"};
    static const std::vector<Qt::Key> kKeys = {Qt::Key_F1, Qt::Key_Space, Qt::Key_A, Qt::Key_Return};
    switch (Below(8)) {
      case 0:
      case 1:
        return Any<QAbstractButton>("(Cmd_(?!DeleteFile$|Close$)|[Cc]hk_|Opt_).*")->click();
      case 2: {
        QAction* entry = Pick(Any<QMenu>("mnu_.*")->actions());
        if (entry->menu() == nullptr && entry->text() != "E&xit") entry->trigger();
        return;
      }
      case 3: {
        auto* field = Any<QLineEdit>();
        field->selectAll();
        field->insert(Pick(kTexts));
        Q_EMIT field->editingFinished();
        return;
      }
      case 4: {
        auto* list = Any<QAbstractItemView>("Lst_.*");
        const QModelIndex row = list->model()->index(Below(5), 0);
        list->setCurrentIndex(row);
        list->model()->setData(row, Below(4) > 0 ? Qt::Checked : Qt::Unchecked, Qt::CheckStateRole);
        if (Below(3) == 0) list->selectAll();
        return;
      }
      case 5:
        return QTest::keyClick(Any<QComboBox>(), Below(2) == 0 ? Qt::Key_Down : Qt::Key_Up);
      case 6:
        // A cancel ends the download, so it comes less often.
        return QTest::keyClick(&window(), Below(10) == 0 ? Qt::Key_Escape : Pick(kKeys));
      default:
        dialogs.text_answer = Below(2) == 0 ? std::optional<std::string>("0123") : std::nullopt;
        return Below(2) == 0 ? window().showMinimized() : window().showNormal();
    }
  }

  /// One act on the pages that look at the network; what they start goes the way of every command.
  void ActOnPages() {
    static const std::vector<const char*> kPages = {"tabNetwork", "tabNetwork", "tabPlot", "tabUnit"};
    static const std::vector<QString> kTexts = {"", "1", "site", "x", "2010-03-11"};
    static const std::vector<QKeySequence> kKeys = {
        Qt::Key_F5,    Qt::CTRL | Qt::Key_F, Qt::Key_PageDown,  Qt::Key_Return, Qt::Key_Up,
        Qt::Key_Right, Qt::Key_Plus,         Qt::Key_Backspace, Qt::Key_Home,   Qt::Key_Space};
    auto& page = Widget<QWidget>(Below(2) == 0 ? "tabNetwork" : "tabPlot");
    const auto any = [this, &page]<class Kind>(Kind*, const char* pattern = ".*") -> Kind* {
      const auto all = page.findChildren<Kind*>(QRegularExpression(QRegularExpression::anchoredPattern(pattern)));
      return all.isEmpty() ? nullptr : Pick(all);
    };
    switch (Below(6)) {
      case 0:
        return ShowPage(Pick(kPages));
      case 1:
        // Those that ask for the name of a file would wait for a person.
        if (auto* button = any(static_cast<QAbstractButton*>(nullptr), "(?!.*([Ss]ave|qt_)).+")) button->click();
        return;
      case 2:
        if (auto* field = any(static_cast<QLineEdit*>(nullptr), "(?!qt_).+")) field->setText(Pick(kTexts));
        return;
      case 3:
        if (auto* box = any(static_cast<QComboBox*>(nullptr)))
          box->setCurrentIndex(Below(8) % std::max(1, box->count()));
        return;
      case 4:
        if (auto* list = any(static_cast<QAbstractItemView*>(nullptr))) {
          list->setCurrentIndex(list->model()->index(Below(5), Below(3)));
          if (Below(3) == 0) list->selectAll();
        }
        return;
      default:
        if (QWidget* focus = window().focusWidget(); focus != nullptr && !focus->objectName().contains("Save")) {
          const QKeyCombination key = Pick(kKeys)[0];
          QTest::keyClick(focus, key.key(), key.keyboardModifiers());
        }
    }
  }

  /// Answers line by line, until it is done or told to stop.
  void Converse(const std::string& line) {
    overlaps += talking_ ? 1 : 0;
    std::vector<std::string> lines = {line + "\r\n"};
    const bool is_download = line.find("rr ") != std::string::npos;
    if (is_download) {
      lines.push_back(Framed("V2,00001,4,3," + std::to_string(readings.size()) + ",2010/3/12 10:00,12500,29310,100"));
      for (const std::string& reading : readings) lines.push_back(Framed(reading));
    }
    lines.emplace_back(is_download ? "OK\r\n" : "done\r\n");
    talking_ = true;
    ++exchange_;
    std::int64_t delay = 0;
    for (const std::string& text : lines) {
      const bool last = &text == &lines.back();
      loop.After(delay += 1 + Below(60), [this, text, last, exchange = exchange_] {
        if (exchange != exchange_) return;
        talking_ = !last;
        port.ReceiveNow(text);
      });
    }
  }

  std::mt19937 random_;
  int exchange_ = 0;
  bool talking_ = false;
  bool activating_ = false;
};

/// The hours of the readings in a file, in its order.
std::vector<int> HoursIn(const std::filesystem::path& file) {
  constexpr std::string_view kDay = "2010/3/11 ";
  std::vector<int> hours;
  std::ifstream text(file);
  for (std::string line; std::getline(text, line);) {
    if (line.starts_with(kDay)) hours.push_back(std::stoi(line.substr(kDay.size())));
  }
  return hours;
}

class WindowStorm : public testing::TestWithParam<unsigned> {};

TEST_P(WindowStorm, LosesNothingAndLeavesAWindowThatWorks) {
  Storm storm(GetParam());
  storm.Rage();
  EXPECT_EQ(storm.overlaps, 0) << "one command at a time";
  EXPECT_GT(storm.operations, 5) << "the storm met a running operation";
  storm.DownloadUnit4242();
  std::set<int> complete;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(storm.home.path())) {
    if (!entry.is_regular_file() || entry.path().extension() == ".log") continue;
    const std::vector<int> hours = HoursIn(entry.path());
    for (std::size_t at = 0; at < hours.size(); ++at) EXPECT_EQ(hours[at], at) << entry.path();
    const bool is_raw = hours.size() == kReadings && entry.path().extension() == ".epd";
    if (is_raw && entry.path().stem().string().size() == 5) complete.insert(std::stoi(entry.path().stem().string()));
  }
  for (const Unit& unit : storm.app().registry().Units) {
    EXPECT_TRUE(unit.Active == 0 || unit.GetFrom != kFromRadio || complete.contains(unit.ID)) << unit.ID;
  }
  EXPECT_TRUE(complete.contains(4242));
}

INSTANTIATE_TEST_SUITE_P(Seeds, WindowStorm, testing::Range(1U, 13U));

TEST(WindowCloses, InEveryStateAndKeepsTheSettings) {
  const std::pair<const char*, const char*> rows[] = {
      // The button that is pressed, and with what the status line begins when the window is closed.
      {"Chk_Backup", ""},
      {"Cmd_DownloadAll_1", "Download"},
      {"Cmd_ConvertAll", "Convert"}};
  for (const auto& [button, status] : rows) {
    SCOPED_TRACE(button);
    WindowWorld world(SmallNetwork(3));
    WriteTables(world.home);
    for (const char* file : {"data/00001.epd", "data/00002.epd"}) {
      world.home.Write(file, Framed("V2,00001,4,3,1,2010/3/12 10:00,12500,29310,100") + world.readings[0] + "\r\n");
    }
    world.Open();
    int closed = 0;
    world.app().commands().on_close = [&closed] { ++closed; };
    world.Type("Txt_FTPServer", "42");
    std::int64_t closing_at = 0;
    const auto close = [&, begins = std::string(status)] {
      if (closing_at != 0 || !world.form().Lbl_Status.text().starts_with(begins)) return;
      closing_at = world.loop.MonotonicMilliseconds();
      for (int turn = 0; turn < 2; ++turn) world.window().close();
    };
    world.form().Lbl_Status.on_change = close;
    world.Click(button);
    close();
    world.Settle();
    EXPECT_EQ(closed, 1);
    EXPECT_TRUE(world.window().isVisible()) << "what runs unwinds before the window goes";
    EXPECT_FALSE(world.app().slot().Taken());
    EXPECT_LE(world.loop.MonotonicMilliseconds() - closing_at, 2000);
    world.app().life().OnWindowClose();
    EXPECT_NE(world.home.Read("corvane.ini").find("FTPServer=42"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(world.home.Name("data/00002.txt"))) << "what had not begun does not begin";
  }
}

/// The window in real time with real dialogs, joined as in the program.
TEST(WindowCloses, AndTakesDialogsAway) {
  // A message, a question, an input and a choice of a folder.
  for (const char* button : {"Cmd_EditDataFile", "Cmd_ProcessAll_2", "Cmd_Mode", "Cmd_GetFolder"}) {
    SCOPED_TRACE(button);
    const TempFolder home;
    home.Write("corvane.ini", SmallNetwork(2));
    QtLoop loop;
    TermiosPort port(loop, loop);
    FakeShell shell;
    QtDialogs dialogs(loop);
    FakeInternet internet;
    FakeZip zip;
    Application app(Platform{loop, port, shell, dialogs, internet, zip, {}}, home.path());
    window::MainWindow window(app, loop);
    app.commands().on_close = [&dialogs] { dialogs.CloseAll(); };
    app.life().OnWindowCreate();
    window.show();
    dialogs.SetParent(&window);
    app.life().OnWindowActivate("");
    bool shown = false;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &window, [&] {
      if (QApplication::activeModalWidget() != nullptr && !std::exchange(shown, true)) window.close();
    });
    look.start(10);
    window.findChild<QAbstractButton*>(button)->click();
    EXPECT_TRUE(QTest::qWaitFor([&] { return shown && app.flags().closing; }, 2000));
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    EXPECT_FALSE(app.slot().Taken());
    app.life().OnWindowClose();
    EXPECT_NE(home.Read("corvane.ini").find("NumUnits=2"), std::string::npos);
  }
}

}  // namespace
}  // namespace corvane::test
