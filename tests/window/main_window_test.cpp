#include <algorithm>
#include <set>

#include <QAbstractItemView>
#include <QClipboard>
#include <QLabel>
#include <QProgressBar>
#include <QRadioButton>
#include <QTreeView>

#include <gtest/gtest.h>

#include "window_world.h"

namespace corvane::test {
namespace {

bool IsControlName(const QString& name) {
  static const std::set<QString> prefixes = {"Txt", "txt", "Cmd", "Chk", "chk", "Lst", "Cmb",
                                             "Opt", "Lbl", "lbl", "mnu", "Bar", "Frm", "Frame"};
  return prefixes.contains(name.section('_', 0, 0)) && name.contains('_');
}

TEST(MainWindow, FormAndWidgetsBearTheSameNames) {
  WindowWorld world;
  std::set<std::string> controls;
  for (const Control* control : world.form().controls()) controls.insert(control->name());
  std::set<std::string> widgets = {world.window().objectName().toStdString()};
  for (const QWidget* widget : world.window().findChildren<QWidget*>()) {
    const QString name = widget->objectName();
    // The buttons of an option group bear its name and their index.
    const bool is_option = qobject_cast<const QRadioButton*>(widget) != nullptr && name.startsWith("Opt_");
    if (IsControlName(name) && !is_option) widgets.insert(name.toStdString());
  }
  EXPECT_EQ(controls, widgets);
}

TEST(MainWindow, WhatIsTypedOrClickedReachesTheForm) {
  WindowWorld world;
  world.Open();
  Form& form = world.form();
  world.Type("Txt_UnitName", "Orchard");
  EXPECT_EQ(form.Lst_Units.text(0), "Orchard") << "a name shows in the list while it is typed";
  EXPECT_EQ(world.Widget<QAbstractItemView>("Lst_Units").model()->index(0, 0).data().toString(), "Orchard");
  world.Click("Chk_ZIPFiles");
  EXPECT_TRUE(form.Chk_ZIPFiles.ticked());
  world.Click("Opt_WhichReadings_1");
  EXPECT_EQ(form.Opt_WhichReadings.GetOptionIndex(), 1);
  QTest::keyClick(&world.Widget<QComboBox>("Cmb_GetFrom"), Qt::Key_Down);
  EXPECT_EQ(form.Cmb_GetFrom.SelectedItemData(), kFromHandHeld);
  auto& period = *world.Widget<QComboBox>("Cmb_LogPeriod").lineEdit();
  QTest::keyClick(&period, Qt::Key_Home);
  QTest::keyClick(&period, Qt::Key_Delete);
  QTest::keyClicks(&period, "1");
  EXPECT_EQ(form.Cmb_LogPeriod.shown_text(), "13:00") << "the cursor stays where the person types";
  world.Click("Cmd_Units_0");
  EXPECT_EQ(form.Lst_Units.count(), 6);
  world.Settle();
  EXPECT_EQ(world.window().focusWidget(), &world.Widget<QLineEdit>("Txt_UnitName")) << "a new unit wants a name";
}

TEST(MainWindow, WhatTheProgramChangesShowsAndDoesNotComeBack) {
  WindowWorld world;
  world.Open();
  Form& form = world.form();
  int changes = 0;
  for (Control* control : std::initializer_list<Control*>{&form.Txt_Prefix, &form.Chk_Kelvin, &form.Opt_Average,
                                                          &form.Cmb_LogPeriod, &form.Lst_Clients}) {
    control->on_change = [&changes] { ++changes; };
  }
  form.Txt_Prefix.SetText("pr");
  form.Chk_Kelvin.SetTicked(false);
  form.Opt_Average.SetOptionIndex(1);
  form.Cmb_LogPeriod.SetShownText("01:00");
  form.Lst_Clients.SetCurrent(1);
  form.Bar_Unit.SetValue(40);
  form.Lbl_Status.SetText("Working");
  EXPECT_EQ(changes, 5) << "one change each, none comes back from the widgets";
  EXPECT_EQ(world.Widget<QLineEdit>("Txt_Prefix").text(), "pr");
  EXPECT_FALSE(world.Widget<QAbstractButton>("Chk_Kelvin").isChecked());
  EXPECT_TRUE(world.Widget<QRadioButton>("Opt_Average_1").isChecked());
  EXPECT_EQ(world.Widget<QComboBox>("Cmb_LogPeriod").currentText(), "01:00");
  EXPECT_EQ(world.Widget<QAbstractItemView>("Lst_Clients").currentIndex().row(), 1);
  EXPECT_EQ(world.Widget<QProgressBar>("Bar_Unit").value(), 40);
  EXPECT_EQ(world.Widget<QLabel>("Lbl_Status").text(), "Working");
}

TEST(MainWindow, FieldsHoldWhateverIsPutIntoThem) {
  WindowWorld world;
  world.Open();
  auto& edit = world.Widget<QLineEdit>("Txt_UnitName");
  const std::pair<QString, std::string> rows[] = {
      {QString("x").repeated(5000), std::string(126, 'x')},
      {"one\r\ntwo\nthree", "one  two three"},
      {QString::fromUtf8("K\xC3\xBChlhaus \xE2\x82\xAC"), "K\xC3\xBChlhaus \xE2\x82\xAC"},
      {"", ""},
      {"-99999999999999999999", "-99999999999999999999"}};
  for (const auto& [pasted, held] : rows) {
    SCOPED_TRACE(held);
    QApplication::clipboard()->setText(pasted);
    edit.setText("old");
    edit.selectAll();
    if (pasted.isEmpty()) {
      edit.del();
    } else {
      edit.paste();
    }
    const std::string text = world.form().Txt_UnitName.text();
    EXPECT_EQ(text.substr(0, held.size()), held.substr(0, text.size()));
    EXPECT_EQ(text.find_first_of("\r\n"), std::string::npos);
    EXPECT_EQ(edit.text().toStdString(), text) << "the field shows what is held";
    EXPECT_EQ(world.form().Lst_Units.text(0), text);
  }
}

TEST(MainWindow, ListsTakeClicksChecksAndSelections) {
  WindowWorld world;
  world.home.Write("a.txt", "1");
  world.home.Write("b.txt", "22");
  world.Open();
  Form& form = world.form();
  auto& units = world.Widget<QAbstractItemView>("Lst_Units");
  QTest::mouseClick(units.viewport(), Qt::LeftButton, {}, units.visualRect(units.model()->index(2, 0)).center());
  world.Settle();
  EXPECT_EQ(form.Txt_UnitName.text(), "Site 3");
  QTest::mouseClick(units.viewport(), Qt::LeftButton, Qt::ControlModifier,
                    units.visualRect(units.model()->index(2, 0)).center());
  EXPECT_TRUE(units.selectionModel()->isSelected(units.model()->index(2, 0))) << "commands still act on it";
  units.model()->setData(units.model()->index(1, 0), Qt::Unchecked, Qt::CheckStateRole);
  EXPECT_EQ(world.app().registry().Units[2].Active, 0);
  form.Lst_Units.SetEnabled(false);
  QTest::mouseClick(units.viewport(), Qt::LeftButton, {}, units.visualRect(units.model()->index(0, 0)).center());
  world.Settle();
  EXPECT_FALSE(units.model()->setData(units.model()->index(1, 0), Qt::Checked, Qt::CheckStateRole));
  EXPECT_EQ(form.Txt_UnitName.text(), "Site 3") << "while an operation runs a click changes nothing";

  auto& files = world.Widget<QTreeView>("Lst_LocalFiles");
  ASSERT_EQ(files.model()->rowCount(), 2);
  EXPECT_EQ(files.model()->index(1, 1).data().toString(), "2 b");
  files.selectAll();
  EXPECT_EQ(form.Lst_LocalFiles.SelectedCount(), 2);
  Q_EMIT files.doubleClicked(files.model()->index(1, 0));
  world.Settle();
  EXPECT_EQ(world.shell.edited, std::vector<std::string>{world.home.Name("b.txt")});
}

TEST(MainWindow, AppendedRowsAreShownInOneGoAndAListThatIsEmptiedMeanwhileIsSafe) {
  WindowWorld world;
  world.Open();
  auto& model = *world.Widget<QAbstractItemView>("Lst_Direct").model();
  for (int row = 0; row < 1000; ++row) world.form().Lst_Direct.Add("line");
  EXPECT_EQ(model.rowCount(), 0);
  EXPECT_TRUE(QTest::qWaitFor([&model] { return model.rowCount() == 1000; }, 2000));
  world.form().Lst_Direct.Add("one more");
  world.form().Lst_Direct.Clear();
  EXPECT_EQ(model.rowCount(), 0);
  EXPECT_FALSE(QTest::qWaitFor([&model] { return model.rowCount() != 0; }, 80));
}

TEST(MainWindow, KeysAreHandedOn) {
  WindowWorld world("[Ports]\nCOM1=/dev/base\n");
  world.Open();
  auto& cancel = world.Widget<QAbstractButton>("Cmd_Cancel");
  QTest::keyClick(&cancel, Qt::Key_Space);
  world.Settle();
  EXPECT_EQ(world.port.escapes, 0) << "the space bar does not cancel";
  EXPECT_TRUE(world.Logged("cmd_Cancel_KeyDown KeyCode: 32 DoingSomething: False"));
  EXPECT_TRUE(world.Logged("space, so set ai_KeyAscii = 0"));
  QTest::keyClick(&cancel, Qt::Key_Q);
  EXPECT_TRUE(world.Logged("Cmd_Cancel_KeyPress KeyCode: 113 DoingSomething: False"));
  QTest::keyClick(&world.Widget<QLineEdit>("Txt_UnitName"), Qt::Key_Escape);
  world.Settle();
  EXPECT_EQ(world.port.escapes, 1) << "Escape cancels wherever it is pressed";
  QTest::keyClick(&world.window(), Qt::Key_F1);
  world.Settle();
  EXPECT_EQ(world.shell.opened, std::vector<std::string>{"/guide/index.html"});
  world.Type("Txt_UnitName", "aF");
  EXPECT_EQ(world.form().Txt_UnitName.text(), "aF");
  EXPECT_FALSE(world.Logged("Form_KeyDown KeyCode: 65")) << "keys typed into fields are not traced";
  world.Widget<QLineEdit>("Txt_UnitName").setFocus();
  QTest::keyClick(&world.Widget<QLineEdit>("Txt_UnitName"), Qt::Key_Shift);
  EXPECT_FALSE(world.Logged("Form_KeyDown KeyCode: 16"));
  world.Widget<QWidget>("Cmd_Close").setFocus();
  QTest::keyClick(&world.window(), Qt::Key_A);
  EXPECT_TRUE(world.Logged("Form_KeyDown KeyCode: 65"));
  EXPECT_TRUE(world.Logged("Form_KeyPress KeyAscii set to zero: 97"));
}

TEST(MainWindow, TheFocusOfWhatIsDisabledWaitsInTheWindowAndComesBack) {
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
      QTest::keyClick(&world.window(), Qt::Key_Return);
      QTest::keyClick(&world.window(), Qt::Key_Escape);
    });
    world.port.on_line = nullptr;
    world.Choose("mnu_Download", 1);
    EXPECT_EQ(world.port.lines.size(), 1U) << "Escape cancels";
    EXPECT_EQ(world.form().Cmb_LogPeriod.shown_text(), "03:00");
    EXPECT_EQ(world.form().Txt_UnitName.text(), "Site 1");
    EXPECT_EQ(world.window().focusWidget(), &widget);
  }
}

