#include "qt/qt_dialogs.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QTest>

#include <gtest/gtest.h>

#include "qt/qt_loop.h"
#include "support/temp_folder.h"

namespace corvane::test {
namespace {

class QtDialogsTest : public testing::Test {
 protected:
  QtDialogsTest() {
    dialogs.SetParent(&window);
    dialogs.on_box_closed = [this] { ++closed; };
    window.show();
  }
  /// The dialog that is shown.
  template <class Kind>
  static Kind& Shown() {
    auto* dialog = qobject_cast<Kind*>(QApplication::activeModalWidget());
    if (dialog == nullptr) throw std::runtime_error("no such dialog is shown");
    return *dialog;
  }
  static BoxContents Question() { return {"Corvane", "Delete: 'a' ?", {"Yes", "No"}, 2, BoxIcon::Question, ""}; }

  QtLoop loop;
  QWidget window;
  QtDialogs dialogs{loop};
  int closed = 0;
};

TEST_F(QtDialogsTest, ABoxTellsWhichButtonWasPressedOnce) {
  std::vector<int> positions;
  const auto take = [&positions](int position) { positions.push_back(position); };
  dialogs.OpenBox(Question(), take);
  auto& box = Shown<QDialog>();
  EXPECT_EQ(box.findChild<QLabel*>("Lbl_Message")->text(), "Delete: 'a' ?");
  EXPECT_EQ(box.focusWidget(), box.findChild<QWidget*>("Cmd_Command_2")) << "the default has the focus";
  box.findChild<QAbstractButton*>("Cmd_Command_1")->click();
  dialogs.OpenBox(Question(), take);
  QTest::keyClick(&Shown<QDialog>(), Qt::Key_Escape);
  dialogs.OpenBox(Question(), take);
  Shown<QDialog>().close();
  EXPECT_EQ(positions, (std::vector<int>{1, 0, 0}));
  EXPECT_EQ(closed, 3);
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(QtDialogsTest, ATimedBoxCountsDownAndIsTakenAwayWithoutAnAnswer) {
  bool clicked = false;
  BoxContents contents{"Corvane", "Convert error(s): 3", {"Ok"}, 1, BoxIcon::Exclamation, "10"};
  const auto box = dialogs.OpenBox(contents, [&clicked](int) { clicked = true; });
  const auto* label = Shown<QDialog>().findChild<QLabel*>("Lbl_Timeout");
  EXPECT_EQ(label->text(), "10");
  dialogs.SetCountDown(box, "9");
  EXPECT_EQ(label->text(), "9");
  dialogs.CloseBox(box);
  dialogs.SetCountDown(box, "8");
  dialogs.CloseBox(box);
  EXPECT_FALSE(clicked);
  EXPECT_EQ(closed, 1);
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(QtDialogsTest, TextsFilesAndFoldersAreAskedForUntilTheyAreAnswered) {
  const TempFolder folder;
  const std::string hex = folder.Write("a.hex", "0");
  folder.Write("plain", "0");
  QStringList seen;
  loop.Post([&] {
    auto& dialog = Shown<QInputDialog>();
    seen << dialog.textValue();
    dialog.setTextValue(QString::fromUtf8("n\xC3\xA4u"));
    static_cast<QDialog&>(dialog).accept();
  });
  EXPECT_EQ(dialogs.AskText("Set Mode", "Mode:", "old"), "n\xC3\xA4u");
  const auto choose = [&](const std::string& name) {
    loop.Post([&, name] {
      auto& dialog = Shown<QFileDialog>();
      seen << dialog.nameFilters();
      dialog.selectFile(QString::fromStdString(name));
      static_cast<QDialog&>(dialog).accept();
    });
  };
  choose(hex);
  EXPECT_EQ(dialogs.ChooseFile("Hex", "Hex files(*.hex)|*.hex|All files(*.)|*.*", folder.path()), hex);
  EXPECT_EQ(seen, (QStringList{"old", "Hex files (*.hex)", "All files (*)"}));
  choose(folder.path());
  EXPECT_EQ(dialogs.ChooseFolder("Folder", folder.path()), folder.path());
  loop.Post([] { Shown<QInputDialog>().reject(); });
  EXPECT_EQ(dialogs.AskText("Set Mode", "Mode:", "old"), std::nullopt);
  loop.Post([] { Shown<QFileDialog>().reject(); });
  EXPECT_EQ(dialogs.ChooseFolder("Folder", folder.path()), std::nullopt);
  EXPECT_EQ(closed, 0) << "a choice that was asked for brings no activation";
}

}  // namespace
}  // namespace corvane::test
