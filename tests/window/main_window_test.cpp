#include <algorithm>
#include <set>

#include <QClipboard>
#include <QLabel>
#include <QProgressBar>
#include <QRadioButton>
#include <QTreeView>

#include <gtest/gtest.h>

#include "window_world.h"

namespace corvane::test {
namespace {

/// An opened window.
class MainWindow : public testing::Test, protected WindowWorld {
 protected:
  MainWindow() : WindowWorld("[Ports]\nCOM1=/dev/base\n") { Open(); }
};

TEST_F(MainWindow, FormAndWidgetsBearTheSameNames) {
  static const std::set<QString> prefixes = {"Txt", "txt", "Cmd", "Chk", "chk", "Lst", "Cmb",
                                             "Opt", "Lbl", "lbl", "mnu", "Bar", "Frm", "Frame"};
  std::set<std::string> controls;
  for (const Control* control : form().controls()) controls.insert(control->name());
  std::set<std::string> widgets = {window().objectName().toStdString()};
  for (const QWidget* widget : window().findChildren<QWidget*>()) {
    const QString name = widget->objectName();
    // The buttons of an option group bear its name and their index.
    const bool is_option = qobject_cast<const QRadioButton*>(widget) != nullptr && name.startsWith("Opt_");
    const bool is_control = prefixes.contains(name.section('_', 0, 0)) && name.contains('_');
    if (is_control && !is_option) widgets.insert(name.toStdString());
  }
  EXPECT_EQ(controls, widgets);
}

TEST_F(MainWindow, WhatIsTypedOrClickedReachesTheForm) {
  Type("Txt_UnitName", "Orchard");
  EXPECT_EQ(form().Lst_Units.text(0), "Orchard") << "a name shows in the list while it is typed";
  EXPECT_EQ(Cell("Lst_Units", 0).data().toString(), "Orchard");
  Click("Chk_ZIPFiles");
  EXPECT_TRUE(form().Chk_ZIPFiles.ticked());
  for (const auto& entry : {std::optional<std::string>(" /M"), std::optional<std::string>()}) {
    Click("Chk_RunAtStartup");
    EXPECT_EQ(shell.log_on_entry, entry);
  }
  Click("Opt_WhichReadings_1");
  EXPECT_EQ(form().Opt_WhichReadings.GetOptionIndex(), 1);
  Press(Widget<QComboBox>("Cmb_GetFrom"), Qt::Key_Down);
  EXPECT_EQ(form().Cmb_GetFrom.SelectedItemData(), kFromHandHeld);
  auto& period = *Widget<QComboBox>("Cmb_LogPeriod").lineEdit();
  for (const Qt::Key key : {Qt::Key_Home, Qt::Key_Delete, Qt::Key_1}) Press(period, key);
  EXPECT_EQ(form().Cmb_LogPeriod.shown_text(), "13:00") << "the cursor stays where the person types";
  Click("Cmd_Units_0");
  EXPECT_EQ(form().Lst_Units.count(), 6);
  EXPECT_EQ(window().focusWidget(), &Field("Txt_UnitName")) << "a new unit wants a name";
  Type("Txt_MaxRetries", "40");
  EXPECT_EQ(form().Txt_MaxRetries.text(), "40");
  Q_EMIT Field("Txt_MaxRetries").editingFinished();
  Settle();
  EXPECT_EQ(Field("Txt_MaxRetries").text(), "15") << "fields act when they are left";
}

TEST_F(MainWindow, WhatTheProgramChangesShowsAndDoesNotComeBack) {
  Form& f = form();
  int changes = 0;
  for (Control* control : std::initializer_list<Control*>{&f.Txt_Prefix, &f.Chk_Kelvin, &f.Opt_Average,
                                                          &f.Cmb_LogPeriod, &f.Lst_Clients}) {
    control->on_change = [&changes] { ++changes; };
  }
  f.Txt_Prefix.SetText("pr");
  f.Chk_Kelvin.SetTicked(false);
  f.Opt_Average.SetOptionIndex(1);
  f.Cmb_LogPeriod.SetShownText("01:00");
  f.Lst_Clients.SetCurrent(1);
  f.Bar_Unit.SetValue(40);
  f.Lbl_Status.SetText("Working");
  EXPECT_EQ(changes, 5) << "one change each, none comes back from the widgets";
  EXPECT_EQ(Field("Txt_Prefix").text(), "pr");
  EXPECT_FALSE(Button("Chk_Kelvin").isChecked());
  EXPECT_TRUE(Button("Opt_Average_1").isChecked());
  EXPECT_EQ(Widget<QComboBox>("Cmb_LogPeriod").currentText(), "01:00");
  EXPECT_EQ(List("Lst_Clients").currentIndex().row(), 1);
  EXPECT_TRUE(QTest::qWaitFor([this] { return Widget<QProgressBar>("Bar_Unit").value() == 40; }, 2000));
  EXPECT_EQ(Widget<QLabel>("Lbl_Status").text(), "Working");
  f.Frm_Main.SetTitle("");
  EXPECT_EQ(window().windowTitle(), "Corvane") << "an empty title shows the product name";
}

TEST_F(MainWindow, FieldsHoldWhateverIsPutIntoThem) {
  const std::pair<QString, std::string> rows[] = {
      {QString("x").repeated(5000), std::string(126, 'x')},
      {"one\r\ntwo\nthree", "one  two three"},
      {QString::fromUtf8("K\xC3\xBChlhaus \xE2\x82\xAC"), "K\xC3\xBChlhaus \xE2\x82\xAC"},
      {"-99999999999999999999", "-99999999999999999999"},
      {"", ""}};
  QLineEdit& edit = Field("Txt_UnitName");
  for (const auto& [pasted, held] : rows) {
    QApplication::clipboard()->setText(pasted);
    edit.setText("old");
    edit.selectAll();
    pasted.isEmpty() ? edit.del() : edit.paste();
    EXPECT_EQ(form().Txt_UnitName.text(), held);
    EXPECT_EQ(edit.text().toStdString(), held);
    EXPECT_EQ(form().Lst_Units.text(0), held);
  }
}

TEST_F(MainWindow, ListsTakeClicksChecksAndSelections) {
  ClickRow("Lst_Units", 2);
  EXPECT_EQ(form().Txt_UnitName.text(), "Site 3");
  ClickRow("Lst_Units", 2, Qt::ControlModifier);
  EXPECT_TRUE(List("Lst_Units").selectionModel()->isSelected(Cell("Lst_Units", 2))) << "commands still act on it";
  const auto tick = [this](Qt::CheckState state) {
    return List("Lst_Units").model()->setData(Cell("Lst_Units", 1), state, Qt::CheckStateRole);
  };
  EXPECT_TRUE(tick(Qt::Unchecked));
  EXPECT_EQ(app().registry().Units[2].Active, 0);
  form().Lst_Units.SetEnabled(false);
  ClickRow("Lst_Units", 0);
  EXPECT_FALSE(tick(Qt::Checked));
  EXPECT_EQ(form().Txt_UnitName.text(), "Site 3") << "while an operation runs a click changes nothing";

  home.Write("a.txt", "1");
  home.Write("b.txt", "22");
  Click("Opt_SortFile_1");
  ASSERT_EQ(Rows("Lst_LocalFiles"), 2);
  const int b = Cell("Lst_LocalFiles", 0).data().toString() == "b.txt" ? 0 : 1;
  EXPECT_EQ(Cell("Lst_LocalFiles", b, 1).data().toString(), "2 b");
  List("Lst_LocalFiles").selectAll();
  EXPECT_EQ(form().Lst_LocalFiles.SelectedCount(), 2);
  Q_EMIT List("Lst_LocalFiles").doubleClicked(Cell("Lst_LocalFiles", b));
  Settle();
  EXPECT_EQ(shell.edited, std::vector<std::string>{home.Name("b.txt")});
}

TEST_F(MainWindow, AppendedRowsAreShownInOneGoAndAListThatIsEmptiedMeanwhileIsSafe) {
  for (int row = 0; row < 1000; ++row) form().Lst_Direct.Add("line");
  EXPECT_EQ(Rows("Lst_Direct"), 0);
  EXPECT_TRUE(QTest::qWaitFor([this] { return Rows("Lst_Direct") == 1000; }, 2000));
  form().Lst_Direct.Add("one more");
  form().Lst_Direct.Clear();
  EXPECT_EQ(Rows("Lst_Direct"), 0);
  EXPECT_FALSE(QTest::qWaitFor([this] { return Rows("Lst_Direct") != 0; }, 80));
}

TEST_F(MainWindow, KeysAreHandedOn) {
  auto& cancel = Button("Cmd_Cancel");
  Press(cancel, Qt::Key_Space);
  EXPECT_EQ(port.escapes, 0) << "the space bar does not cancel";
  Press(cancel, Qt::Key_Q);
  Press(Field("Txt_UnitName"), Qt::Key_Escape);
  EXPECT_EQ(port.escapes, 1) << "Escape cancels wherever it is pressed";
  Press(window(), Qt::Key_F1);
  EXPECT_EQ(shell.opened, std::vector<std::string>{help.contents});
  Type("Txt_UnitName", "aF");
  EXPECT_EQ(form().Txt_UnitName.text(), "aF");
  Field("Txt_UnitName").setFocus();
  Press(Field("Txt_UnitName"), Qt::Key_Shift);
  for (const char* key : {"65", "16"}) {
    EXPECT_FALSE(Logged(std::string("Form_KeyDown KeyCode: ") + key)) << "keys typed into fields are not traced";
  }
  Button("Cmd_Close").setFocus();
  Press(window(), Qt::Key_A);
  for (const char* text : {"cmd_Cancel_KeyDown KeyCode: 32 DoingSomething: False", "space, so set ai_KeyAscii = 0",
                           "Cmd_Cancel_KeyPress KeyCode: 113 DoingSomething: False", "Form_KeyDown KeyCode: 65",
                           "Form_KeyPress KeyAscii set to zero: 97"}) {
    EXPECT_TRUE(Logged(text)) << text;
  }
}

TEST(MainWindowStates, TheFocusOfWhatIsDisabledWaitsInTheWindowAndComesBack) {
  for (const char* name : {"Txt_UnitName", "Cmb_GetFrom", "Chk_UnitActive", "Cmd_DownloadAll_1", "Txt_Direct"}) {
    SCOPED_TRACE(name);
    WindowWorld world("[Ports]\nCOM1=/dev/base\n[Units]\nNumUnits=2\n");
    world.Open();
    world.form().Chk_Direct.SetTicked(true);
    auto& widget = world.Widget<QWidget>(name);
    widget.setFocus();
    world.loop.After(500, [&world] {
      EXPECT_EQ(world.window().focusWidget(), &world.window());
      QTest::keyClicks(&world.window(), "n sd");
      for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) QTest::keyClick(&world.window(), key);
    });
    world.port.on_line = nullptr;
    world.Choose("mnu_Download", 1);
    EXPECT_EQ(world.port.lines.size(), 1U) << "Escape cancels";
    EXPECT_EQ(world.form().Cmb_LogPeriod.shown_text(), "03:00");
    EXPECT_EQ(world.form().Txt_UnitName.text(), "Site 1");
    EXPECT_EQ(world.window().focusWidget(), &widget);
  }
}

TEST(MainWindowStates, ARoundThatStartsByItselfTakesNoHalfOfARelaysId) {
  WindowWorld world(SmallNetwork(1) + "RelayID1=5\n[Relays]\nNumRelays=2\nID2=5\n");
  world.Open();
  world.form().Lst_Relays.SetCurrent(1);
  world.Type("Txt_RelayID", "1");
  world.app().commands().DownloadAll(true, kRadioUnits, true);
  EXPECT_TRUE(world.port.lines.at(0).starts_with("00005:"));
  EXPECT_EQ(world.app().registry().Relays[2].ID, 5);
  world.dialogs.answers = {1};
  world.Type("Txt_RelayID", "12");
  Q_EMIT world.Field("Txt_RelayID").editingFinished();
  world.Settle();
  EXPECT_EQ(world.app().registry().Units[1].RelayID, 12);
  EXPECT_EQ(world.form().Cmb_Relay.SelectedItemData(), 12);
}

TEST_F(MainWindow, TabGoesRoundBothWays) {
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
  const auto walk = [this](Qt::Key key) {
    const QWidget* const start = QApplication::focusWidget();
    QStringList passed;
    do {
      Press(window(), key);
      passed << QApplication::focusWidget()->objectName();
    } while (QApplication::focusWidget() != start && passed.size() < 200);
    return passed;
  };
  QStringList forward = walk(Qt::Key_Tab);
  forward.prepend(forward.takeLast());
  QStringList backward = walk(Qt::Key_Backtab);
  std::reverse(backward.begin(), backward.end());
  EXPECT_EQ(forward.join(' ').toStdString(), backward.join(' ').toStdString());
  EXPECT_TRUE(forward.contains("Cmb_LogPeriod") && forward.contains("Cmd_Cancel") && forward.contains("Lst_Units"));
}

TEST_F(MainWindow, MenusStandInTheirTreeAndStartTheirCommands) {
  QStringList captions;
  for (const QAction* action : Widget<QMenu>("mnu_halvex").actions()) {
    if (action->isVisible()) captions << (action->isSeparator() ? "-" : action->text());
  }
  EXPECT_EQ(captions.join('|').toStdString(),
            "&Download|&Send Files|&Convert|-|&Test|&Set Date|Set &Log Period|-|Set Mode|Set Delays");
  EXPECT_EQ(Entry("mnu_halvex", 4).menu(), &Widget<QMenu>("mnu_GetDate"));
  Choose("mnu_Clients", 0);
  EXPECT_EQ(form().Lst_Clients.count(), 3);
  Choose("mnu_Help", 3);
  EXPECT_TRUE(dialogs.Texts().back().starts_with("Corvane"));
  EXPECT_FALSE(Entry("mnu_ftp", 0).isEnabled()) << "not connected";
}

TEST(MainWindowStates, OperationCommandsAreDisabledWhileADownloadRuns) {
  WindowWorld world("[Ports]\nCOM1=/dev/base\n[Units]\nNumUnits=2\n");
  world.Open();
  bool looked = false;
  world.loop.After(500, [&] {
    looked = true;
    for (const char* menu : {"mnu_Units", "mnu_Download", "mnu_Convert"}) {
      EXPECT_FALSE(world.Widget<QMenu>(menu).menuAction()->isEnabled()) << menu;
    }
    world.ChooseRow("Lst_Clients", 1);
    EXPECT_EQ(world.List("Lst_Clients").currentIndex().row(), 0) << "a choice that is refused does not stay marked";
  });
  world.Click("Cmd_DownloadAll_1");
  EXPECT_TRUE(looked);
}

TEST(MainWindowStates, SettingsAreShownAndFitASmallScreenAtTwiceItsSize) {
  WindowWorld world(
      "[General]\nPort=3\nLastDownload=21 Sep 2026 23:59\nNextDownload=22 Sep 2026 23:59\n[Ports]\nCOM3=/dev/radio\n");
  world.Open();
  EXPECT_TRUE(world.Widget<QComboBox>("Cmb_Port_0").currentText().startsWith("COM3   /dev/radio"));
  EXPECT_EQ(world.form().Cmb_Port[0].shown_text(), "COM3");
  world.window().resize(10, 10);
  QApplication::processEvents();
  EXPECT_LE(world.window().width(), 1366 / 2);
  EXPECT_LE(world.window().height(), 768 / 2);
}

TEST(MainWindowStates, TakesAHundredThousandSelectedFilesAndARefusal) {
  WindowWorld world;
  world.Open();
  const std::vector<std::string> names(100'000, "0.txt\t0 b\t2010-01-01 00:00:00");
  world.form().Lst_LocalFiles.SetRows(names);
  world.List("Lst_LocalFiles").selectAll();
  EXPECT_EQ(world.form().Lst_LocalFiles.SelectedCount(), 100'000);
  world.dialogs.answers = {2};
  world.Click("Cmd_DeleteFile");
  EXPECT_EQ(world.dialogs.Texts(), std::vector<std::string>{"Delete all selected files ?"});
  EXPECT_EQ(world.Rows("Lst_LocalFiles"), 100'000);
  EXPECT_EQ(world.List("Lst_LocalFiles").selectionModel()->selectedRows().size(), 100'000);
}

}  // namespace
}  // namespace corvane::test
