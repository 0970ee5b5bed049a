#include <algorithm>
#include <utility>

#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

#include "window/assistant/pages.h"
#include "window/assistant/texts.h"
#include "window/assistant/widgets.h"

namespace corvane::window::assistant {

FoldersPage::FoldersPage(Desk& desk) : AssistantPage(SetupPage::Folders, desk) {
  AddIntroduction(
      "The readings are stored in the data folder. A client is the owner of some units, whose files get a "
      "folder of their own below it and on the server; without clients leave the table empty.",
      kFoldersIntro);
  folder_ =
      AddFolder({"&Data folder:", kDataFolder, "setupDataFolder", kChoose, "setupChooseData"}, SetupField::DataFolder);
  clients_ = new RowsTable({"Name", "Folder"}, "setupClients", kClientHeadings, this);
  rows().addWidget(NewCaption("C&lients:", kClients, *clients_));
  rows().addWidget(clients_, 1);
}

void FoldersPage::Show() {
  folder_->setText(QString::fromStdString(desk().plan.data_folder));
  former_ = desk().plan.clients;
  RowsTable::Rows rows;
  for (const SetupClient& client : former_) {
    rows.push_back(
        {{QString::fromStdString(client.name), QString::fromStdString(client.folder)}, static_cast<int>(rows.size())});
  }
  clients_->Fill(rows);
}

void FoldersPage::Take() {
  SetupPlan& plan = desk().plan;
  plan.data_folder = folder_->text().trimmed().toStdString();
  plan.clients.clear();
  for (const RowsTable::Row& row : clients_->Filled()) {
    SetupClient client;
    if (row.origin >= 0) client = former_[static_cast<std::size_t>(row.origin)];
    const std::string before = std::exchange(client.name, row.cells[0].toStdString());
    client.folder = row.cells[1].toStdString();
    for (SetupUnit& unit : plan.units) {
      if (!before.empty() && unit.client == before) unit.client = client.name;
    }
    if (row.origin >= 0) former_[static_cast<std::size_t>(row.origin)].name = client.name;
    plan.clients.push_back(std::move(client));
  }
}

void FoldersPage::GoTo(const SetupFault& fault) {
  if (fault.field != SetupField::ClientName && fault.field != SetupField::ClientFolder) {
    return AssistantPage::GoTo(fault);
  }
  clients_->GoTo(std::max(static_cast<int>(fault.row) - 1, 0), fault.field == SetupField::ClientFolder ? 1 : 0);
}

TablesPage::TablesPage(Desk& desk) : AssistantPage(SetupPage::Tables, desk) {
  AddIntroduction(
      "Readings are calibrated by the three lookup tables of your sensors: moisture.lkp, salinity.lkp and "
      "salcorr.lkp. Name the folder that holds them.",
      kTablesIntro);
  folder_ =
      AddFolder({"F&older of the tables:", kTablesFolder, "setupTablesFolder", kChooseTables, "setupChooseTables"},
                SetupField::TablesFolder);
  BeginAt(*folder_);
  found_ = NewNote({}, 0, "setupTablesFound");
  rows().addWidget(found_);
  rows().addStretch(1);
  connect(folder_, &QLineEdit::textChanged, this, [this] { ShowFound(); });
}

void TablesPage::Show() {
  folder_->setText(QString::fromStdString(desk().plan.tables_folder));
  ShowFound();
}

void TablesPage::ShowFound() {
  const std::string folder = folder_->text().trimmed().toStdString();
  if (folder.empty()) return found_->setText(Say(desk().plan.tables_are_set ? kTablesKept : kTablesNone));
  const auto tables = TablesIn(folder);
  QStringList missing;
  for (std::size_t table = 0; table < tables.size(); ++table) {
    if (!tables[table].empty()) continue;
    missing << QString::fromUtf8(kTableNames[table].data(), static_cast<qsizetype>(kTableNames[table].size()));
  }
  found_->setText(missing.isEmpty() ? Say(kTablesFound) : Say(kTablesMissing).arg(missing.join(", ")));
}

void TablesPage::Take() {
  desk().plan.tables_folder = folder_->text().trimmed().toStdString();
}

}  // namespace corvane::window::assistant
