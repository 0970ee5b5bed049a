#include "window/network/station_table.h"

#include <algorithm>
#include <array>

#include <QHeaderView>
#include <QScopeGuard>
#include <QScrollBar>

#include "window/network/station_delegate.h"

namespace corvane::window {
namespace {

constexpr int kTextId = 785;  ///< and those of the other headings behind it
/// In characters; what is wider is shortened, and shown whole below the table or by the pointer.
constexpr std::array kWidest = {20, 28, 20, 40, 42, 24, 26, 22, 28, 28};
constexpr int kRowsSeen = 60;

}  // namespace

StationTable::StationTable(QWidget* parent) : QTreeView(parent), model_(this) {
  setObjectName("stationTable");
  setProperty("textId", kTextId);
  setToolTip(
      "The units, the worst first. Enter or a double-click shows a unit's readings; a click on a heading sorts.");
  setModel(&model_);
  setItemDelegate(new StationDelegate(this));
  setSelectionMode(ExtendedSelection);
  setSelectionBehavior(SelectRows);
  setUniformRowHeights(true);
  setAllColumnsShowFocus(true);
  setAlternatingRowColors(true);
  setRootIsDecorated(false);
  setVerticalScrollMode(ScrollPerItem);
  setHorizontalScrollMode(ScrollPerPixel);
  setContextMenuPolicy(Qt::CustomContextMenu);
  header()->setStretchLastSection(true);
  sortByColumn(0, Qt::AscendingOrder);
  setSortingEnabled(true);
  fit_soon_.setSingleShot(true);
  connect(&fit_soon_, &QTimer::timeout, this, [this] { FitColumns(); });
  FitColumns();
  connect(&model_, &QAbstractItemModel::modelAboutToBeReset, this, [this] { Keep(); });
  connect(&model_, &QAbstractItemModel::modelReset, this, [this] { Restore(); });
  connect(&model_, &QAbstractItemModel::headerDataChanged, this, [this] { ForgetWidths(); });
  connect(this, &QAbstractItemView::activated, this, [this](const QModelIndex& index) {
    if (const UnitStatus* unit = model_.UnitAt(index); unit != nullptr && on_opened) on_opened(unit->key);
  });
}

void StationTable::ForgetWidths() {
  widest_ = {};
  fit_soon_.start(0);
}

std::vector<QModelIndex> StationTable::TopRows() const {
  std::vector<QModelIndex> rows;
  for (int row = 0; row < model_.rowCount() && rows.size() < kRowsSeen; ++row) {
    const QModelIndex top = model_.index(row, 0);
    if (model_.UnitAt(top) != nullptr) rows.push_back(top);
    for (int unit = 0; unit < model_.rowCount(top) && rows.size() < kRowsSeen; ++unit) {
      rows.push_back(model_.index(unit, 0, top));
    }
  }
  return rows;
}

int StationTable::WidestText(int column, const std::vector<QModelIndex>& rows) const {
  int width = 0;
  for (const QModelIndex& row : rows) {
    width = std::max(width, fontMetrics().horizontalAdvance(row.siblingAtColumn(column).data().toString()));
  }
  const int most = kWidest.at(static_cast<std::size_t>(column)) * fontMetrics().averageCharWidth();
  return std::min(width, most) + StationDelegate::RoomBesideText(static_cast<StationColumn>(column), fontMetrics());
}

void StationTable::FitColumns() {
  const std::vector<QModelIndex> rows = TopRows();
  for (int column = 0; column < kStationColumns; ++column) {
    int& widest = widest_.at(static_cast<std::size_t>(column));
    widest = std::max({widest, header()->sectionSizeHint(column), WidestText(column, rows)});
    // The units of a group stand two steps further in.
    SetFitted(column, widest + (column == 0 && rootIsDecorated() ? 2 * indentation() : 0));
  }
}

void StationTable::SetFitted(int column, int width) {
  int& fitted = fitted_.at(static_cast<std::size_t>(column));
  const bool is_last = column == kStationColumns - 1;  // which fills what is left
  if (fitted == width || (fitted != 0 && !is_last && columnWidth(column) != fitted)) return;
  setColumnWidth(column, width);
  fitted = width;
}

std::vector<std::int64_t> StationTable::SelectedKeys() const {
  std::set<std::int64_t> keys;
  ForEachSelectedRow([this, &keys](const QModelIndex& row) {
    for (const UnitStatus* unit : model_.UnitsAt(row)) keys.insert(unit->key);
  });
  return {keys.begin(), keys.end()};
}

/// The toolkit's own list of them looks through all ranges for each row.
void StationTable::ForEachSelectedRow(const std::function<void(const QModelIndex& row)>& each) const {
  const QItemSelection selection = selectionModel()->selection();
  for (const QItemSelectionRange& range : selection) {
    for (int row = range.top(); row <= range.bottom(); ++row) each(model_.index(row, 0, range.parent()));
  }
}

void StationTable::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) {
  // The view would look for the place of each of thousands of rows; all of it is painted anew anyway.
  if (restoring_) return;
  QTreeView::selectionChanged(selected, deselected);
  if (on_selected) on_selected();
}

