#pragma once

#include <cstdint>
#include <functional>
#include <set>
#include <vector>

#include <QItemSelection>
#include <QTreeView>

#include "window/network/station_model.h"

namespace corvane::window {

/// The table of units; keeps selection, groups and scroll position over every change of its rows.
class StationTable : public QTreeView {
 public:
  explicit StationTable(QWidget* parent);

  [[nodiscard]] StationModel& stations() { return model_; }
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
  void SetColumnWidths();
  void ForEachSelectedRow(const std::function<void(const QModelIndex& row)>& each) const;
  void Keep();
  void Restore();
  [[nodiscard]] QItemSelection SelectionOf(const std::set<std::int64_t>& keys) const;

  StationModel model_;
  Kept kept_;
  bool restoring_ = false;
};

}  // namespace corvane::window
