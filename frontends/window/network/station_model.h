#pragma once

#include <cstdint>
#include <set>
#include <vector>

#include <QAbstractItemModel>
#include <QStringList>

#include "history/network_status.h"
#include "lang/phrases.h"
#include "window/network/station_order.h"

namespace corvane::window {

/// The units of a network as a table, or as groups of them: one row each, in the words of the status.
class StationModel : public QAbstractItemModel {
 public:
  /// Roles besides the toolkit's own.
  enum Role : int {
    SignRole = Qt::UserRole,  ///< `StationSign`
    AnswersRole,              ///< a text of "1" and "0", the oldest first
    KeyRole                   ///< of the unit in the history, 0 for a group
  };

  explicit StationModel(QObject* parent);

  /// Shows everything in these words from then on.
  void SetPhrases(const Phrases& phrases);
  /// Takes how the network stands; rows keep their places where their order did not change. Returns the units before.
  std::vector<UnitStatus> Take(StationRows rows, Moment now);
  /// Takes how one unit stands. Its row stays where it is until the whole network is taken.
  void TakeUnit(const UnitStatus& unit);
  /// The unit that has its turn in a round, by its place in the list of units; 0 none.
  void SetRunning(std::int64_t position);
  /// Chooses which units are shown.
  void SetChoice(const StationChoice& choice);
  [[nodiscard]] const StationChoice& choice() const { return choice_; }

  /// The unit of a row; none for a group.
  [[nodiscard]] const UnitStatus* UnitAt(const QModelIndex& index) const;
  /// The units of a row: those of its group where it is one.
  [[nodiscard]] std::vector<const UnitStatus*> UnitsAt(const QModelIndex& index) const;
  /// The name of the group of a row; empty for a unit.
  [[nodiscard]] QString GroupName(const QModelIndex& index) const;
  /// The first cell of the row of a unit; invalid when it is not shown.
  [[nodiscard]] QModelIndex IndexOf(std::int64_t key) const;
  [[nodiscard]] std::size_t ShownUnits() const;
  [[nodiscard]] std::size_t AllUnits() const { return units_.size(); }
  [[nodiscard]] const std::vector<UnitStatus>& units() const { return units_; }

  [[nodiscard]] QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
  [[nodiscard]] QModelIndex parent(const QModelIndex& child) const override;
  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  bool setHeaderData(int section, Qt::Orientation orientation, const QVariant& value, int role) override;
  void sort(int column, Qt::SortOrder order) override;

 private:
  [[nodiscard]] bool Grouped() const { return choice_.grouping != Grouping::None; }
  void TellAllChanged();
  void TellChanged(const QModelIndex& row);
  [[nodiscard]] QString TextOf(const UnitStatus& unit, StationColumn column) const;
  [[nodiscard]] QString ToolTipOf(const UnitStatus& unit, StationColumn column) const;
  [[nodiscard]] QVariant GroupData(const StationGroup& group, int column, int role) const;

  std::vector<UnitStatus> units_;
  Moment now_;
  Phrases phrases_;
  StationChoice choice_;
  std::vector<StationGroup> groups_;  ///< one, without a name, where units are not put together
  std::int64_t running_ = 0;
  QStringList headings_;
};

}  // namespace corvane::window
