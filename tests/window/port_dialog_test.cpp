#include "window/port_dialog.h"

#include <string>
#include <vector>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

#include <gtest/gtest.h>

#include "support/fake_loop.h"
#include "support/scripted_port.h"

namespace corvane::window {
namespace {

const std::string kRadio = "/dev/serial/by-id/usb-FTDI_FT232R_USB_UART_A10K1X2Y-if00-port0";

class PortDialogTest : public testing::Test {
 protected:
  PortDialogTest() {
    port_.devices_there = {{kRadio, "/dev/ttyUSB0", ""},
                           {"/dev/ttyACM0", "/dev/ttyACM0", "no permission: add yourself to the group dialout"},
                           {"/dev/ttyS0", "/dev/ttyS0", ""}};
    dialog_.assignment_changed = [this] { ++changes_; };
    dialog_.OpenFor(3);
  }

  template <class Widget>
  Widget* Find(const char* name) {
    return dialog_.findChild<Widget*>(name);
  }
  QString Typed() { return Find<QLineEdit>("Device")->text(); }
  QString Check() { return Find<QLabel>("Check")->text(); }
  QString Port() { return Find<QComboBox>("Ports")->currentText(); }
  void Click(const char* name) { QTest::mouseClick(Find<QPushButton>(name), Qt::LeftButton); }
  QTreeWidgetItem* Row(int row) { return Find<QTreeWidget>("Devices")->topLevelItem(row); }

  test::FakeLoop loop_;
  test::ScriptedPort port_{loop_};
  PortDevices devices_;
  PortChoices choices_{devices_, port_};
  PortDialog dialog_{choices_};
  int changes_ = 0;
};

TEST_F(PortDialogTest, AssignsWhatIsChosenFromTheList) {
  EXPECT_EQ(Port(), "COM3   /dev/ttyS2   (not there)");
  EXPECT_FALSE(Find<QPushButton>("BuiltIn")->isEnabled());
  auto* list = Find<QTreeWidget>("Devices");
  QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(Row(0)).center());
  EXPECT_EQ(Typed().toStdString(), kRadio);
  EXPECT_EQ(Check(), "");
  QTest::keyClick(list, Qt::Key_Return);
  EXPECT_EQ(devices_.DeviceOf(3), kRadio);
  EXPECT_EQ(Row(0)->text(3), "COM3, COM5");
  EXPECT_TRUE(Port().endsWith("(there)"));
  EXPECT_TRUE(dialog_.isVisible());
  QTest::keyClick(list, Qt::Key_Down);
  EXPECT_TRUE(Check().contains("group dialout"));

  Click("BuiltIn");
  EXPECT_EQ(devices_.DeviceOf(3), "/dev/ttyS2");
  EXPECT_EQ(Typed(), "/dev/ttyS2");
  EXPECT_EQ(changes_, 2);
}

TEST_F(PortDialogTest, TakesWhatIsTypedWhenItIsADevice) {
  auto* field = Find<QLineEdit>("Device");
  field->clear();
  QTest::keyClicks(field, "ttyUSB7");
  EXPECT_FALSE(Find<QPushButton>("Use")->isEnabled());
  EXPECT_TRUE(Check().contains("begins with \"/\""));
  QTest::keyClick(field, Qt::Key_Return);
  EXPECT_EQ(changes_, 0);
  QTest::keyClick(field, Qt::Key_Home);
  QTest::keyClicks(field, "/dev/");
  EXPECT_EQ(Check(), "");
  Click("Use");
  EXPECT_EQ(devices_.DeviceOf(3), "/dev/ttyUSB7");
  EXPECT_TRUE(Find<QLabel>("State")->text().contains("not there"));
}

TEST_F(PortDialogTest, LooksAgainWithoutLosingWhatWasTyped) {
  Find<QLineEdit>("Device")->setText("/dev/typed");
  port_.devices_there.clear();
  Click("LookAgain");
  EXPECT_TRUE(Row(0)->text(0).startsWith("No serial device"));
  EXPECT_FALSE((Row(0)->flags() & Qt::ItemIsSelectable));
  port_.devices_there = {{"/dev/ttyS2", "/dev/ttyS2", ""}};
  Click("LookAgain");
  EXPECT_EQ(Row(0)->text(0), "/dev/ttyS2");
  EXPECT_EQ(Port(), "COM3   /dev/ttyS2   (there)");
  EXPECT_EQ(Typed(), "/dev/typed");
}

TEST_F(PortDialogTest, IsWorkedByKeyboardAndFitsASmallScreenAtTwiceItsSize) {
  EXPECT_LE(dialog_.minimumSizeHint().width(), 1366 / 2);
  EXPECT_LE(dialog_.minimumSizeHint().height(), 768 / 2);
  QTest::keyClick(&dialog_, Qt::Key_Escape);
  EXPECT_FALSE(dialog_.isVisible());
  dialog_.OpenFor(50);
  EXPECT_EQ(Typed(), "");
  Click("Close");
  EXPECT_FALSE(dialog_.isVisible());
  EXPECT_TRUE(choices_.Assign(3, kRadio).ok());
  dialog_.OpenFor(3);
  QStringList names;
  for (int key = 0; key < 7; ++key) {
    names += dialog_.focusWidget()->objectName();
    QTest::keyClick(dialog_.focusWidget(), Qt::Key_Tab);
  }
  EXPECT_EQ(names.join(" "), "Ports Devices LookAgain Device Use BuiltIn Close");
}

}  // namespace
}  // namespace corvane::window
