#include "window/port_dialog.h"

#include <cstddef>
#include <iterator>
#include <string>

#include <QComboBox>
#include <QFrame>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "window/network/view_button.h"

namespace corvane::window {
namespace {

constexpr int kWidth = 760;
constexpr int kHeight = 480;
constexpr int kShownDevices = 6;
constexpr int kProblemRole = Qt::UserRole;
constexpr const char* kTextId = "textId";

/// The texts of this dialog in language files.
enum TextId : int {
  kTitle = 1000,
  kPortNumber,
  kPortTip,
  kAsRadio,
  kAsHandheld,
  kFound,
  kHeadings,  ///< and those that follow it
  kLookAgain = 1010,
  kDevice,
  kDeviceTip,
  kUse,
  kBuiltIn,
  kClose,
  kNoDevice,
  kNotUsable,
};

QString ToText(const std::string& text) {
  return QString::fromStdString(text);
}

/// A label of plain text that wraps and can be selected and copied.
QLabel* MakeNote(const char* name) {
  auto* note = new QLabel;
  note->setObjectName(name);
  note->setTextFormat(Qt::PlainText);
  note->setWordWrap(true);
  note->setTextInteractionFlags(Qt::TextSelectableByMouse);
  return note;
}

QLabel* MakeCaption(int text_id, const QString& text, QWidget* buddy) {
  auto* caption = new QLabel(text);
  caption->setProperty(kTextId, text_id);
  caption->setBuddy(buddy);
  return caption;
}

}  // namespace

PortDialog::PortDialog(PortChoices& choices, QWidget* parent)
    : QDialog(parent),
      choices_(choices),
      sentences_({{kNoDevice, "No serial device was found. Plug the adapter in and look again."},
                  {kNotUsable, "Not usable as it is: %1."}},
                 *this) {
  setObjectName("PortDialog");
  setProperty(kTextId, kTitle);
  setWindowTitle("Ports and devices");
  auto* content = new QWidget;
  auto* rows = new QVBoxLayout(content);
  rows->setContentsMargins({});
  AddPortSelector(*rows);
  AddDeviceList(*rows);
  AddDeviceField(*rows);
  AddPermissionHelp(*rows);
  auto* scrolled = new QScrollArea;
  scrolled->setWidget(content);
  scrolled->setWidgetResizable(true);
  scrolled->setFrameShape(QFrame::NoFrame);
  scrolled->setFocusPolicy(Qt::NoFocus);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(scrolled, 1);
  close_ = NewButton("&Close", "Close this window; the choices are kept", kClose, "Close", this);
  layout->addWidget(close_, 0, Qt::AlignRight);
  OrderTabs();
  Connect();
  resize(QSize(kWidth, kHeight).boundedTo(screen()->availableSize()));
}

void PortDialog::OpenFor(int number) {
  {
    const QSignalBlocker quiet(ports_);
    FillPorts();
    ports_->setCurrentIndex(number - 1);
  }
  ShowPort();
  ports_->setFocus();
  open();
}

void PortDialog::AddPortSelector(QVBoxLayout& layout) {
  ports_ = new QComboBox;
  ports_->setObjectName("Ports");
  ports_->setProperty(kTextId, kPortTip);
  ports_->setToolTip("The port number that gets a device, and what each number stands for now");
  ports_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  auto* row = new QHBoxLayout;
  row->addWidget(MakeCaption(kPortNumber, "&Port number:", ports_));
  row->addWidget(ports_, 1);
  layout.addLayout(row);
  state_ = MakeNote("State");
  uses_ = {
      NewButton("Use as &radio port", "The radio base station is at this port number", kAsRadio, "UseAsRadio", this),
      NewButton("Use as &handheld port", "The hand-held unit is at this port number", kAsHandheld, "UseAsHandheld",
                this)};
  auto* below = new QHBoxLayout;
  below->addWidget(state_, 1);
  for (QPushButton* use : uses_) below->addWidget(use, 0, Qt::AlignTop);
  layout.addLayout(below);
}

void PortDialog::AddDeviceList(QVBoxLayout& layout) {
  devices_ = new QTreeWidget;
  devices_->setObjectName("Devices");
  devices_->setToolTip("The serial devices that are there now; a name with \"by-id\" stays with its adapter");
  devices_->setProperty(kTextId, kHeadings);
  devices_->setHeaderLabels({"Name", "Leads to", "State", "Port numbers"});
  devices_->setRootIsDecorated(false);
  devices_->setUniformRowHeights(true);
  devices_->setTextElideMode(Qt::ElideMiddle);
  devices_->setTabKeyNavigation(false);
  devices_->setMinimumHeight(devices_->fontMetrics().lineSpacing() * kShownDevices);
  devices_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Ignored);
  QHeaderView* header = devices_->header();
  header->setStretchLastSection(false);
  header->setSectionResizeMode(QHeaderView::ResizeToContents);
  header->setSectionResizeMode(0, QHeaderView::Stretch);
  look_again_ = NewButton("&Look again", "Look for devices once more, after an adapter was plugged in", kLookAgain,
                          "LookAgain", this);
  auto* row = new QHBoxLayout;
  row->addWidget(MakeCaption(kFound, "Devices &found:", devices_), 1);
  row->addWidget(look_again_);
  layout.addLayout(row);
  layout.addWidget(devices_, 1);
}

