#include "window/network/stations_view.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <string>
#include <utility>

#include <QAction>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPoint>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

#include "window/network/network_phrases.h"
#include "window/network/station_table.h"
#include "window/network/view_button.h"

namespace corvane::window {
namespace {

enum TextId : int {
  kCollect = 713,
  kRepair = 714,
  kActivate = 715,
  kDeactivate = 716,
  kPlot = 717,
  kFilterLabel = 795,
  kFilter = 796,
  kLetters = 797,
  kGroups = 798,
  kStations = 880,
  kHealth = 1880
};

/// A choice of states, in the order of the selector; one state alone is named by itself.
struct LettersRow {
  const Phrase* caption;
  std::vector<UnitState> letters;
};

const std::vector<LettersRow>& LetterRows() {
  using enum UnitState;
  static const std::vector<LettersRow> kRows = {{&kNetworkSays.all_states, {}},
                                                {&kNetworkSays.not_fine, {Silent, Late, Trouble, New}},
                                                {nullptr, {Silent}},
                                                {nullptr, {Late}},
                                                {nullptr, {Trouble}},
                                                {nullptr, {New}},
                                                {nullptr, {Fine}},
                                                {nullptr, {Off}}};
  return kRows;
}

/// By `Grouping`.
constexpr std::array kGroupings = {&kNetworkSays.no_groups, &kNetworkSays.by_client, &kNetworkSays.by_relay};

/// All that is known to be wrong with a unit, one sentence after the other.
QString WhatIsWrong(const UnitStatus& unit, const Phrases& phrases) {
  std::string text = unit.why;
  const auto add = [&text](const std::string& more) { text += (text.empty() ? "" : ". ") + more; };
  for (const Trouble& trouble : unit.troubles) {
    if (trouble.text != unit.why) add(trouble.text);
  }
  if (!unit.delivery_problem.empty()) add(unit.delivery_problem);
  if (!unit.note.empty()) add(phrases.Text(kNetworkSays.note, {unit.note}));
  const bool answers = unit.answers.empty() || unit.answers.back();
  if (text.empty()) text = phrases.Text(answers ? kNetworkSays.all_is_well : kNetworkSays.no_last_answer);
  return QString::fromStdString(unit.name + ": " + text);
}

}  // namespace

StationsView::StationsView(QWidget* parent) : QWidget(parent) {
  setObjectName("stationsView");
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, column->spacing(), 0, 0);
  AddFilters(*column);
  table_ = new StationTable(this);
  column->addWidget(table_, 1);
  why_ = new QLabel(this);
  why_->setObjectName("stationWhy");
  why_->setTextFormat(Qt::PlainText);
  why_->setWordWrap(true);
  why_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  why_->setMinimumHeight(2 * fontMetrics().lineSpacing());
  why_->setAlignment(Qt::AlignTop | Qt::AlignLeft);
  column->addWidget(why_);
  AddCommands(*column);
  AddKeys();
  table_->on_selected = [this] { ShowSelection(); };
  table_->on_opened = [this](std::int64_t key) {
    if (plot) plot(key);
  };
  connect(table_, &QWidget::customContextMenuRequested, this, [this](const QPoint& where) { ShowMenu(where); });
  ShowSelection();
}

