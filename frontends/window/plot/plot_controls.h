#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <QWidget>

#include "data/reading_series.h"
#include "lang/phrases.h"
#include "window/plot/plot_line.h"

class QComboBox;
class QGridLayout;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QSpinBox;

namespace corvane::window {

class TimeField;

/// What of a plot can be chosen: units, sensors, quantities, span; and the buttons.
class PlotControls {
 public:
  /// Builds the controls in `page`; `view` goes beside them.
  PlotControls(QWidget& page, QWidget& view, QWidget& below);

  /// Shows dates and sensors in these words from then on.
  void SetPhrases(const Phrases& phrases);
  /// Gives the list of units these names; what was ticked stays so by position.
  void SetUnits(const std::vector<std::string>& names);
  /// Ticks this unit alone, by its position from 1.
  void TickOnly(std::int64_t position);
  [[nodiscard]] std::vector<std::int32_t> TickedUnits() const;
  /// Offers so many sensors, and so many raw items.
  void Offer(std::int32_t sensors, std::int32_t items, const std::string& depths);
  [[nodiscard]] std::vector<std::int32_t> HiddenSensors() const;
  [[nodiscard]] Quantity Left() const;
  /// Chooses what the left axis shows, as a person would.
  void ChooseLeft(Quantity quantity);
  [[nodiscard]] std::optional<Quantity> Right() const;
  [[nodiscard]] std::int32_t Item() const;
  /// True when the span is the one between from and to.
  [[nodiscard]] bool IsFromTo() const;
  /// The span that is chosen; from and to as they were entered.
  [[nodiscard]] TimeSpan ChosenSpan(const TimeSpan& whole) const;
  enum class Chosen : std::uint8_t { AsItIs, All, FromTo };
  /// Shows a span in the fields from and to, and in the selector what it is now.
  void ShowSpan(const TimeSpan& span, Chosen chosen);
  void EnableBack(bool enabled);
  void EnableSave(bool enabled);

  std::function<void()> units_changed;  ///< others are ticked
  std::function<void()> lines_changed;  ///< other sensors or quantities
  std::function<void()> span_chosen;
  std::function<void(const QString& why)> date_refused;  ///< what was typed is no date
  std::function<void()> back;
  std::function<void()> save;
  std::function<void()> copy;

 private:
  [[nodiscard]] QWidget* MakeLists(QWidget& page);
  [[nodiscard]] QWidget* MakeChoices(QWidget& page);
  [[nodiscard]] QWidget* LayOutChoices();
  void ConnectChoices(QWidget& page);
  void Filter();
  void EnableChoices();

  QLineEdit* filter_ = nullptr;
  QListWidget* units_ = nullptr;
  QListWidget* sensors_ = nullptr;
  QComboBox* left_ = nullptr;
  QComboBox* right_ = nullptr;
  QSpinBox* item_ = nullptr;
  QComboBox* span_ = nullptr;
  TimeField* from_ = nullptr;
  TimeField* to_ = nullptr;
  QPushButton* back_ = nullptr;
  QPushButton* save_ = nullptr;
  QPushButton* copy_ = nullptr;
  Phrases phrases_;
  bool filling_ = false;
};

}  // namespace corvane::window
