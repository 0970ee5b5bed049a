// The assistant that sets a network up, driven as a person with a keyboard does.
#include <filesystem>

#include <QApplication>
#include <QKeySequence>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTreeWidget>

#include <gtest/gtest.h>

#include "sqlite/sqlite_history_store.h"
#include "window/assistant/assistant.h"
#include "window/assistant/rows_table.h"
#include "window_world.h"

namespace corvane::test {
namespace {

const std::string kDevice = "/dev/serial/by-id/usb-FTDI_FT232R_USB_UART_A10K1X2Y-if00-port0";

class AssistantTest : public testing::Test {
 protected:
  explicit AssistantTest(const std::string& settings = "") : world_(settings) {
    world_.port.devices_there = {{kDevice, "/dev/ttyUSB0", ""}};
    WriteTables(world_.home);
    world_.Open();
    Open();
  }

  void Open() {
    world_.window().OpenAssistant();
    QApplication::setActiveWindow(&assistant());
    world_.Settle();
    world_.Settle();
  }
  window::Assistant& assistant() { return dynamic_cast<window::Assistant&>(world_.Widget<QWizard>("Assistant")); }
  [[nodiscard]] bool Has(const char* file) { return std::filesystem::exists(world_.home.Name(file)); }
  [[nodiscard]] int Page() { return assistant().currentId(); }
  [[nodiscard]] std::string Shown(const char* name) {
    return assistant().currentPage()->findChild<QLabel*>(name)->text().toStdString();
  }
  [[nodiscard]] static QWidget& Focused() { return *QApplication::focusWidget(); }

  /// One action: a button by its access key, which no other one that can be pressed has.
  void Shortcut(Qt::Key letter) {
    ++actions_;
    QAbstractButton* pressed = nullptr;
    for (auto* button : assistant().findChildren<QAbstractButton*>()) {
      if (!button->isVisible() || !button->isEnabled()) continue;
      if (QKeySequence::mnemonic(button->text()) != QKeySequence(Qt::ALT | letter)) continue;
      EXPECT_EQ(pressed, nullptr) << button->text().toStdString();
      pressed = button;
    }
    ASSERT_NE(pressed, nullptr) << static_cast<char>(letter);
    pressed->click();
    world_.Settle();
    world_.Settle();
  }
  void Next() { Shortcut(Qt::Key_N); }
  void Type(const QString& text) {
    // The first letter opens the editor of a cell, which gets the others.
    for (const QChar letter : text) QTest::keyClicks(&Focused(), letter);
  }
  /// One action: what has the focus is filled in; Tab goes on.
  void Fill(const QString& text) {
    ++actions_;
    Type(text);
    Tab();
  }
  void Tab() {
    QTest::keyClick(&Focused(), Qt::Key_Tab);
    world_.Settle();
  }
  /// Fills the page of relays and units: one relay, two units.
  void FillStations() {
    Fill("Ridge");
    Fill("5");
    Tab();
    for (const char* const unit : {"River flat", "Hill block"}) {
      Fill(unit);
      Fill(unit[0] == 'R' ? "23" : "24");
      for (int rest = 0; rest < 3; ++rest) Tab();
    }
  }
  void GoTo(SetupPage page) {
    while (Page() < static_cast<int>(page)) {
      if (Page() == static_cast<int>(SetupPage::Stations) && Table("setupUnits").Filled().empty()) FillStations();
      Next();
    }
  }
  window::RowsTable& Table(const char* name) {
    return dynamic_cast<window::RowsTable&>(world_.Widget<QTableWidget>(name));
  }

