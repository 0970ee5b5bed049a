#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <set>
#include <vector>

#include <QItemSelection>
#include <QTimer>
#include <QTreeView>

#include "window/network/station_model.h"

namespace corvane::window {

/// The table of units; keeps selection, groups and scroll position over every change of its rows.
class StationTable : public QTreeView {
 public:
  explicit StationTable(QWidget* parent);

  [[nodiscard]] StationModel& stations() { return model_; }
  /// The texts are others by now: columns may become narrower.
  void ForgetWidths();
  /// The keys of the selected units; those of a selected group are among them.
  [[nodiscard]] std::vector<std::int64_t> SelectedKeys() const;
  /// The unit of the current row; null when there is none.
  [[nodiscard]] const UnitStatus* CurrentUnit() const { return model_.UnitAt(currentIndex()); }

  /// Other units were selected, or another row is the current one.
  std::function<void()> on_selected;
  /// A unit was opened: a double-click, or Enter.
  std::function<void(std::int64_t key)> on_opened;

 protected:
  void dataChanged(const QModelIndex& first, const QModelIndex& last, const QList<int>& roles) override;
  void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;
  void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

 private:
  /// What a person has made of the table.
  struct Kept {
    std::set<std::int64_t> selected;
    std::int64_t current = 0;
    std::set<QString> folded;  ///< groups
    int across = 0;
    int down = 0;
  };
  /// Makes the columns as wide as what is seen of them, within limits; one that a person has set stays as it is.
  void FitColumns();
  void SetFitted(int column, int width);
  [[nodiscard]] int WidestText(int column, const std::vector<QModelIndex>& rows) const;
  [[nodiscard]] std::vector<QModelIndex> TopRows() const;
  void ForEachSelectedRow(const std::function<void(const QModelIndex& row)>& each) const;
  void Keep();
  void Restore();
  [[nodiscard]] QItemSelection SelectionOf(const std::set<std::int64_t>& keys) const;

  StationModel model_;
  Kept kept_;
  bool restoring_ = false;
  std::array<int, kStationColumns> widest_ = {};  ///< what was seen of a column
  std::array<int, kStationColumns> fitted_ = {};  ///< the widths that they were given
  QTimer fit_soon_;
};

}  // namespace corvane::window
