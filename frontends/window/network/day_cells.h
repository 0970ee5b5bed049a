// How one day of one unit is painted: by colour, and by height and pattern for those who do not see it.
#pragma once

#include <QStyledItemDelegate>
#include <QWidget>

#include "history/day_map.h"

class QPainter;
class QPalette;
class QRect;

namespace corvane::window {

/// Paints one cell: how full it is stands for the share that is there, hatched where much is missing, crossed out where
/// nothing came, with a dot where readings are lost for ever.
void PaintDay(QPainter& painter, const QRect& area, const DayCell& cell, const QPalette& colours);

/// Paints the cells of a `DayModel`.
class DayDelegate : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;
  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

/// One cell that stands for its kind in the legend.
class DaySample : public QWidget {
 public:
  DaySample(const DayCell& cell, QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  DayCell cell_;
};

}  // namespace corvane::window
