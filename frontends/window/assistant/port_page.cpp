#include <QFormLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "window/assistant/pages.h"
#include "window/assistant/texts.h"
#include "window/assistant/widgets.h"

namespace corvane::window::assistant {
namespace {

constexpr int kShownDevices = 5;
constexpr int kProblemRole = Qt::UserRole;

}  // namespace

PortPage::PortPage(Desk& desk) : AssistantPage(SetupPage::Port, desk) {
  AddIntroduction(
      "Which device leads to the base station? A name with \"by-id\" stays with its adapter, whichever "
      "socket it is plugged into. Test asks the base station for a sign of life.",
      kPortIntro);
  devices_ = new QTreeWidget;
  devices_->setObjectName("setupDevices");
  devices_->setProperty("textId", kDeviceHeadings);
  devices_->setHeaderLabels({"Name", "Leads to", "State"});
  devices_->setRootIsDecorated(false);
  devices_->setTextElideMode(Qt::ElideMiddle);
  devices_->setMinimumHeight(devices_->fontMetrics().lineSpacing() * kShownDevices);
  devices_->header()->setStretchLastSection(false);
  devices_->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
  devices_->header()->setSectionResizeMode(0, QHeaderView::Stretch);
  QPushButton* const again = NewPush("Look a&gain", kLookAgain, "setupLookAgain");
  auto* head = new QHBoxLayout;
  head->addWidget(NewCaption("&Devices found:", kDevices, *devices_), 1);
  head->addWidget(again);
  rows().addLayout(head);
  rows().addWidget(devices_, 1);
  auto* form = new QFormLayout;
  device_ = AddField(*form, "D&evice:", kDevice, "setupDevice", this);
  device_->setPlaceholderText("/dev/...");
  LeadTo(SetupField::Device, *device_);
  rows().addLayout(form);
  problem_ = NewNote({}, 0, "setupDeviceProblem");
  rows().addWidget(problem_);
  AddTry(rows(), *NewPush("&Test", kTestPort, "setupTestPort"), "setupPortAnswer", &SetupTried::port,
         [this](const SetupPlan& plan) { return this->desk().app.setup().TryPort(plan); });
  connect(again, &QPushButton::clicked, this, [this] { FillDevices(); });
  connect(devices_, &QTreeWidget::itemSelectionChanged, this, [this] {
    const auto selected = devices_->selectedItems();
    if (!selected.isEmpty()) device_->setText(selected.front()->text(0));
  });
  connect(device_, &QLineEdit::textChanged, this, [this] { ShowProblem(); });
}

void PortPage::Show() {
  device_->setText(QString::fromStdString(desk().plan.device));
  FillDevices();
}

void PortPage::FillDevices() {
  const QSignalBlocker quiet(devices_);
  devices_->clear();
  for (const DeviceChoice& choice : desk().app.ports().Devices(desk().app.setup().phrases())) {
    auto* row = new QTreeWidgetItem(devices_);
    int column = 0;
    for (const std::string& text : {choice.path, choice.device, choice.presence}) {
      row->setText(column, QString::fromStdString(text));
      row->setToolTip(column++, QString::fromStdString(choice.problem.empty() ? choice.path : choice.problem));
    }
    row->setData(0, kProblemRole, QString::fromStdString(choice.problem));
    if (row->text(0) == device_->text()) devices_->setCurrentItem(row);
  }
  if (devices_->topLevelItemCount() == 0) {
    auto* none = new QTreeWidgetItem(devices_, {Say(kNoDevice)});
    none->setFlags(Qt::NoItemFlags);
    none->setFirstColumnSpanned(true);
  }
  ShowProblem();
}

void PortPage::ShowProblem() {
  QString problem;
  for (int row = 0; row < devices_->topLevelItemCount(); ++row) {
    const QTreeWidgetItem& item = *devices_->topLevelItem(row);
    if (item.text(0) == device_->text()) problem = item.data(0, kProblemRole).toString();
  }
  if (!problem.isEmpty())
    problem += "\n" + QString::fromStdString(PortChoices::PermissionHelp(desk().app.setup().phrases()));
  problem_->setText(problem);
}

void PortPage::Take() {
  desk().app.setup().ChooseDevice(desk().plan, device_->text().trimmed().toStdString());
}

}  // namespace corvane::window::assistant
