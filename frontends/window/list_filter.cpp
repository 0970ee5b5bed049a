#include "window/list_filter.h"

#include <QAbstractItemModel>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QListView>

namespace corvane::window {

ListFilter::ListFilter(QListView& list) : list_(list) {
  setClearButtonEnabled(true);
  connect(this, &QLineEdit::textChanged, this, [this] {
    Follow();
    ApplyToAll();
  });
}

void ListFilter::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Down) return list_.setFocus(Qt::OtherFocusReason);
  QLineEdit::keyPressEvent(event);
}

void ListFilter::Follow() {
  if (follows_) return;
  follows_ = true;
  const QAbstractItemModel* const model = list_.model();
  connect(model, &QAbstractItemModel::modelReset, this, [this] { ApplyToAll(); });
  connect(model, &QAbstractItemModel::rowsInserted, this,
          [this](const QModelIndex&, int first, int last) { ApplyTo(first, last); });
  connect(model, &QAbstractItemModel::dataChanged, this,
          [this](const QModelIndex& first, const QModelIndex& last) { ApplyTo(first.row(), last.row()); });
  connect(list_.selectionModel(), &QItemSelectionModel::currentChanged, this,
          [this](const QModelIndex& current, const QModelIndex& previous) {
            for (const QModelIndex& index : {previous, current}) {
              if (index.isValid()) ApplyTo(index.row(), index.row());
            }
          });
}

void ListFilter::ApplyToAll() {
  const bool hid = hides_;
  hides_ = !text().trimmed().isEmpty();
  if (hid || hides_) Apply(0, list_.model()->rowCount() - 1);
}

void ListFilter::ApplyTo(int first, int last) {
  if (hides_) Apply(first, last);
}

void ListFilter::Apply(int first, int last) {
  const QString wanted = text().trimmed();
  for (int row = first; row <= last; ++row) {
    const bool shown = row == list_.currentIndex().row() ||
                       list_.model()->index(row, 0).data().toString().contains(wanted, Qt::CaseInsensitive);
    if (list_.isRowHidden(row) == shown) list_.setRowHidden(row, !shown);
  }
}

}  // namespace corvane::window
