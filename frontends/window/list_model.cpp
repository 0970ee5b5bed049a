#include "window/list_model.h"

#include <algorithm>
#include <limits>

#include <QColor>
#include <QPainter>
#include <QPixmap>
#include <QPolygon>
#include <QWidget>

#include "base/text.h"
#include "window/colours.h"

namespace corvane::window {
namespace {

constexpr int kMarkSize = 16;

/// A tick in a green disc, a bar in a red triangle, or nothing: told apart by shape as well as by colour.
QPixmap PictureOf(RowMark mark, const QColor& ground) {
  QPixmap picture(kMarkSize, kMarkSize);
  picture.fill(mark == RowMark::None ? QColor(Qt::transparent) : ground);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  if (mark == RowMark::Well) {
    painter.setBrush(QColor(46, 125, 50));
    painter.drawEllipse(1, 1, kMarkSize - 2, kMarkSize - 2);
    painter.setPen(QPen(Qt::white, 2));
    painter.drawPolyline(QPolygon({{4, 8}, {7, 11}, {12, 5}}));
  } else if (mark == RowMark::Problem) {
    painter.setBrush(QColor(198, 40, 40));
    painter.drawPolygon(QPolygon({{8, 1}, {15, 15}, {1, 15}}));
    painter.setPen(QPen(Qt::white, 2));
    painter.drawLine(8, 6, 8, 10);
    painter.drawPoint(8, 13);
  }
  return picture;
}

/// On the colour of a selected row the signs would hardly be seen: there they stand on white.
QIcon SignOf(RowMark mark) {
  const QPixmap picture = PictureOf(mark, Qt::transparent);
  QIcon sign(picture);
  sign.addPixmap(picture, QIcon::Disabled);
  sign.addPixmap(PictureOf(mark, Qt::white), QIcon::Selected);
  return sign;
}

int CountOf(const List& list) {
  return static_cast<int>(std::min<std::int64_t>(list.count(), std::numeric_limits<int>::max()));
}

}  // namespace

ListModel::ListModel(List& list, const QWidget& view, QObject* parent)
    : QAbstractTableModel(parent),
      list_(list),
      headings_(view.property("headings").toStringList()),
      checkable_(view.property("checkable").toBool()),
      marked_(view.property("marked").toBool()),
      shown_(CountOf(list)) {
  if (!marked_) return;
  for (const RowMark mark : {RowMark::None, RowMark::Well, RowMark::Problem}) signs_.push_back(SignOf(mark));
}

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
  if (role == Qt::ForegroundRole && !list_.enabled()) return kDisabledOnCream;
  if (role == Qt::ToolTipRole && headings_.isEmpty() && !marked_)
    return QString::fromStdString(list_.text(index.row()));
  if (marked_ && (role == Qt::DecorationRole || role == Qt::ToolTipRole || role == Qt::AccessibleDescriptionRole))
    return MarkData(index.row(), role);
  if (role == Qt::TextAlignmentRole && index.column() == 1) return int(Qt::AlignRight | Qt::AlignVCenter);
  if (role != Qt::DisplayRole) return {};
  const std::string& row = list_.text(index.row());
  if (headings_.size() < 2) return QString::fromStdString(row);
  const auto fields = Split(row, '\t');
  const auto column = static_cast<std::size_t>(index.column());
  if (column >= fields.size()) return {};
  QString text = QString::fromUtf8(fields[column].data(), static_cast<qsizetype>(fields[column].size()));
  if (column > 0 || !note_of) return text;
  const std::string note = note_of(std::string(fields[0]));
  return note.empty() ? text : text + "   (" + QString::fromStdString(note) + ")";
}

QVariant ListModel::MarkData(std::int64_t row, int role) const {
  const RowMark mark = list_.mark(row);
  if (role != Qt::DecorationRole) {
    if (mark == RowMark::None) return {};
    return mark == RowMark::Well ? "Answered when it was asked last" : "Did not answer well when it was asked last";
  }
  return signs_[static_cast<qsizetype>(mark)];
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
  const Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
  return checkable_ && list_.enabled() ? flags | Qt::ItemIsUserCheckable : flags;
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