TEST(MainWindow, TabGoesRoundBothWays) {
  WindowWorld world;
  world.Open();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&world.window()));
  const auto walk = [&world](Qt::Key key) {
    const QWidget* const start = QApplication::focusWidget();
    QStringList passed;
    do {
      QTest::keyClick(&world.window(), key);
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

TEST(MainWindow, FieldsActWhenTheyAreLeft) {
  WindowWorld world;
  world.Open();
  world.Type("Txt_MaxRetries", "40");
  EXPECT_EQ(world.form().Txt_MaxRetries.text(), "40");
  world.Leave("Txt_MaxRetries");
  EXPECT_EQ(world.Widget<QLineEdit>("Txt_MaxRetries").text(), "15");
}

TEST(MainWindow, MenusStandInTheirTreeAndStartTheirCommands) {
  WindowWorld world;
  world.Open();
  QStringList captions;
  for (const QAction* action : world.Widget<QMenu>("mnu_halvex").actions()) {
    if (action->isVisible()) captions << (action->isSeparator() ? "-" : action->text());
  }
  EXPECT_EQ(captions.join('|').toStdString(),
            "&Download|&Send Files|&Convert|-|&Test|&Set Date|Set &Log Period|-|Set Mode|Set Delays");
  EXPECT_EQ(world.Widget<QMenu>("mnu_halvex").actions().at(4)->menu(), &world.Widget<QMenu>("mnu_GetDate"));
  world.Choose("mnu_Clients", 0);
  EXPECT_EQ(world.form().Lst_Clients.count(), 3);
  world.Choose("mnu_Help", 3);
  EXPECT_EQ(world.dialogs.Texts().back().substr(0, 7), "Corvane");
  EXPECT_FALSE(world.Widget<QMenu>("mnu_ftp").actions().at(0)->isEnabled()) << "not connected";
}

TEST(MainWindow, OperationCommandsAreDisabledWhileADownloadRuns) {
  WindowWorld world("[Ports]\nCOM1=/dev/base\n[Units]\nNumUnits=2\n");
  world.Open();
  bool looked = false;
  world.loop.After(500, [&] {
    looked = true;
    for (const char* menu : {"mnu_Units", "mnu_Download", "mnu_Convert"}) {
      EXPECT_FALSE(world.Widget<QMenu>(menu).menuAction()->isEnabled()) << menu;
    }
    for (const char* button : {"Cmd_DownloadAll_1", "Cmd_Process_1", "Cmd_Convert", "Cmd_Close"}) {
      EXPECT_FALSE(world.Widget<QWidget>(button).isEnabled()) << button;
    }
    EXPECT_TRUE(world.Widget<QWidget>("Cmd_Cancel").isEnabled());
    EXPECT_FALSE(world.Widget<QWidget>("Txt_UnitID").isEnabled()) << "typing would go to whichever unit is asked";
    auto& clients = world.Widget<QAbstractItemView>("Lst_Clients");
    clients.setCurrentIndex(clients.model()->index(1, 0));
    world.Settle();
    EXPECT_EQ(clients.currentIndex().row(), 0) << "a choice that is refused does not stay marked";
  });
  world.Click("Cmd_DownloadAll_1");
  EXPECT_TRUE(looked);
  EXPECT_TRUE(world.Widget<QWidget>("Cmd_DownloadAll_1").isEnabled());
  EXPECT_EQ(world.port.lines.size(), 2U);
}

TEST(MainWindow, TitleFollowsTheMinimisedWindowAndIsRestored) {
  WindowWorld world("[General]\nAutomatic=1\nHeartBeat=1\n[Units]\nNumUnits=0\n");
  world.Open("/M");
  EXPECT_TRUE(world.window().isMinimized());
  world.loop.Advance(2000);
  EXPECT_EQ(world.window().windowTitle().toStdString(), "01:59:58");
  world.form().Frm_Main.SetTitle("");
  EXPECT_EQ(world.window().windowTitle(), "Corvane") << "an empty title shows the product name";
  world.window().showNormal();
  EXPECT_FALSE(world.form().Frm_Main.minimised());
  EXPECT_EQ(world.form().Frm_Main.title(), "Corvane");
}

TEST(MainWindow, PortSelectorsShowTheDevicesOfTheSettings) {
  WindowWorld world("[General]\nPort=3\n[Ports]\nCOM3=/dev/radio\n");
  world.Open();
  EXPECT_TRUE(world.Widget<QComboBox>("Cmb_Port_0").currentText().startsWith("COM3   /dev/radio"));
  EXPECT_EQ(world.form().Cmb_Port[0].shown_text(), "COM3");
}

TEST(MainWindow, FitsASmallScreenAtTwiceItsSize) {
  WindowWorld world("[General]\nLastDownload=21 Sep 2026 23:59\nNextDownload=22 Sep 2026 23:59\n");
  world.Open();
  world.window().resize(10, 10);
  QApplication::processEvents();
  const QSize least = world.window().size();
  EXPECT_LE(least.width(), 1366 / 2);
  EXPECT_LE(least.height(), 768 / 2);
}

}  // namespace
}  // namespace corvane::test