void StationsView::AddFilters(QVBoxLayout& column) {
  auto* row = new QHBoxLayout;
  auto* label = new QLabel("Filter:", this);
  label->setObjectName("stationFilterLabel");
  label->setProperty("textId", kFilterLabel);
  filter_ = new QLineEdit(this);
  filter_->setObjectName("stationFilter");
  filter_->setToolTip("Shows the units whose name, client or relay holds this, or with this ID (Ctrl+F)");
  filter_->setProperty("textId", kFilter);
  filter_->setClearButtonEnabled(true);
  label->setBuddy(filter_);
  letters_ = new QComboBox(this);
  letters_->setObjectName("stationLetters");
  letters_->setToolTip("Shows the units that stand so");
  letters_->setProperty("textId", kLetters);
  while (std::cmp_less(letters_->count(), LetterRows().size())) letters_->addItem(QString());
  groups_ = new QComboBox(this);
  groups_->setObjectName("stationGroups");
  groups_->setToolTip("Puts the units together that have the same client or are behind the same relay");
  groups_->setProperty("textId", kGroups);
  while (std::cmp_less(groups_->count(), kGroupings.size())) groups_->addItem(QString());
  NameChoices();
  // Their texts come in another language later.
  for (QComboBox* choice : {letters_, groups_}) choice->setSizeAdjustPolicy(QComboBox::AdjustToContents);
  counts_ = new QLabel(this);
  counts_->setObjectName("stationCounts");
  for (QWidget* widget : std::initializer_list<QWidget*>{label, filter_, letters_, groups_}) row->addWidget(widget);
  row->addStretch();
  row->addWidget(counts_);
  column.addLayout(row);
  connect(filter_, &QLineEdit::textChanged, this, [this] { ApplyChoice(); });
  connect(filter_, &QLineEdit::returnPressed, this, [this] { table_->setFocus(Qt::TabFocusReason); });
  connect(letters_, &QComboBox::currentIndexChanged, this, [this] { ApplyChoice(); });
  connect(groups_, &QComboBox::currentIndexChanged, this, [this] { ApplyChoice(); });
}

void StationsView::NameChoices() {
  for (int row = 0; row < letters_->count(); ++row) {
    const auto& [caption, letters] = LetterRows().at(static_cast<std::size_t>(row));
    letters_->setItemText(
        row, QString::fromStdString(caption != nullptr ? phrases_.Text(*caption) : StateText(letters.at(0), phrases_)));
  }
  for (int row = 0; row < groups_->count(); ++row) {
    groups_->setItemText(row, QString::fromStdString(phrases_.Text(*kGroupings.at(static_cast<std::size_t>(row)))));
  }
}

QPushButton* StationsView::AddButton(QHBoxLayout& row, const char* name, const char* caption, const char* tip,
                                     int text_id) {
  QPushButton* const button = NewButton(caption, tip, text_id, name, this);
  row.addWidget(button);
  return button;
}

void StationsView::AddCommands(QVBoxLayout& column) {
  auto* row = new QHBoxLayout;
  collect_ = AddButton(*row, "collectButton", "Collect",
                       "Downloads the selected units that are active and read by radio, converts and sends their "
                       "files; the schedule stays as it is (F5)",
                       kCollect);
  repair_ = AddButton(*row, "repairButton", "Repair gaps",
                      "Asks the selected units once more for the readings that are missing", kRepair);
  activate_ = AddButton(*row, "activateButton", "Switch on",
                        "Makes the selected units active: they take part when all units are asked", kActivate);
  deactivate_ = AddButton(*row, "deactivateButton", "Switch off",
                          "Makes the selected units inactive: they are left out when all units are asked", kDeactivate);
  plot_ = AddButton(*row, "plotButton", "Plot", "Shows the readings of the unit (Enter)", kPlot);
  health_ = AddButton(*row, "healthButton", "Before driving out...",
                      "Says all that is known of the unit, and what to take along to it", kHealth);
  row->addStretch();
  auto* as_table_button =
      AddButton(*row, "stationsButton", "Stations...",
                "Saves units, relays and clients as a table of a spreadsheet, or puts one in", kStations);
  connect(as_table_button, &QPushButton::clicked, this, [this] { as_table(); });
  column.addLayout(row);
  const auto with_selected = [this](auto command) {
    return [this, command] {
      const Keys keys = table_->SelectedKeys();
      if (keys.empty()) return;
      // The button is disabled while the command runs; no key is to reach the one beside it.
      table_->setFocus(Qt::OtherFocusReason);
      command(keys);
    };
  };
  connect(collect_, &QPushButton::clicked, this, with_selected([this](const Keys& keys) { collect(keys); }));
  connect(repair_, &QPushButton::clicked, this, with_selected([this](const Keys& keys) { repair(keys); }));
  connect(activate_, &QPushButton::clicked, this, with_selected([this](const Keys& keys) { set_active(keys, true); }));
  connect(deactivate_, &QPushButton::clicked, this,
          with_selected([this](const Keys& keys) { set_active(keys, false); }));
  connect(plot_, &QPushButton::clicked, this, [this] {
    if (const UnitStatus* unit = table_->CurrentUnit()) plot(unit->key);
  });
  connect(health_, &QPushButton::clicked, this, [this] {
    if (const UnitStatus* unit = table_->CurrentUnit()) health(*unit);
  });
}

