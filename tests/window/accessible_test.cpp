// What people hear who do not see the window.
#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>
#include <set>
#include <string>
#include <vector>

#include <QAccessible>
#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QListView>
#include <QStandardItemModel>
#include <QTabWidget>

#include <private/qguiapplication_p.h>
#include <qpa/qplatformaccessibility.h>
#include <qpa/qplatformintegration.h>

#include <gtest/gtest.h>

#include "window/box_style.h"
#include "window/colours.h"
#include "window_world.h"

namespace corvane::test {
namespace {

class Accessible : public testing::Test, protected WindowWorld {
 protected:
  Accessible() : WindowWorld("[Ports]\nCOM1=/dev/base\n") { Open(); }

  static std::string NameOf(QWidget& widget) {
    QAccessibleInterface* heard = QAccessible::queryAccessibleInterface(&widget);
    // A selector is read by its label; its name is what is selected.
    const auto labels = heard->relations(QAccessible::Label);
    if (qobject_cast<QComboBox*>(&widget) != nullptr && !labels.isEmpty()) heard = labels.front().first;
    return heard->text(QAccessible::Name).toStdString();
  }
  /// Every control that a person can reach, and every value, that can be seen now.
  std::vector<QWidget*> Seen() {
    std::vector<QWidget*> seen;
    for (QWidget* widget : window().findChildren<QWidget*>()) {
      const QString name = widget->objectName();
      const bool is_part = name.isEmpty() || name.startsWith("qt_") || name == "tabs" || widget->inherits("QMenu");
      const auto* label = qobject_cast<QLabel*>(widget);
      const bool is_value = label != nullptr && name.startsWith("lbl_", Qt::CaseInsensitive);
      const bool is_group = qobject_cast<QGroupBox*>(widget) != nullptr;
      const bool is_control = widget->focusPolicy() != Qt::NoFocus || is_value || is_group;
      if (!is_part && is_control && widget->isVisible() && widget->window() == &window()) seen.push_back(widget);
    }
    return seen;
  }
  void CheckPage(const std::string& page) {
    std::map<std::string, std::string> owners;
    for (QWidget* widget : Seen()) {
      // A label without a text has nothing to say.
      const auto* label = qobject_cast<QLabel*>(widget);
      if (label != nullptr && label->text().isEmpty()) continue;
      const std::string name = NameOf(*widget), owner = widget->objectName().toStdString();
      EXPECT_NE(name, "") << page << ": " << owner;
      if (qobject_cast<QGroupBox*>(widget) != nullptr) continue;
      const auto [other, fresh] = owners.emplace(name, owner);
      EXPECT_TRUE(fresh) << page << ": \"" << name << "\" is both " << owner << " and " << other->second;
    }
  }
};

TEST_F(Accessible, EveryControlOfEveryPageHasANameOfItsOwn) {
  auto& pages = Widget<QTabWidget>("tabs");
  for (int page = 0; page < pages.count(); ++page) {
    pages.setCurrentIndex(page);
    const auto inner = pages.widget(page)->findChildren<QTabWidget*>();
    CheckPage(pages.tabText(page).toStdString());
    for (QTabWidget* tabs : inner) {
      for (int tab = 0; tab < tabs->count(); ++tab) {
        tabs->setCurrentIndex(tab);
        CheckPage((pages.tabText(page) + " / " + tabs->tabText(tab)).toStdString());
      }
    }
  }
}

TEST_F(Accessible, NamesAreCaptionsWithTheirColumnRowOrGroup) {
  form().Lbl_Try.SetText("2");
  const std::pair<const char*, const char*> rows[] = {{"Cmd_Process_1", "Download, Selected unit"},
                                                      {"Cmd_ProcessAll_1", "Download, All active radio units"},
                                                      {"Cmd_DownloadAll_1", "Download, All units"},
                                                      {"Txt_UnitName", "Name"},
                                                      {"Cmd_Mode", "Mode..."},
                                                      {"Lst_Units", "Units"},
                                                      {"Cmd_Relays_0", "New, Relays"},
                                                      {"Cmd_EditFile_1", "Edit, Salinity Lookup file"},
                                                      {"Cmd_GetFile_3", "Language file..."},
                                                      {"Lbl_Try", "Try: 2"},
                                                      {"Bar_Unit", "Units"},
                                                      {"Lst_Debug", "Log"},
                                                      {"Cmd_BackupFolder", "Backup to..."},
                                                      {"Devices", "Devices found"}};
  for (const auto& [widget, name] : rows) EXPECT_EQ(NameOf(Widget<QWidget>(widget)), name) << widget;
  Button("Cmd_Process_1").setText("&Laden");
  Widget<QLabel>("label_17").setText("Gew\xC3\xA4hlt");
  window().hide();
  window().show();
  EXPECT_EQ(NameOf(Button("Cmd_Process_1")), "Laden") << "names follow the language file, and need no column any more";
}

TEST(Announcements, TellOfUnitsAndProblemsAndNotOfWhatIsReceived) {
  WindowWorld world(SmallNetwork(3));
  world.Open();
  std::vector<std::string> said;
  const auto listen = [&] {
    const std::string now = world.Widget<QLabel>("announcer").text().toStdString();
    if (!now.empty() && (said.empty() || said.back() != now)) said.push_back(now);
  };
  world.form().on_any_change = [&](const Control&, Aspect) { listen(); };
  const auto answer = world.port.on_line;
  world.port.on_line = [&](const std::string& line) {
    if (line.find("00002") == std::string::npos) answer(line);
  };
  world.form().Chk_GoOn.SetTicked(true);
  world.Choose("mnu_Download", 1);
  listen();
  std::string all;
  for (const std::string& text : said) all += text + "|";
  EXPECT_EQ(all,
            "Download: Site 1|Download: Site 2|Site 2: waited 45 secs|Download: Site 3|Download: Site 2|"
            "Site 2: waited 45 secs|Finished (1 unit(s) with problems)...|");
}

/// A screen reader, for a scope: what it gets, by the widget it is of.
class ScreenReader {
 public:
  ScreenReader() : former_(QAccessible::installUpdateHandler(Hear)) {
    heard_.clear();
    Platform().setActive(true);
  }
  ~ScreenReader() {
    QAccessible::installUpdateHandler(former_);
    Platform().setActive(false);
  }
  ScreenReader(const ScreenReader&) = delete;
  ScreenReader& operator=(const ScreenReader&) = delete;