void PortDialog::AddDeviceField(QVBoxLayout& layout) {
  device_ = new QLineEdit;
  device_->setObjectName("Device");
  device_->setProperty(kTextId, kDeviceTip);
  device_->setPlaceholderText("/dev/...");
  device_->setToolTip("The full name of the device: chosen above, or typed");
  use_ = NewButton("&Use this device", "Give the port number this device, from the next opening of the port on", kUse,
                   "Use", this);
  use_->setDefault(true);
  built_in_ =
      NewButton("&Built-in device", "Take your own choice back: the port number stands for its built-in device again",
                kBuiltIn, "BuiltIn", this);
  check_ = MakeNote("Check");
  auto* row = new QHBoxLayout;
  row->addWidget(MakeCaption(kDevice, "&Device:", device_));
  row->addWidget(device_, 1);
  row->addWidget(use_);
  layout.addLayout(row);
  auto* below = new QHBoxLayout;
  below->addWidget(check_, 1);
  below->addWidget(built_in_, 0, Qt::AlignTop);
  layout.addLayout(below);
}

void PortDialog::AddPermissionHelp(QVBoxLayout& layout) {
  auto* line = new QFrame;
  line->setFrameShape(QFrame::HLine);
  line->setFrameShadow(QFrame::Sunken);
  layout.addWidget(line);
  QLabel* help = MakeNote("PermissionHelp");
  help->setText(ToText(PortChoices::PermissionHelp()));
  layout.addWidget(help);
}

void PortDialog::OrderTabs() {
  QWidget* const order[] = {ports_, uses_[0], uses_[1], devices_, look_again_, device_, use_, built_in_, close_};
  for (std::size_t next = 1; next < std::size(order); ++next) setTabOrder(order[next - 1], order[next]);
}

void PortDialog::Connect() {
  connect(ports_, &QComboBox::currentIndexChanged, this, [this] { ShowPort(); });
  connect(look_again_, &QPushButton::clicked, this, [this] { LookAgain(); });
  connect(devices_, &QTreeWidget::itemSelectionChanged, this, [this] { TakeFromList(); });
  connect(devices_, &QTreeWidget::itemDoubleClicked, use_, &QPushButton::click);
  connect(device_, &QLineEdit::textChanged, this, [this] { ShowCheck(); });
  connect(use_, &QPushButton::clicked, this, [this] { Assign(device_->text()); });
  connect(built_in_, &QPushButton::clicked, this, [this] { Assign({}); });
  for (const int use : {0, 1}) {
    connect(uses_[static_cast<std::size_t>(use)], &QPushButton::clicked, this, [this, use] {
      if (number_chosen) number_chosen(use, Number());
      ShowState();
    });
  }
  connect(close_, &QPushButton::clicked, this, &QDialog::accept);
}

void PortDialog::LookAgain() {
  FillPorts();
  FillDevices();
  ShowState();
}

void PortDialog::FillPorts() {
  const QSignalBlocker quiet(ports_);
  const int current = ports_->currentIndex();
  ports_->clear();
  for (const PortChoice& choice : choices_.LookAtAll()) ports_->addItem(ToText(choice.text), choice.number);
  ports_->setCurrentIndex(current);
}

void PortDialog::FillDevices() {
  const QSignalBlocker quiet(devices_);
  const QString wanted = device_->text();
  devices_->clear();
  for (const DeviceChoice& choice : choices_.Devices()) {
    auto* row = new QTreeWidgetItem(
        devices_, {ToText(choice.path), ToText(choice.device), ToText(choice.presence), ToText(choice.ports)});
    const std::string& tip = choice.problem.empty() ? choice.path : choice.problem;
    row->setData(0, kProblemRole, ToText(choice.problem));
    for (int column = 0; column < devices_->columnCount(); ++column) row->setToolTip(column, ToText(tip));
    if (row->text(0) == wanted) devices_->setCurrentItem(row);
  }
  if (devices_->topLevelItemCount() > 0) return;
  auto* none = new QTreeWidgetItem(devices_, {sentences_[kNoDevice]});
  none->setFlags(Qt::NoItemFlags);
  none->setFirstColumnSpanned(true);
}

void PortDialog::ShowPort() {
  device_->setText(ToText(choices_.Look(Number()).device));
  FillDevices();
  ShowState();
}

void PortDialog::ShowState() {
  const PortChoice choice = choices_.Look(Number());
  state_->setText(ToText(choice.explanation));
  built_in_->setEnabled(choice.own);
  for (const int use : {0, 1}) {
    uses_[static_cast<std::size_t>(use)]->setEnabled(number_of && number_of(use) != Number());
  }
  ShowCheck();
}

void PortDialog::ShowCheck() {
  const QString text = device_->text();
  const Status checked = PortChoices::Check(text.toStdString());
  use_->setEnabled(checked.ok());
  const QTreeWidgetItem* row = devices_->currentItem();
  const QString problem = row != nullptr && row->text(0) == text ? row->data(0, kProblemRole).toString() : QString();
  ShowProblem(checked.ok() || text.isEmpty() ? problem : ToText(checked.text()));
}

void PortDialog::ShowProblem(const QString& problem) {
  check_->setText(problem.isEmpty() ? QString() : sentences_[kNotUsable].arg(problem));
}

void PortDialog::TakeFromList() {
  const QList<QTreeWidgetItem*> selected = devices_->selectedItems();
  if (!selected.isEmpty()) device_->setText(selected.front()->text(0));
}

void PortDialog::Assign(const QString& device) {
  const Status assigned = choices_.Assign(Number(), device.toStdString());
  if (!assigned.ok()) {
    ShowProblem(ToText(assigned.text()));
    return;
  }
  FillPorts();
  ShowPort();
  if (assignment_changed) assignment_changed();
}

void PortDialog::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_F1 && help_asked) return help_asked();
  QDialog::keyPressEvent(event);
}

int PortDialog::Number() const {
  return ports_->currentData().toInt();
}

}  // namespace corvane::window
