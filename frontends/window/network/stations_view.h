#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include <QWidget>

#include "history/network_status.h"
#include "lang/phrases.h"
#include "window/network/station_order.h"

class QComboBox;
class QHBoxLayout;
class QLabel;
class QLineEdit;
class QPoint;
class QPushButton;
class QVBoxLayout;

namespace corvane::window {

class StationTable;

/// The table of units with its filters, and the commands for those that are selected.
class StationsView : public QWidget {
 public:
  explicit StationsView(QWidget* parent);

  /// Shows everything in these words from then on.
  void SetPhrases(const Phrases& phrases);
  /// Shows these; returns the units that were shown before.
  std::vector<UnitStatus> Take(StationRows rows, Moment now);
  void TakeUnit(const UnitStatus& unit);
  /// The unit that has its turn in a round, by its place in the list of units; 0 none.
  void SetRunning(std::int64_t position);
  /// While an operation runs the commands are disabled, and nothing else.
  void SetBusy(bool busy);
  [[nodiscard]] StationTable& table() { return *table_; }

  using Keys = std::vector<std::int64_t>;
  // Commands for units by their keys in the history, given from widgets' events.
  std::function<void(const Keys& keys)> collect;
  std::function<void(const Keys& keys)> repair;
  std::function<void(const Keys& keys, bool active)> set_active;
  std::function<void(std::int64_t key)> plot;
  /// The person wants to know all that is known of a unit.
  std::function<void(const UnitStatus& unit)> health;
  /// The person asks for the stations as a table.
  std::function<void()> as_table;

 private:
  void AddFilters(QVBoxLayout& column);
  void AddCommands(QVBoxLayout& column);
  void AddKeys();
  void ShowMenu(const QPoint& where);
  void ApplyChoice();
  void ShowSelection();
  void ShowCounts();
  void NameChoices();
  QPushButton* AddButton(QHBoxLayout& row, const char* name, const char* caption, const char* tip, int text_id);

  QLineEdit* filter_ = nullptr;
  QComboBox* letters_ = nullptr;
  QComboBox* groups_ = nullptr;
  QLabel* counts_ = nullptr;
  StationTable* table_ = nullptr;
  QLabel* why_ = nullptr;
  QPushButton* collect_ = nullptr;
  QPushButton* repair_ = nullptr;
  QPushButton* activate_ = nullptr;
  QPushButton* deactivate_ = nullptr;
  QPushButton* plot_ = nullptr;
  QPushButton* health_ = nullptr;
  Phrases phrases_;
  bool busy_ = false;
};

}  // namespace corvane::window
