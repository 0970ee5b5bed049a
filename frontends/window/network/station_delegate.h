#pragma once

#include <QStyledItemDelegate>

namespace corvane::window {

/// Paints the rows of the table of units: the sign before the state, the last answers as a small bar chart.
class StationDelegate : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;
  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

}  // namespace corvane::window
