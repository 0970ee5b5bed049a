#pragma once

#include <cstdint>

#include <QDialog>
#include <QString>

#include "history/unit_health.h"
#include "lang/phrases.h"

class QLabel;

namespace corvane::window {

class HistoryReader;
class LongTextView;

/// All that is known of one unit and what to take along to it, in the sentences that the console prints.
class HealthDialog : public QDialog {
 public:
  /// `reader` must outlive the dialog.
  HealthDialog(HistoryReader& reader, QWidget* parent);

  /// Shows everything in these words from then on.
  void SetPhrases(const Phrases& phrases) { phrases_ = phrases; }
  /// Opens the dialog and returns at once; the text comes when it is read.
  void ShowUnit(const UnitStatus& unit, const Neighbours& neighbours, Moment now);

 private:
  void ShowText(const QString& text);
  void Copy();

  HistoryReader& reader_;
  Phrases phrases_;
  QLabel* head_ = nullptr;
  LongTextView* text_ = nullptr;
  QLabel* said_ = nullptr;
  std::int64_t key_ = 0;  ///< of the unit that is shown
};

}  // namespace corvane::window
