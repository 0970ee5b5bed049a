#include <algorithm>
#include <iterator>
#include <utility>

#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "window/assistant/pages.h"
#include "window/assistant/texts.h"
#include "window/assistant/widgets.h"

namespace corvane::window::assistant {
namespace {

/// Columns of the two tables, each with the field that it fills.
constexpr SetupField kRelayColumns[] = {SetupField::RelayName, SetupField::RelayID};
constexpr SetupField kUnitColumns[] = {SetupField::UnitName, SetupField::UnitID, SetupField::UnitRelay,
                                       SetupField::UnitClient, SetupField::UnitDepths};
constexpr int kRelayColumn = 2;
constexpr int kDepthsColumn = 4;
/// Of a table that is wrong; of the rest it is told how many there are.
constexpr std::size_t kMostFaults = 20;

/// Place of a field among the columns, -1 when it is none of them.
template <std::size_t kCount>
int ColumnOf(const SetupField (&columns)[kCount], SetupField field) {
  for (std::size_t column = 0; column < kCount; ++column) {
    if (columns[column] == field) return static_cast<int>(column);
  }
  return -1;
}

/// What the plan already held of a row; a new record for one that was typed.
template <class Record>
Record Former(const std::vector<Record>& records, int origin) {
  return origin >= 0 && origin < static_cast<int>(records.size()) ? records[static_cast<std::size_t>(origin)]
                                                                  : Record();
}

QString Text(const std::string& text) {
  return QString::fromStdString(text);
}

}  // namespace

StationsPage::StationsPage(Desk& desk) : AssistantPage(SetupPage::Stations, desk) {
  AddIntroduction(
      "The relays first, then the units, with their radio IDs. Type into the empty row; Tab goes from cell "
      "to cell. Client and depths (such as 10;20;40) may stay empty.",
      kStationsIntro);
  relays_ = new RowsTable({"Name", "ID"}, "setupRelays", kRelayHeadings, this);
  units_ = new RowsTable({"Name", "ID", "Relay", "Client", "Depths (cm)"}, "setupUnits", kUnitHeadings, this);
  rows().addWidget(NewCaption("&Relays:", kRelays, *relays_));
  rows().addWidget(relays_, 2);
  auto* head = new QHBoxLayout;
  QPushButton* const remove = NewPush("Rem&ove row", kRemoveRow, "setupRemoveRow");
  head->addWidget(NewCaption("&Units:", kUnits, *units_), 1);
  QPushButton* const from_file = NewPush("From a fi&le...", kFromFile, "setupFromFile");
  head->addWidget(from_file);
  head->addWidget(remove);
  rows().addLayout(head);
  rows().addWidget(units_, 3);
  from_file_ = NewNote({}, 0, "setupFromFileAnswer");
  from_file_->hide();
  rows().addWidget(from_file_);
  ChooseFile(
      *from_file, [this] { return Say(kChooseStations); }, [this](const QString& file) { TakeFile(file); });
  units_->SetChoices(kRelayColumn, [this] { return RelayNames(); });
  relays_->preset = [this] {
    TakeAll();
    return QStringList{{}, Text(NextRelay(this->desk().plan).id)};
  };
  units_->preset = [this] {
    TakeAll();
    SetupPlan others = this->desk().plan;
    others.units.pop_back();  // the one that is begun
    const SetupUnit next = NextUnit(others);
    return QStringList{{}, Text(next.id), next.relay.empty() ? Say(kDirect) : Text(next.relay), Text(next.client)};
  };
  relays_->on_edit = [this] { FollowRelayNames(); };
  last_ = units_;
  for (RowsTable* table : {relays_, units_}) {
    connect(table, &QTableWidget::currentCellChanged, this, [this, table] { last_ = table; });
  }
  connect(remove, &QPushButton::clicked, this, [this] { last_->RemoveCurrentRow(); });
}

void StationsPage::TakeFile(const QString& file) {
  TakeAll();
  const SetupTable table = desk().app.setup().TakeTable(desk().plan, file.toStdString());
  QStringList lines;
  for (std::size_t fault = 0; fault < std::min(table.faults.size(), kMostFaults); ++fault) {
    lines << Text(table.faults[fault]);
  }
  if (table.faults.size() > kMostFaults) lines << Say(kMoreFaults).arg(table.faults.size() - kMostFaults);
  if (table.faults.empty()) lines << Say(kTakenFromFile).arg(table.changes.size());
  for (const std::string& note : table.notes) lines << Text(note);
  Show();
  from_file_->setText(lines.join('\n'));
  from_file_->show();
  Reveal(*from_file_);
}

QWidget* StationsPage::First() {
  return desk().plan.relays.empty() ? relays_ : units_;
}

QStringList StationsPage::RelayNames() {
  QStringList names = {Say(kDirect)};
  for (const RowsTable::Row& row : relays_->Filled()) names << row.cells.front();
  return names;
}

void StationsPage::FollowRelayNames() {
  const QStringList before = std::exchange(relay_names_, RelayNames());
  if (before.size() != relay_names_.size()) return;
  const QSignalBlocker quiet(units_);
  for (qsizetype relay = 0; relay < before.size(); ++relay) {
    if (before[relay] == relay_names_[relay]) continue;
    for (int row = 0; row < units_->rowCount(); ++row) {
      QTableWidgetItem* const cell = units_->item(row, kRelayColumn);
      if (cell != nullptr && cell->text() == before[relay]) cell->setText(relay_names_[relay]);
    }
  }
}

void StationsPage::Show() {
  units_->horizontalHeaderItem(kRelayColumn)->setToolTip(Say(kRelayTip));
  units_->horizontalHeaderItem(kDepthsColumn)->setToolTip(Say(kDepthsTip));
  former_relays_ = desk().plan.relays;
  former_units_ = desk().plan.units;
  RowsTable::Rows relays;
  for (const SetupRelay& relay : desk().plan.relays) {
    relays.push_back({{Text(relay.name), Text(relay.id)}, static_cast<int>(relays.size())});
  }
  relays_->Fill(relays);
  RowsTable::Rows units;
  for (const SetupUnit& unit : desk().plan.units) {
    units.push_back({{Text(unit.name), Text(unit.id), unit.relay.empty() ? Say(kDirect) : Text(unit.relay),
                      Text(unit.client), Text(unit.depths)},
                     static_cast<int>(units.size())});
  }
  units_->Fill(units);
  relay_names_ = RelayNames();
}

void StationsPage::Take() {
  SetupPlan& plan = desk().plan;
  std::vector<SetupRelay> relays;
  for (const RowsTable::Row& row : relays_->Filled()) {
    SetupRelay relay = Former(former_relays_, row.origin);
    relay.name = row.cells[0].toStdString();
    relay.id = row.cells[1].toStdString();
    relays.push_back(std::move(relay));
  }
  std::vector<SetupUnit> units;
  for (const RowsTable::Row& row : units_->Filled()) {
    SetupUnit unit = Former(former_units_, row.origin);
    std::string* const cells[] = {&unit.name, &unit.id, &unit.relay, &unit.client, &unit.depths};
    for (int column = 0; column < static_cast<int>(std::size(cells)); ++column) {
      *cells[column] = row.cells[column].toStdString();
    }
    if (row.cells[kRelayColumn] == Say(kDirect)) unit.relay.clear();
    units.push_back(std::move(unit));
  }
  plan.relays = std::move(relays);
  plan.units = std::move(units);
}

void StationsPage::GoTo(const SetupFault& fault) {
  const int row = std::max(static_cast<int>(fault.row) - 1, 0);
  const int of_relay = ColumnOf(kRelayColumns, fault.field);
  if (of_relay >= 0) return relays_->GoTo(row, of_relay);
  units_->GoTo(row, std::max(ColumnOf(kUnitColumns, fault.field), 0));
}

}  // namespace corvane::window::assistant
