#include "window/network/day_model.h"

#include <algorithm>
#include <utility>

#include "base/outside_text.h"
#include "lang/date_words.h"

namespace corvane::window {

void DayModel::Take(DayMap map, const std::vector<UnitRecord>& units) {
  beginResetModel();
  map_ = std::move(map);
  rows_.clear();
  for (const UnitRecord& unit : units) {
    const DayRow* const days = unit.position > 0 ? map_.Find(unit.key) : nullptr;
    if (days == nullptr) continue;
    Row row{unit.position, QString::fromStdString(Printable(unit.name)), days, false, false};
    for (const DayCell& cell : days->cells) {
      row.missing = row.missing || cell.missing() > 0;
      row.open = row.open || cell.open > 0;
    }
    rows_.push_back(row);
  }
  std::sort(rows_.begin(), rows_.end(), [](const Row& one, const Row& other) { return one.position < other.position; });
  Choose();
  endResetModel();
}

void DayModel::Filter(const QString& text, bool only_missing) {
  if (text == text_ && only_missing == only_missing_) return;
  beginResetModel();
  text_ = text;
  only_missing_ = only_missing;
  Choose();
  endResetModel();
}

void DayModel::Choose() {
  shown_.clear();
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    if (only_missing_ && !rows_[i].missing) continue;
    if (rows_[i].name.contains(text_, Qt::CaseInsensitive)) shown_.push_back(i);
  }
}

int DayModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(shown_.size());
}

int DayModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() || rows_.empty() ? 0 : static_cast<int>(rows_.front().days->cells.size());
}

QVariant DayModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  if (role == Qt::AccessibleTextRole || role == Qt::ToolTipRole) return SentenceAt(index);
  return {};
}

QVariant DayModel::headerData(int section, Qt::Orientation orientation, int role) const {
  const bool is_unit = orientation == Qt::Vertical;
  if (section < 0 || section >= (is_unit ? rowCount() : columnCount())) return {};
  if (is_unit) return role == Qt::DisplayRole || role == Qt::ToolTipRole ? NameAt(section) : QVariant();
  return role == Qt::DisplayRole ? QString::fromStdString(DateText(DayOf(section), "d mmmm", phrases_)) : QVariant();
}

const DayCell& DayModel::CellAt(const QModelIndex& index) const {
  return Shown(index.row()).days->cells[static_cast<std::size_t>(index.column())];
}

QString DayModel::SentenceAt(const QModelIndex& index) const {
  return NameAt(index.row()) + ", " + QString::fromStdString(DayText(DayOf(index.column()), CellAt(index), phrases_));
}

int DayModel::RowOf(std::int64_t key) const {
  for (int row = 0; row < rowCount(); ++row) {
    if (KeyAt(row) == key) return row;
  }
  return -1;
}

}  // namespace corvane::window
