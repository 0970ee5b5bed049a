#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

#include <QAbstractTableModel>
#include <QIcon>
#include <QList>
#include <QStringList>

#include "form/control.h"

namespace corvane::window {

/// The rows of a `List` control as a toolkit model; the texts stay in the control, columns are separated by tabs.
class ListModel : public QAbstractTableModel {
 public:
  /// The view's property "headings" names the columns, "checkable" gives the rows check marks and "marked" the sign of
  /// how their last exchange ended. `list` must outlive the model.
  ListModel(List& list, const QWidget& view, QObject* parent);

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  bool setHeaderData(int section, Qt::Orientation orientation, const QVariant& value, int role) override;
  /// Rows of a disabled list show and scroll as ever but are not ticked; the binding refuses to choose one.
  [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;

  /// True when rows were only appended since the model last looked.
  [[nodiscard]] bool OnlyAppended(std::size_t first_changed_row) const;
  /// Takes over rows that were appended.
  void TakeAppended();
  /// Takes over any other change of the rows.
  void TakeAll();
  void TakeRow(std::size_t row);
  /// The list was enabled or disabled.
  void TakeEnabled();

  /// What to show behind the first column of a row, by its text; empty: no list has such notes.
  std::function<std::string(const std::string& text)> note_of;

 private:
  [[nodiscard]] QVariant MarkData(std::int64_t row, int role) const;

  List& list_;
  QStringList headings_;
  bool checkable_;
  bool marked_;
  QList<QIcon> signs_;  ///< by mark; the empty one keeps the texts in line
  int shown_;           ///< rows that the views know of
};

}  // namespace corvane::window