void StationTable::dataChanged(const QModelIndex& first, const QModelIndex& last, const QList<int>& /*roles*/) {
  // Each unit of a round comes alone, and all of them together behind it. The toolkit would paint the whole table for
  // each, and look for the place of each of thousands of rows.
  if (first.row() != last.row() || model_.AllUnits() == 1) {
    fit_soon_.start(0);
    return viewport()->update();
  }
  const QRect cell = visualRect(first);
  viewport()->update(0, cell.top(), viewport()->width(), cell.height());
}

void StationTable::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
  QTreeView::currentChanged(current, previous);
  if (!restoring_ && on_selected) on_selected();
}

void StationTable::Keep() {
  kept_ = {};
  ForEachSelectedRow([this](const QModelIndex& row) {
    if (const UnitStatus* unit = model_.UnitAt(row)) kept_.selected.insert(unit->key);
  });
  if (const UnitStatus* unit = CurrentUnit()) kept_.current = unit->key;
  for (int row = 0; row < model_.rowCount(); ++row) {
    const QModelIndex group = model_.index(row, 0);
    if (model_.UnitAt(group) == nullptr && !isExpanded(group)) kept_.folded.insert(model_.GroupName(group));
  }
  kept_.across = horizontalScrollBar()->value();
  kept_.down = verticalScrollBar()->value();
}

/// Rows that stand together are one range: a selection of thousands of ranges would be slow.
QItemSelection StationTable::SelectionOf(const std::set<std::int64_t>& keys) const {
  QItemSelection selection;
  const auto add = [&](const QModelIndex& parent) {
    const int rows = model_.rowCount(parent);
    for (int row = 0; row < rows; ++row) {
      int last = row - 1;
      for (; last + 1 < rows; ++last) {
        const UnitStatus* const unit = model_.UnitAt(model_.index(last + 1, 0, parent));
        if (unit == nullptr || !keys.contains(unit->key)) break;
      }
      if (last < row) continue;
      selection.append(
          QItemSelectionRange(model_.index(row, 0, parent), model_.index(last, kStationColumns - 1, parent)));
      row = last;
    }
  };
  add({});
  for (int row = 0; row < model_.rowCount(); ++row) add(model_.index(row, 0));
  return selection;
}

void StationTable::Restore() {
  restoring_ = true;
  const auto told = qScopeGuard([this] {
    restoring_ = false;
    if (on_selected) on_selected();
  });
  if (const bool grouped = model_.choice().grouping != Grouping::None; grouped != rootIsDecorated()) {
    setRootIsDecorated(grouped);
  }
  for (int row = 0; row < model_.rowCount(); ++row) {
    const QModelIndex group = model_.index(row, 0);
    if (model_.UnitAt(group) != nullptr) break;
    setFirstColumnSpanned(row, {}, true);
    setExpanded(group, !kept_.folded.contains(model_.GroupName(group)));
  }
  if (!kept_.selected.empty()) {
    selectionModel()->select(SelectionOf(kept_.selected), QItemSelectionModel::ClearAndSelect);
  }
  const QModelIndex current = kept_.current != 0 ? model_.IndexOf(kept_.current) : QModelIndex();
  if (current.isValid()) selectionModel()->setCurrentIndex(current, QItemSelectionModel::NoUpdate);
  horizontalScrollBar()->setValue(kept_.across);
  verticalScrollBar()->setValue(kept_.down);
  fit_soon_.start(0);
}

}  // namespace corvane::window
