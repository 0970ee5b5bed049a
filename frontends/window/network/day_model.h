#pragma once

#include <cstdint>
#include <vector>

#include <QAbstractTableModel>
#include <QString>

#include "history/day_map.h"
#include "lang/phrases.h"
#include "platform/history_records.h"

namespace corvane::window {

/// The gap map as a table: a row a unit, a column a day, the oldest first.
class DayModel : public QAbstractTableModel {
 public:
  using QAbstractTableModel::QAbstractTableModel;

  /// Shows `map`; `units` gives its rows their names and their order.
  void Take(DayMap map, const std::vector<UnitRecord>& units);
  /// Tells the days in these words from then on.
  void SetPhrases(const Phrases& phrases) { phrases_ = phrases; }
  [[nodiscard]] const Phrases& phrases() const { return phrases_; }
  /// Leaves out units whose name does not hold `text`, and where wanted those that lack nothing.
  void Filter(const QString& text, bool only_missing);

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  [[nodiscard]] const DayCell& CellAt(const QModelIndex& index) const;
  [[nodiscard]] DateTime DayOf(int column) const { return map_.DayOf(static_cast<std::size_t>(column)); }
  /// The unit and the day with its numbers, in one sentence.
  [[nodiscard]] QString SentenceAt(const QModelIndex& index) const;
  [[nodiscard]] QString NameAt(int row) const { return Shown(row).name; }
  /// A repair can ask the unit of that row for something that is missing.
  [[nodiscard]] bool CanBeRepaired(int row) const { return Shown(row).open; }
  [[nodiscard]] std::int64_t KeyAt(int row) const { return Shown(row).days->unit; }
  /// The row of a unit, -1 when it is not shown.
  [[nodiscard]] int RowOf(std::int64_t key) const;
  /// So many units there are, shown or not.
  [[nodiscard]] std::int64_t Units() const { return std::ssize(rows_); }

 private:
  struct Row {
    std::int32_t position = 0;
    QString name;
    const DayRow* days = nullptr;
    bool missing = false;
    bool open = false;
  };
  [[nodiscard]] const Row& Shown(int row) const { return rows_[shown_[static_cast<std::size_t>(row)]]; }
  void Choose();

  Phrases phrases_;
  DayMap map_;
  std::vector<Row> rows_;           ///< in the order of the list of units
  std::vector<std::size_t> shown_;  ///< of those
  QString text_;
  bool only_missing_ = false;
};

}  // namespace corvane::window