  [[nodiscard]] static int Of(const std::string& widget) { return heard_[widget]; }
  [[nodiscard]] static int All() {
    return std::accumulate(heard_.begin(), heard_.end(), 0,
                           [](int sum, const auto& each) { return sum + each.second; });
  }
  [[nodiscard]] static std::string List() {
    std::string list;
    for (const auto& [widget, events] : heard_) list += widget + " " + std::to_string(events) + "\n";
    return list;
  }

 private:
  // Only a platform can say that somebody listens, and the one without a screen never does.
  static QPlatformAccessibility& Platform() { return *QGuiApplicationPrivate::platformIntegration()->accessibility(); }
  static void Hear(QAccessibleEvent* event) {
    ++heard_[event->object() == nullptr ? "" : event->object()->objectName().toStdString()];
  }

  inline static std::map<std::string, int> heard_;
  QAccessible::UpdateHandler former_;
};

TEST(Announcements, AreFewWhileManyReadingsAreReceived) {
  WindowWorld world(SmallNetwork(3));
  WriteTables(world.home);
  world.readings.clear();
  for (int hour = 0; hour < 240; ++hour) {
    world.readings.push_back("2010/3/" + std::to_string(1 + hour / 24) + " " + std::to_string(hour % 24) +
                             ":00,12500,29310,1,1500,900,29300");
  }
  world.Open();
  world.ShowPage("tabLog");
  for (int trace = 0; trace < 5; ++trace) world.form().Chk_Trace[trace].SetTicked(true);
  world.form().Chk_ShowTrace.SetTicked(true);
  world.form().Chk_ShowReply.SetTicked(true);
  QApplication::processEvents();
  const ScreenReader reader;
  ASSERT_TRUE(QAccessible::isActive());
  world.Choose("mnu_Download", 1);
  QTest::qWait(1100);
  ASSERT_GT(world.form().Lst_Debug.count(), 700) << "lines were shown";
  EXPECT_GE(reader.Of("announcer"), 4) << "each unit, and the end\n" << reader.List();
  // Each control tells once that it is disabled and once that it is back.
  EXPECT_LE(reader.All(), 360) << "of 720 readings\n" << reader.List();
}

/// How well one colour can be told from another, from 1 to 21.
double Contrast(const QColor& one, const QColor& other) {
  const auto light = [](const QColor& colour) {
    const auto part = [](double value) {
      return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * part(colour.redF()) + 0.7152 * part(colour.greenF()) + 0.0722 * part(colour.blueF()) + 0.05;
  };
  return std::max(light(one), light(other)) / std::min(light(one), light(other));
}

TEST_F(Accessible, TextsAndSignsStandOutFromTheirGround) {
  EXPECT_GE(Contrast(window::kDisabledOnCream, window::kCream), 5);
  EXPECT_GE(Contrast(Field("Txt_UnitName").palette().color(QPalette::Text),
                     Field("Txt_UnitName").palette().color(QPalette::Base)),
            5);
  for (const RowMark mark : {RowMark::Well, RowMark::Problem}) {
    form().Lst_Units.SetMark(0, mark);
    const auto sign = Cell("Lst_Units", 0).data(Qt::DecorationRole).value<QIcon>();
    const QImage picture = sign.pixmap(16, 16, QIcon::Selected).toImage();
    EXPECT_GE(Contrast(picture.pixelColor(8, 14), picture.pixelColor(0, 0)), 3);
    EXPECT_EQ(picture.pixelColor(0, 0).alpha(), 255) << "the row's own colour does not shine through";
  }
}

TEST_F(Accessible, ABoxWithoutATickStandsOutFromItsGround) {
  window::BoxStyle style("Fusion");
  const std::pair<QColor, QColor> rows[] = {{QColor(53, 53, 53), QColor(35, 35, 35)},
                                            {QColor(32, 32, 32), QColor(20, 20, 20)}};
  for (const auto& [around, within] : rows) {
    QPalette dark(Qt::white, around, Qt::gray, Qt::black, Qt::gray, Qt::white, Qt::white, within, around);
    QCheckBox box;
    QStandardItemModel one;
    one.appendRow(new QStandardItem);
    one.item(0)->setCheckable(true);
    QListView list;
    list.setModel(&one);
    list.setFrameShape(QFrame::NoFrame);
    for (QWidget* shown : {static_cast<QWidget*>(&box), static_cast<QWidget*>(&list)}) {
      shown->setStyle(&style);
      shown->setPalette(dark);
      const QImage picture = shown->grab().toImage();
      const int middle = shown == &box ? picture.height() / 2 : list.visualRect(one.index(0, 0)).center().y();
      double best = 1;
      // The frame is the only thing at the left that is neither ground.
      for (int x = 0; x < std::min(20, picture.width()); ++x) {
        best = std::max(best, Contrast(picture.pixelColor(x, middle), shown == &box ? around : within));
      }
      EXPECT_GE(best, 3) << shown->metaObject()->className();
    }
  }
}

TEST(UnitFilter, LeavesOutOtherUnitsAndKeepsTheSelectedOne) {
  WindowWorld world(SmallNetwork(300));
  WindowWorld small(SmallNetwork(3));
  for (WindowWorld* each : {&world, &small}) {
    each->Open();
    each->window().resize(1000, 700);
    QApplication::processEvents();
  }
  EXPECT_EQ(world.List("Lst_Units").size(), small.List("Lst_Units").size());
  auto& list = world.Widget<QListView>("Lst_Units");
  const auto shown = [&list] {
    int rows = 0;
    for (int row = 0; row < list.model()->rowCount(); ++row) rows += list.isRowHidden(row) ? 0 : 1;
    return rows;
  };
  world.Type("unitFilter", "e 29");
  EXPECT_EQ(shown(), 12) << "Site 29, 290 to 299, and the selected one";
  world.form().Txt_UnitName.SetText("Another");
  world.ChooseRow("Lst_Units", 289);
  EXPECT_EQ(shown(), 11);
  world.Click("Cmd_Units_0");
  EXPECT_EQ(shown(), 12) << "a new unit is selected";
  world.Type("unitFilter", " ");
  EXPECT_EQ(shown(), 301);
  EXPECT_EQ(world.List("Lst_Units").size(), small.List("Lst_Units").size());
}

TEST_F(Accessible, FilesBearTheNamesOfTheirUnits) {
  for (const char* file : {"00001.txt", "00002.old.txt", "00003x.txt", "notes.txt"}) home.Write(file, "1");
  form().Txt_UnitName.SetText("North");
  Click("Opt_SortFile_1");
  std::set<std::string> shown;
  for (int row = 0; row < Rows("Lst_LocalFiles"); ++row) {
    shown.insert(Cell("Lst_LocalFiles", row).data().toString().toStdString());
  }
  EXPECT_EQ(shown,
            (std::set<std::string>{"00001.txt   (North)", "00002.old.txt   (Site 2)", "00003x.txt", "notes.txt"}));
}

}  // namespace
}  // namespace corvane::test
