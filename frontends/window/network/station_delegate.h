#pragma once

#include <QFontMetrics>
#include <QStyledItemDelegate>

#include "window/network/station_order.h"

namespace corvane::window {

/// Paints the rows of the table of units: the sign before the state, the last answers as a small bar chart.
class StationDelegate : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;
  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  /// What a cell of that column needs besides its text.
  [[nodiscard]] static int RoomBesideText(StationColumn column, const QFontMetrics& font);
  [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

}  // namespace corvane::window
