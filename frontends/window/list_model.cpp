#include "window/list_model.h"

#include <algorithm>
#include <limits>

#include "base/text.h"

namespace corvane::window {
namespace {

int CountOf(const List& list) {
  return static_cast<int>(std::min<std::int64_t>(list.count(), std::numeric_limits<int>::max()));
}

}  // namespace

ListModel::ListModel(List& list, const QStringList& headings, bool checkable, QObject* parent)
    : QAbstractTableModel(parent), list_(list), headings_(headings), checkable_(checkable), shown_(CountOf(list)) {}

int ListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : shown_;
}

int ListModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : std::max(1, static_cast<int>(headings_.size()));
}

QVariant ListModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= list_.count()) return {};
  if (role == Qt::CheckStateRole && checkable_ && index.column() == 0) {
    return list_.checked(index.row()) ? Qt::Checked : Qt::Unchecked;
  }
  if (role == Qt::TextAlignmentRole && index.column() == 1) return int(Qt::AlignRight | Qt::AlignVCenter);
  if (role != Qt::DisplayRole) return {};
  const std::string& row = list_.text(index.row());
  if (headings_.size() < 2) return QString::fromStdString(row);
  const auto fields = Split(row, '\t');
  const auto column = static_cast<std::size_t>(index.column());
  if (column >= fields.size()) return {};
  return QString::fromUtf8(fields[column].data(), static_cast<qsizetype>(fields[column].size()));
}

QVariant ListModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  return headings_.value(section);
}

bool ListModel::setHeaderData(int section, Qt::Orientation orientation, const QVariant& value, int /*role*/) {
  if (orientation != Qt::Horizontal || section < 0 || section >= headings_.size()) return false;
  headings_[section] = value.toString();
  Q_EMIT headerDataChanged(orientation, section, section);
  return true;
}

Qt::ItemFlags ListModel::flags(const QModelIndex& /*index*/) const {
  if (!list_.enabled()) return Qt::NoItemFlags;
  const Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
  return checkable_ ? flags | Qt::ItemIsUserCheckable : flags;
}

bool ListModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  const bool there = index.isValid() && index.row() < list_.count();
  if (role != Qt::CheckStateRole || !checkable_ || !list_.enabled() || !there) return false;
  list_.SetChecked(index.row(), value.toInt() == Qt::Checked);
  return true;
}

bool ListModel::OnlyAppended(std::size_t first_changed_row) const {
  return static_cast<int>(first_changed_row) >= shown_ && list_.count() > shown_;
}

void ListModel::TakeAppended() {
  const int count = CountOf(list_);
  if (count <= shown_) return;
  beginInsertRows({}, shown_, count - 1);
  shown_ = count;
  endInsertRows();
}

void ListModel::TakeAll() {
  beginResetModel();
  shown_ = CountOf(list_);
  endResetModel();
}

void ListModel::TakeRow(std::size_t row) {
  const auto changed = static_cast<int>(row);
  if (changed < shown_) Q_EMIT dataChanged(index(changed, 0), index(changed, columnCount() - 1));
}

void ListModel::TakeEnabled() {
  if (shown_ > 0) Q_EMIT dataChanged(index(0, 0), index(shown_ - 1, columnCount() - 1));
}

}  // namespace corvane::window
