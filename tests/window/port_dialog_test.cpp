#include "window/port_dialog.h"

#include <string>
#include <vector>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

#include "support/fake_loop.h"
#include "support/scripted_port.h"

namespace corvane::window {
namespace {

const std::string kRadio = "/dev/serial/by-id/usb-FTDI_FT232R_USB_UART_A10K1X2Y-if00-port0";

class PortDialogTest : public QObject {
  Q_OBJECT

 private slots:
  void init();
  void AssignsWhatIsChosenFromTheList();
  void TakesWhatIsTypedWhenItIsADevice();
  void LooksAgainWithoutLosingWhatWasTyped();
  void ClosesByKeyAndButton();
  void TheTabKeyGoesFromTopToBottom();
  void FitsASmallScreenAtTwiceItsSize();

 private:
  template <class Widget>
  Widget* Find(const char* name) {
    return dialog_->findChild<Widget*>(name);
  }
  void Click(const char* name) { QTest::mouseClick(Find<QPushButton>(name), Qt::LeftButton); }
  QTreeWidgetItem* Row(int row) { return Find<QTreeWidget>("Devices")->topLevelItem(row); }

  test::FakeLoop loop_;
  test::ScriptedPort port_{loop_};
  std::unique_ptr<PortDevices> devices_;
  std::unique_ptr<PortChoices> choices_;
  std::unique_ptr<PortDialog> dialog_;
  int changes_ = 0;
  int closings_ = 0;
};

void PortDialogTest::init() {
  changes_ = closings_ = 0;
  port_.devices_there = {{kRadio, "/dev/ttyUSB0", ""},
                         {"/dev/ttyACM0", "/dev/ttyACM0",
                          "no permission to use /dev/ttyACM0: add yourself to the group "
                          "dialout and log in again"},
                         {"/dev/ttyS0", "/dev/ttyS0", ""}};
  devices_ = std::make_unique<PortDevices>();
  choices_ = std::make_unique<PortChoices>(*devices_, port_);
  dialog_ = std::make_unique<PortDialog>(*choices_);
  dialog_->assignment_changed = [this] { ++changes_; };
  dialog_->closed = [this] { ++closings_; };
  dialog_->OpenFor(3);
  QVERIFY(QTest::qWaitForWindowExposed(dialog_.get()));
}

void PortDialogTest::AssignsWhatIsChosenFromTheList() {
  QCOMPARE(Find<QComboBox>("Ports")->currentText(), QString("COM3   /dev/ttyS2   (not there)"));
  QVERIFY(!Find<QPushButton>("BuiltIn")->isEnabled());
  auto* list = Find<QTreeWidget>("Devices");
  QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(Row(0)).center());
  QCOMPARE(Find<QLineEdit>("Device")->text().toStdString(), kRadio);
  QCOMPARE(Find<QLabel>("Check")->text(), QString());
  QTest::keyClick(list, Qt::Key_Return);
  QCOMPARE(devices_->DeviceOf(3), kRadio);
  QCOMPARE(changes_, 1);
  QCOMPARE(Row(0)->text(3), QString("COM3, COM5"));
  QVERIFY(Find<QComboBox>("Ports")->currentText().endsWith("(there)"));
  QVERIFY(dialog_->isVisible());
  QTest::keyClick(list, Qt::Key_Down);
  QVERIFY(Find<QLabel>("Check")->text().contains("group dialout"));
  if (const QString picture = qEnvironmentVariable("PORT_DIALOG_PICTURE"); !picture.isEmpty()) {
    QVERIFY(dialog_->grab().save(picture));
  }

  Click("BuiltIn");
  QCOMPARE(devices_->DeviceOf(3), std::string("/dev/ttyS2"));
  QCOMPARE(Find<QLineEdit>("Device")->text(), QString("/dev/ttyS2"));
  QCOMPARE(changes_, 2);
}

void PortDialogTest::TakesWhatIsTypedWhenItIsADevice() {
  auto* field = Find<QLineEdit>("Device");
  field->clear();
  QTest::keyClicks(field, "ttyUSB7");
  QVERIFY(!Find<QPushButton>("Use")->isEnabled());
  QVERIFY(Find<QLabel>("Check")->text().contains("begins with \"/\""));
  QTest::keyClick(field, Qt::Key_Return);
  QCOMPARE(changes_, 0);
  QTest::keyClick(field, Qt::Key_Home);
  QTest::keyClicks(field, "/dev/");
  QCOMPARE(Find<QLabel>("Check")->text(), QString());
  Click("Use");
  QCOMPARE(devices_->DeviceOf(3), std::string("/dev/ttyUSB7"));
  QVERIFY(Find<QLabel>("State")->text().contains("not there"));
}

void PortDialogTest::LooksAgainWithoutLosingWhatWasTyped() {
  Find<QLineEdit>("Device")->setText("/dev/typed");
  port_.devices_there.clear();
  Click("LookAgain");
  QVERIFY(Row(0)->text(0).startsWith("No serial device"));
  QVERIFY(!(Row(0)->flags() & Qt::ItemIsSelectable));
  port_.devices_there = {{"/dev/ttyS2", "/dev/ttyS2", ""}};
  Click("LookAgain");
  QCOMPARE(Row(0)->text(0), QString("/dev/ttyS2"));
  QCOMPARE(Find<QComboBox>("Ports")->currentText(), QString("COM3   /dev/ttyS2   (there)"));
  QCOMPARE(Find<QLineEdit>("Device")->text(), QString("/dev/typed"));
}

void PortDialogTest::ClosesByKeyAndButton() {
  QTest::keyClick(dialog_.get(), Qt::Key_Escape);
  QCOMPARE(closings_, 1);
  dialog_->OpenFor(50);
  QCOMPARE(Find<QLineEdit>("Device")->text(), QString());
  Click("Close");
  QCOMPARE(closings_, 2);
  QVERIFY(!dialog_->isVisible());
}

void PortDialogTest::TheTabKeyGoesFromTopToBottom() {
  QVERIFY(choices_->Assign(3, kRadio).ok());
  dialog_->OpenFor(3);
  QStringList names;
  for (int key = 0; key < 7; ++key) {
    names += dialog_->focusWidget()->objectName();
    QTest::keyClick(dialog_->focusWidget(), Qt::Key_Tab);
  }
  QCOMPARE(names.join(" "), QString("Ports Devices LookAgain Device Use BuiltIn Close"));
}

void PortDialogTest::FitsASmallScreenAtTwiceItsSize() {
  const QSize least = dialog_->minimumSizeHint();
  QVERIFY(least.width() <= 1366 / 2 && least.height() <= 768 / 2);
}

}  // namespace
}  // namespace corvane::window

using corvane::window::PortDialogTest;
QTEST_MAIN(PortDialogTest)
#include "port_dialog_test.moc"