  WindowWorld world_;
  int actions_ = 0;
};

TEST_F(AssistantTest, ComesToTheFirstCalibratedFileWithinFourteenActions) {
  Next();
  Next();
  FillStations();
  Next();
  Next();
  Shortcut(Qt::Key_M);
  ASSERT_EQ(Page(), static_cast<int>(SetupPage::Summary));
  EXPECT_FALSE(Has("corvane.ini")) << "nothing is written before the end";
  Shortcut(Qt::Key_F);
  EXPECT_FALSE(assistant().isVisible());
  EXPECT_LE(actions_, 14);
  RecordProperty("actions", actions_);
  const Registry& registry = world_.app().registry();
  ASSERT_EQ(registry.Units.count(), 2);
  EXPECT_EQ(registry.Units[2].Name, "Hill block");
  EXPECT_EQ(registry.Units[2].ID, 24);
  EXPECT_EQ(registry.Units[2].RelayID, 5);
  EXPECT_EQ(world_.app().devices().DeviceOf(world_.form().Cmb_Port[0].SelectedItemData()), kDevice);
  EXPECT_TRUE(Has("00023.txt")) << "calibrated";
  EXPECT_TRUE(Has("00024.epd"));
  EXPECT_NE(world_.home.Read("corvane.ini").find("Name1=River flat"), std::string::npos);
}

TEST_F(AssistantTest, LosesNothingByBackOrCancelAndWritesNothing) {
  const SetupPlan before = world_.app().setup().PlanOf();
  for (const SetupPage page : kSetupPages) {
    GoTo(page);
    ASSERT_EQ(Page(), static_cast<int>(page));
    for (int back = 0; back < 2 && Page() > 0; ++back) Shortcut(Qt::Key_B);
    if (static_cast<int>(page) % 2 == 0) QTest::keyClick(&assistant(), Qt::Key_Escape);
    assistant().close();
    world_.Settle();
    EXPECT_FALSE(assistant().isVisible());
    EXPECT_TRUE(world_.app().setup().PlanOf() == before);
    world_.loop.Advance(3000);
    EXPECT_FALSE(Has("corvane.ini"));
    EXPECT_FALSE(Has("corvane.ini.recovery"));
    Open();
    EXPECT_EQ(Page(), 0);
  }
  EXPECT_EQ(Table("setupUnits").Filled().size(), 2U);
}

TEST_F(AssistantTest, GoesToWhatIsWrongAndSaysWhatToDo) {
  GoTo(SetupPage::Stations);
  FillStations();
  Table("setupUnits").item(1, 1)->setText("twenty");
  Next();
  EXPECT_EQ(Page(), static_cast<int>(SetupPage::Stations));
  EXPECT_FALSE(Shown("setupFault").empty());
  EXPECT_EQ(Table("setupUnits").currentRow(), 1);
  EXPECT_EQ(Table("setupUnits").currentColumn(), 1);
  Table("setupUnits").item(1, 1)->setText("24");
  // A relay may be typed: one that is not there is said, 0 is none.
  for (const bool is_there : {false, true}) {
    Table("setupUnits").GoTo(0, 2);
    Fill(is_there ? "0" : "Mast");
    Next();
    EXPECT_EQ(Page() == static_cast<int>(SetupPage::Stations), !is_there) << Shown("setupFault");
  }
  Shortcut(Qt::Key_B);
  EXPECT_EQ(Table("setupUnits").item(0, 2)->text(), "Direct");
  Table("setupUnits").GoTo(1, 1);
  // The units of a relay go with its name.
  Table("setupRelays").item(0, 0)->setText("Water tower");
  EXPECT_EQ(Table("setupUnits").item(1, 2)->text(), "Water tower");
  Type("31");
  Next();
  EXPECT_EQ(Page(), static_cast<int>(SetupPage::Folders));
  EXPECT_EQ(Table("setupUnits").item(1, 1)->text(), "31") << "the cell was still open";
}

TEST_F(AssistantTest, TriesThePortAndAUnitWithoutPuttingThemIn) {
  GoTo(SetupPage::Port);
  Shortcut(Qt::Key_T);
  EXPECT_FALSE(Shown("setupPortAnswer").empty());
  EXPECT_EQ(world_.port.device, kDevice);
  GoTo(SetupPage::Clock);
  world_.port.on_line = [](const std::string&) {};
  bool stopped = false;
  world_.loop.After(2000, [&] {
    EXPECT_FALSE(assistant().button(QWizard::NextButton)->isEnabled());
    EXPECT_TRUE(assistant().button(QWizard::CancelButton)->isEnabled()) << "it stops the try";
    QTest::keyClick(&assistant(), Qt::Key_Escape);
    stopped = true;
  });
  Shortcut(Qt::Key_A);
  EXPECT_TRUE(stopped);
  EXPECT_TRUE(assistant().isVisible());
  EXPECT_FALSE(Shown("setupClockAnswer").empty());
  EXPECT_FALSE(world_.app().slot().Taken());
  EXPECT_EQ(world_.app().registry().Units[1].Name, "Site 1");
  EXPECT_FALSE(Has("corvane.ini"));
}

TEST(SetupInWindow, WritesDownWhoseClockWasSet) {
  SqliteHistoryStore store;
  WindowWorld world("", &store);
  world.port.devices_there = {{kDevice, "/dev/ttyUSB0", ""}};
  world.Open();
  SetupCommands& setup = world.app().setup();
  SetupPlan plan = setup.PlanOf();
  for (const char* const id : {"23", "24"}) {
    plan.units.emplace_back().name = id;
    plan.units.back().id = id;
  }
  EXPECT_TRUE(setup.SetClock(plan, 2).was_set);
  ASSERT_TRUE(setup.PutIn(plan));
  HistoryQuery all;
  all.contacts_since = Moment{1, 0};
  HistoryContents history;
  ASSERT_TRUE(world.app().history().Read(all, history).ok());
  ASSERT_EQ(history.contacts.size(), 1U);
  EXPECT_EQ(history.contacts[0].unit, world.app().history().KeyOf(2));
  EXPECT_EQ(history.contacts[0].command, kSetDate);
  EXPECT_EQ(history.contacts[0].clock_offset, 0);
}

TEST_F(AssistantTest, SaysThatTheAdapterWasPulledOutAndGoesOn) {
  GoTo(SetupPage::Port);
  world_.port.devices_there.clear();
  world_.port.open_result = {19, "the adapter is gone"};
  Shortcut(Qt::Key_G);
  EXPECT_EQ(world_.Widget<QTreeWidget>("setupDevices").topLevelItem(0)->text(0).indexOf("No serial device"), 0);
  Shortcut(Qt::Key_T);
  EXPECT_NE(Shown("setupPortAnswer").find("the adapter is gone"), std::string::npos);
  GoTo(SetupPage::Clock);
  Shortcut(Qt::Key_A);
  EXPECT_NE(Shown("setupClockAnswer").find("the adapter is gone"), std::string::npos);
  GoTo(SetupPage::Summary);
  EXPECT_NE(Shown("setupNotDone").find("the adapter is gone"), std::string::npos);
  EXPECT_FALSE(Has("corvane.ini"));
  Shortcut(Qt::Key_F);
  EXPECT_FALSE(assistant().isVisible());
  EXPECT_NE(world_.home.Read("corvane.ini").find("Name2=Hill block"), std::string::npos);
  EXPECT_FALSE(world_.app().slot().Taken()) << "the round has ended by itself";
}

TEST_F(AssistantTest, KeepsInSightWhatHasTheFocusAndWhatWasAnswered) {
  assistant().resize(assistant().minimumSizeHint());
  GoTo(SetupPage::Port);
  Shortcut(Qt::Key_T);
  world_.Settle();
  for (const char* const name : {"setupPortAnswer", "setupDevice"}) {
    auto& part = world_.Widget<QWidget>(name);
    if (part.focusPolicy() != Qt::NoFocus) part.setFocus(Qt::ShortcutFocusReason);
    EXPECT_EQ(part.visibleRegion().boundingRect(), part.rect()) << name;
  }
}

TEST_F(AssistantTest, SpeaksTheLanguageOfTheWindow) {
  GoTo(SetupPage::Port);
  assistant().show_language(GERMAN_FILE);
  EXPECT_EQ(assistant().windowTitle(), "Ein Messnetz einrichten: Port der Basisstation");
  Shortcut(Qt::Key_T);
  EXPECT_EQ(Shown("setupPortAnswer").find("Die Basisstation antwortet"), 0U);
  world_.Field("setupDevice").setText("COM1");
  Shortcut(Qt::Key_W);
  EXPECT_EQ(Shown("setupFault").find("Das ist kein Gerät"), 0U);
  EXPECT_EQ(QCoreApplication::translate("QFileDialog", "Look in:"), "Suchen in:") << "the toolkit's own dialogs";
}

TEST_F(AssistantTest, FitsASmallScreenAtTwiceItsSize) {
  for (const SetupPage page : kSetupPages) {
    GoTo(page);
    EXPECT_LE(assistant().minimumSizeHint().width(), 1024 / 2) << Page();
    EXPECT_LE(assistant().minimumSizeHint().height(), 700 / 2) << Page();
  }
}

class AssistantOfANetwork : public AssistantTest {
 protected:
  AssistantOfANetwork()
      : AssistantTest(SmallNetwork(2) + "RelayID2=5\nDepths2=10;20\n[Relays]\nNumRelays=2\nName2=Ridge\nID2=5\n") {}
};

TEST_F(AssistantOfANetwork, ShowsWhatIsThereAndChangesNothingElse) {
  GoTo(SetupPage::Stations);
  EXPECT_EQ(Table("setupRelays").item(0, 0)->text(), "Ridge");
  EXPECT_EQ(Table("setupUnits").item(1, 4)->text(), "10;20");
  GoTo(SetupPage::Summary);
  world_.Widget<QAbstractButton>("setupCollect").setChecked(false);
  world_.port.lines.clear();
  Shortcut(Qt::Key_F);
  EXPECT_TRUE(world_.port.lines.empty()) << "nothing is collected";
  EXPECT_EQ(world_.app().registry().Units[2].RelayID, 5);
  EXPECT_EQ(world_.app().registry().Units[2].Depths, "10;20");
}

}  // namespace
}  // namespace corvane::test
