#include "window/network/station_delegate.h"

#include <algorithm>
#include <utility>

#include <QApplication>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionViewItem>
#include <QWidget>

#include "window/network/station_model.h"
#include "window/network/station_signs.h"

namespace corvane::window {
namespace {

constexpr int kMargin = 3;
constexpr int kMostAnswers = 20;
constexpr int kBarsInHeights = 5;   ///< so many times as wide as a line is high
constexpr double kShortBar = 0.35;  ///< of a full one: no answer
constexpr QColor kAnswered(0, 114, 178);
constexpr QColor kNotAnswered(213, 94, 0);

/// Paints what is behind the text, and what the style adds to a selected or focused cell.
QStyleOptionViewItem PaintGround(QPainter& painter, QStyleOptionViewItem item) {
  const QString text = std::exchange(item.text, QString());
  const QStyle& style = item.widget != nullptr ? *item.widget->style() : *QApplication::style();
  style.drawControl(QStyle::CE_ItemViewItem, &item, &painter, item.widget);
  item.text = text;
  return item;
}

void PaintText(QPainter& painter, const QStyleOptionViewItem& item, const QRect& where) {
  const auto group = (item.state & QStyle::State_Active) != 0 ? QPalette::Active : QPalette::Inactive;
  const bool selected = (item.state & QStyle::State_Selected) != 0;
  painter.setPen(item.palette.color(group, selected ? QPalette::HighlightedText : QPalette::Text));
  painter.setFont(item.font);
  painter.drawText(where, Qt::AlignVCenter | Qt::AlignLeft,
                   item.fontMetrics.elidedText(item.text, Qt::ElideRight, where.width()));
}

/// A bar for each answer, the oldest at the left; a short one of another colour where none came.
void PaintBars(QPainter& painter, const QStyleOptionViewItem& item, const QRect& where, const QString& answers) {
  const double step = static_cast<double>(where.width()) / kMostAnswers;
  painter.fillRect(where.adjusted(-1, -1, 1, 1), item.palette.color(QPalette::Base));
  double left = where.left() + step * static_cast<double>(kMostAnswers - answers.size());
  for (const QChar answer : answers) {
    const bool answered = answer == '1';
    const double height = where.height() * (answered ? 1 : kShortBar);
    painter.fillRect(QRectF(left, where.bottom() + 1 - height, std::max(step - 1, 1.0), height),
                     answered ? kAnswered : kNotAnswered);
    left += step;
  }
}

}  // namespace

int StationDelegate::RoomBesideText(StationColumn column, const QFontMetrics& font) {
  const int side = font.height();
  if (column == StationColumn::State) return side + 5 * kMargin;
  return (column == StationColumn::Answered ? kBarsInHeights * side : 0) + 4 * kMargin;
}

void StationDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
  const auto column = static_cast<StationColumn>(index.column());
  const bool is_unit = index.data(StationModel::KeyRole).toLongLong() != 0;
  const bool painted = is_unit && (column == StationColumn::State || column == StationColumn::Answered);
  if (!painted) return QStyledItemDelegate::paint(painter, option, index);
  QStyleOptionViewItem item = option;
  initStyleOption(&item, index);
  painter->save();
  item = PaintGround(*painter, item);
  QRect where = item.rect.adjusted(kMargin, 2, -kMargin, -2);
  if (column == StationColumn::State) {
    const int side = std::min(where.height(), item.fontMetrics.height());
    PaintSign(*painter, QRectF(where.left(), where.center().y() - side / 2.0 + 0.5, side, side),
              static_cast<StationSign>(index.data(StationModel::SignRole).toInt()));
    where.setLeft(where.left() + side + 2 * kMargin);
  } else if (const QString answers = index.data(StationModel::AnswersRole).toString(); !answers.isEmpty()) {
    const QRect bars(where.left(), where.top() + 1, kBarsInHeights * item.fontMetrics.height(), where.height() - 2);
    PaintBars(*painter, item, bars, answers);
    where.setLeft(bars.right() + 2 * kMargin);
  }
  PaintText(*painter, item, where);
  painter->restore();
}

QSize StationDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
  QSize size = QStyledItemDelegate::sizeHint(option, index);
  size.setHeight(std::max(size.height(), option.fontMetrics.height() + 2 * kMargin));
  return size;
}

}  // namespace corvane::window
