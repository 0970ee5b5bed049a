#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include <QWidget>

#include "history/day_map.h"
#include "lang/phrases.h"
#include "platform/history_records.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QModelIndex;
class QPushButton;
class QTableView;

namespace corvane::window {

class DayModel;

/// The gap map: a row a unit, a cell a day, with the numbers of the cell under the pointer or the cursor in words.
class GapMap : public QWidget {
 public:
  explicit GapMap(QWidget* parent = nullptr);

  /// Shows `map`; the cursor stays on its unit and day as far as these are there.
  void Show(DayMap map, const std::vector<UnitRecord>& units);
  /// Shows everything in these words from then on.
  void SetPhrases(const Phrases& phrases);
  /// Whether a repair can be begun now.
  void SetIdle(bool idle);

  // Set by the page; they get a unit's key in the history, inside a widget's event.
  /// The person wants a unit's gaps repaired.
  std::function<void(std::int64_t key)> repair;
  /// The person wants to see a unit's readings about a day.
  std::function<void(std::int64_t key, DateTime day)> show_plot;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void AddControls();
  void AddLegend();
  void SetUpTable();
  void FitColumns();
  void Filter();
  /// Says what there is to say without a cell: nothing known, nothing found, or how to go on.
  void SayAtRest();
  void Tell(const QModelIndex& index);
  void EnableCommands();
  void OfferCommands(const QPoint& where);

  DayModel* model_;
  QTableView* table_;
  QLineEdit* text_;
  QCheckBox* only_missing_;
  QPushButton* repair_;
  QPushButton* plot_;
  QLabel* sentence_;
  Phrases phrases_;
  bool idle_ = true;
  bool shown_ = false;
};

}  // namespace corvane::window
