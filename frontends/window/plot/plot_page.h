#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <QTimer>
#include <QWidget>

#include "app/application.h"
#include "lang/phrases.h"
#include "window/plot/background_work.h"
#include "window/plot/plot_controls.h"
#include "window/plot/plot_export.h"
#include "window/plot/plot_reading.h"
#include "window/plot/plot_view.h"

class QLabel;
class QPushButton;

namespace corvane::window {

/// The page "Plot": the readings of units over time. Everything stays usable while a round runs; files are read on a
/// thread beside the window's.
class PlotPage : public QWidget {
 public:
  /// `app` must outlive the page.
  explicit PlotPage(Application& app);
  ~PlotPage() override;

  /// Shows everything in these words from then on.
  void SetPhrases(const Phrases& phrases);
  /// Shows the unit at that position (from 1) of the list of units: all of it, or a day with the ones beside it.
  void ShowUnit(std::int64_t position, DateTime day = {});
  /// Saves what is shown as the ending of the name says: .png, .svg, .pdf or .csv. Says in the page how it went.
  void SaveTo(const QString& file);
  [[nodiscard]] PlotView& view() { return *view_; }
  /// True while files are read or written.
  [[nodiscard]] bool Busy() const { return !work_->idle() || !saving_->idle(); }

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void Connect();
  void ListUnits();
  [[nodiscard]] PlotWish Wish() const;
  /// Reads what is chosen, if it or its files are other than what is shown.
  void Load(bool keeps_span);
  void Take(const std::shared_ptr<PlotReading>& reading, bool keeps_span);
  /// Shows the day that was asked for, once its readings are there.
  void ShowDay();
  void LookForMore();
  void ShowSpan();
  void SpanChanged();
  void CursorMoved(bool by_keys);
  void AskWhereToSave();
  void Copy();
  [[nodiscard]] PlotLayout Layout() const;
  [[nodiscard]] QString Words(const Phrase& phrase, std::initializer_list<std::string_view> values = {}) const;
  void Say(const QString& text);

  Application& app_;
  std::unique_ptr<PlotControls> controls_;
  PlotView* view_;
  QLabel* cursor_text_;
  QLabel* problem_;
  QPushButton* raw_items_;  ///< offered where nothing else can be shown
  BackgroundWork* work_;    ///< reads
  BackgroundWork* saving_;  ///< writes, and is not cancelled by another choice
  QTimer look_again_;
  Phrases phrases_;
  std::string shown_files_;  ///< the state of the files and settings behind what is shown
  DateTime day_;             ///< to be shown when it has been read; none: as it is
  bool shown_ = false;       ///< has been shown once
  bool setting_span_ = false;
};

}  // namespace corvane::window