void StationsView::AddKeys() {
  // Shortcuts of a view that does not show do nothing.
  const auto* find = new QShortcut(QKeySequence::Find, this);
  connect(find, &QShortcut::activated, this, [this] {
    filter_->setFocus(Qt::ShortcutFocusReason);
    filter_->selectAll();
  });
  const auto* refresh = new QShortcut(Qt::Key_F5, this);
  connect(refresh, &QShortcut::activated, this, [this] { collect_->click(); });
}

void StationsView::ShowMenu(const QPoint& where) {
  auto* menu = new QMenu(table_);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  for (QPushButton* button : {collect_, repair_, activate_, deactivate_, plot_, health_}) {
    QAction* entry = menu->addAction(QString(button->text()).remove('&'), button, &QPushButton::click);
    entry->setEnabled(button->isEnabled());
  }
  QMenu* sort = menu->addMenu(QString::fromStdString(phrases_.Text(kNetworkSays.sort_by)));
  for (int column = 0; column < kStationColumns; ++column) {
    const QString heading = table_->model()->headerData(column, Qt::Horizontal).toString();
    sort->addAction(heading, table_, [this, column] {
      const StationChoice& choice = table_->stations().choice();
      const bool again = static_cast<int>(choice.sorted_by) == column && !choice.descending;
      table_->sortByColumn(column, again ? Qt::DescendingOrder : Qt::AscendingOrder);
    });
  }
  menu->popup(table_->viewport()->mapToGlobal(where));
}

void StationsView::SetPhrases(const Phrases& phrases) {
  phrases_ = phrases;
  NameChoices();
  table_->ForgetWidths();
  table_->stations().SetPhrases(phrases);
  ShowCounts();
  ShowSelection();
}

std::vector<UnitStatus> StationsView::Take(StationRows rows, Moment now) {
  std::vector<UnitStatus> before = table_->stations().Take(std::move(rows), now);
  ShowCounts();
  ShowSelection();
  return before;
}

void StationsView::TakeUnit(const UnitStatus& unit) {
  table_->stations().TakeUnit(unit);
  ShowSelection();
}

void StationsView::SetRunning(std::int64_t position) {
  table_->stations().SetRunning(position);
}

void StationsView::SetBusy(bool busy) {
  busy_ = busy;
  ShowSelection();
}

void StationsView::ApplyChoice() {
  StationChoice choice = table_->stations().choice();
  choice.text = filter_->text().trimmed();
  choice.letters = LetterRows().at(static_cast<std::size_t>(std::max(letters_->currentIndex(), 0))).letters;
  choice.grouping = static_cast<Grouping>(std::max(groups_->currentIndex(), 0));
  table_->stations().SetChoice(choice);
  ShowCounts();
}

void StationsView::ShowCounts() {
  const StationModel& model = table_->stations();
  const std::size_t all = model.AllUnits();
  const std::size_t shown = model.ShownUnits();
  const std::string text = phrases_.Text(kNetworkSays.shown, {std::to_string(shown), std::to_string(all)});
  counts_->setText(all == 0 || shown == all ? QString() : QString::fromStdString(text));
}

void StationsView::ShowSelection() {
  const bool any = table_->selectionModel()->hasSelection();
  for (QPushButton* button : {collect_, repair_, activate_, deactivate_}) button->setEnabled(any && !busy_);
  const UnitStatus* const unit = table_->CurrentUnit();
  for (QPushButton* button : {plot_, health_}) button->setEnabled(unit != nullptr);
  why_->setText(unit != nullptr ? WhatIsWrong(*unit, phrases_) : QString());
}

}  // namespace corvane::window
