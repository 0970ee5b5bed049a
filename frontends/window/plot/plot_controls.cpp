#include "window/plot/plot_controls.h"

#include <algorithm>
#include <array>

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScrollArea>
#include <QSpinBox>
#include <QSplitter>
#include <QVBoxLayout>

#include "data/sensor_names.h"
#include "window/plot/time_field.h"

namespace corvane::window {
namespace {

/// IDs of the texts in language files; a selector takes as many as it has entries.
enum TextId : int {
  kFindText = 830,
  kFilterText = 831,
  kUnitsText = 832,
  kUnitListText = 833,
  kSensorsText = 834,
  kSensorListText = 835,
  kLeftText = 836,
  kLeftEntries = 837,
  kRightText = 843,
  kRightEntries = 844,
  kItemText = 851,
  kItemField = 852,
  kSpanText = 853,
  kSpanEntries = 854,
  kFromText = 860,
  kToText = 861,
  kBackText = 862,
  kSaveText = 863,
  kCopyText = 864,
};

const QStringList kQuantities = {"Moisture", "Salinity", "Temperature", "Battery", "Ambient temperature", "Raw item"};
const QStringList kSpans = {"All", "Day", "Week", "Month", "Season", "From - to"};
constexpr std::array kSpanDays = {0, 1, 7, 30, 91, 0};
constexpr int kFromTo = 5;
constexpr int kDefaultItems = 4;
constexpr int kMostItems = 65535;
constexpr int kListWidth = 150;
constexpr int kSensorRows = 6;
constexpr int kSpacing = 4;
constexpr int kEntryLetters = 8;
constexpr int kSpanLetters = 5;

void SetTextId(QWidget& widget, int text_id, const char* tool_tip = "") {
  widget.setProperty("textId", text_id);
  widget.setToolTip(tool_tip);
}

QLabel* LabelFor(QWidget& field, const char* text, int text_id) {
  auto* label = new QLabel(text);
  SetTextId(*label, text_id);
  label->setBuddy(&field);
  return label;
}

QComboBox* SelectorOf(const QStringList& entries, const char* name, int text_id, const char* tool_tip) {
  auto* selector = new QComboBox;
  selector->setObjectName(name);
  selector->addItems(entries);
  selector->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  selector->setMinimumContentsLength(kEntryLetters);
  selector->setProperty("captionedEntries", true);
  SetTextId(*selector, text_id, tool_tip);
  return selector;
}

QPushButton* ButtonOf(const char* text, const char* name, int text_id, const char* tool_tip) {
  auto* button = new QPushButton(text);
  button->setObjectName(name);
  SetTextId(*button, text_id, tool_tip);
  return button;
}

QListWidgetItem* AddTickable(QListWidget& list, const QString& text, bool ticked) {
  auto* entry = new QListWidgetItem(text, &list);
  entry->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
  entry->setCheckState(ticked ? Qt::Checked : Qt::Unchecked);
  return entry;
}

}  // namespace

PlotControls::PlotControls(QWidget& page, QWidget& view, QWidget& below) {
  auto* right = new QWidget;
  auto* column = new QVBoxLayout(right);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(kSpacing);
  column->addWidget(MakeChoices(page));
  column->addWidget(&view, 1);
  column->addWidget(&below);
  auto* splitter = new QSplitter;
  splitter->addWidget(MakeLists(page));
  splitter->addWidget(right);
  splitter->setStretchFactor(1, 1);
  splitter->setChildrenCollapsible(false);
  splitter->setSizes({kListWidth, 4 * kListWidth});
  // On a small screen the page scrolls.
  auto* area = new QScrollArea;
  area->setWidgetResizable(true);
  area->setFrameShape(QFrame::NoFrame);
  area->setWidget(splitter);
  for (QWidget* each : {area->viewport(), static_cast<QWidget*>(splitter)}) each->setAutoFillBackground(false);
  auto* whole = new QVBoxLayout(&page);
  whole->addWidget(area);
  EnableChoices();
}

QWidget* PlotControls::MakeLists(QWidget& page) {
  filter_ = new QLineEdit;
  filter_->setObjectName("plotFilter");
  SetTextId(*filter_, kFilterText, "Only units whose name holds this are listed");
  units_ = new QListWidget;
  units_->setObjectName("plotUnits");
  units_->setUniformItemSizes(true);
  units_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  SetTextId(*units_, kUnitListText, "The units that are shown; the space bar ticks one");
  sensors_ = new QListWidget;
  sensors_->setObjectName("plotSensors");
  SetTextId(*sensors_, kSensorListText, "The sensors that are shown");
  auto* lists = new QWidget;
  auto* column = new QVBoxLayout(lists);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(kSpacing);
  column->addWidget(LabelFor(*filter_, "Find:", kFindText));
  column->addWidget(filter_);
  column->addWidget(LabelFor(*units_, "Units:", kUnitsText));
  column->addWidget(units_, 3);
  column->addWidget(LabelFor(*sensors_, "Sensors:", kSensorsText));
  column->addWidget(sensors_, 1);
  sensors_->setMaximumHeight(sensors_->fontMetrics().height() * 2 * kSensorRows);
  units_->setMinimumWidth(kListWidth - 50);
  QObject::connect(filter_, &QLineEdit::textChanged, &page, [this] { Filter(); });
  QObject::connect(units_, &QListWidget::itemChanged, &page, [this] {
    if (!filling_ && units_changed) units_changed();
  });
  QObject::connect(sensors_, &QListWidget::itemChanged, &page, [this] {
    if (!filling_ && lines_changed) lines_changed();
  });
  return lists;
}

QWidget* PlotControls::MakeChoices(QWidget& page) {
  left_ = SelectorOf(kQuantities, "plotLeft", kLeftEntries, "What the left axis shows");
  right_ = SelectorOf(QStringList("Nothing") + kQuantities, "plotRight", kRightEntries, "What the right axis shows");
  item_ = new QSpinBox;
  item_->setObjectName("plotItem");
  item_->setRange(1, kDefaultItems);
  SetTextId(*item_, kItemField, "Which item of a raw line, the one behind the date being 1");
  span_ = SelectorOf(kSpans, "plotSpan", kSpanEntries, "How much is shown");
  span_->setMinimumContentsLength(kSpanLetters);
  from_ = new TimeField("plotFrom");
  to_ = new TimeField("plotTo");
  back_ = ButtonOf("Back", "plotBack", kBackText, "Shows what was shown before the last zoom (Backspace in the plot)");
  save_ = ButtonOf("Save as...", "plotSave", kSaveText,
                   "Saves the plot as a picture (PNG, SVG, PDF) or its readings as a table (CSV)");
  copy_ = ButtonOf("Copy", "plotCopy", kCopyText, "Copies the plot as a picture");
  ConnectChoices(page);
  return LayOutChoices();
}

QWidget* PlotControls::LayOutChoices() {
  auto* choices = new QWidget;
  auto* rows = new QVBoxLayout(choices);
  rows->setContentsMargins(0, 0, 0, 0);
  rows->setSpacing(kSpacing);
  auto* lines = new QHBoxLayout;
  lines->addWidget(LabelFor(*left_, "Left axis:", kLeftText));
  lines->addWidget(left_);
  lines->addWidget(LabelFor(*right_, "Right axis:", kRightText));
  lines->addWidget(right_);
  auto* item_label = LabelFor(*item_, "Item:", kItemText);
  item_label->setObjectName("plotItemLabel");
  lines->addWidget(item_label);
  lines->addWidget(item_);
  lines->addStretch(1);
  lines->addWidget(save_);
  lines->addWidget(copy_);
  auto* times = new QHBoxLayout;
  times->addWidget(LabelFor(*span_, "Span:", kSpanText));
  times->addWidget(span_);
  times->addWidget(LabelFor(*from_, "From:", kFromText));
  times->addWidget(from_);
  times->addWidget(LabelFor(*to_, "To:", kToText));
  times->addWidget(to_);
  times->addStretch(1);
  times->addWidget(back_);
  rows->addLayout(lines);
  rows->addLayout(times);
  return choices;
}

void PlotControls::ConnectChoices(QWidget& page) {
  const auto choose_lines = [this] {
    EnableChoices();
    if (lines_changed) lines_changed();
  };
  for (QComboBox* selector : {left_, right_}) {
    QObject::connect(selector, &QComboBox::currentIndexChanged, &page, choose_lines);
  }
  QObject::connect(item_, &QSpinBox::valueChanged, &page, choose_lines);
  const auto choose_span = [this] {
    if (!filling_ && span_chosen) span_chosen();
  };
  QObject::connect(span_, &QComboBox::activated, &page, choose_span);
  for (TimeField* field : {from_, to_}) {
    field->chosen = [this, choose_span] {
      span_->setCurrentIndex(kFromTo);
      choose_span();
    };
    field->refused = [this](const QString& why) {
      if (date_refused) date_refused(why);
    };
  }
  QObject::connect(back_, &QPushButton::clicked, &page, [this] { back(); });
  QObject::connect(save_, &QPushButton::clicked, &page, [this] { save(); });
  QObject::connect(copy_, &QPushButton::clicked, &page, [this] { copy(); });
}

void PlotControls::EnableChoices() {
  const bool item = Left() == Quantity::Item || Right() == Quantity::Item;
  item_->setVisible(item);
  if (auto* label = item_->parentWidget()->findChild<QLabel*>("plotItemLabel")) label->setVisible(item);
}

void PlotControls::SetPhrases(const Phrases& phrases) {
  phrases_ = phrases;
  for (TimeField* field : {from_, to_}) field->SetPhrases(phrases);
}

void PlotControls::SetUnits(const std::vector<std::string>& names) {
  const auto count = static_cast<int>(names.size());
  bool same = units_->count() == count;
  for (int row = 0; same && row < count; ++row) {
    same = units_->item(row)->text() == QString::fromStdString(names[static_cast<std::size_t>(row)]);
  }
  if (same) return;
  const std::vector<std::int32_t> ticked = TickedUnits();
  filling_ = true;
  units_->clear();
  for (int row = 0; row < count; ++row) {
    const bool is_ticked = std::binary_search(ticked.begin(), ticked.end(), row + 1);
    const QString name = QString::fromStdString(names[static_cast<std::size_t>(row)]);
    AddTickable(*units_, name, is_ticked)->setToolTip(name);
  }
  filling_ = false;
  Filter();
}

void PlotControls::Filter() {
  const QString wanted = filter_->text().trimmed();
  for (int row = 0; row < units_->count(); ++row) {
    const QListWidgetItem* unit = units_->item(row);
    // What is shown stays in sight.
    const bool listed = unit->checkState() == Qt::Checked || unit->text().contains(wanted, Qt::CaseInsensitive);
    units_->setRowHidden(row, !listed);
  }
}

void PlotControls::TickOnly(std::int64_t position) {
  filling_ = true;
  for (int row = 0; row < units_->count(); ++row) {
    units_->item(row)->setCheckState(row + 1 == position ? Qt::Checked : Qt::Unchecked);
  }
  units_->setCurrentRow(static_cast<int>(position) - 1);
  filling_ = false;
  Filter();
}

std::vector<std::int32_t> PlotControls::TickedUnits() const {
  std::vector<std::int32_t> ticked;
  for (int row = 0; row < units_->count(); ++row) {
    if (units_->item(row)->checkState() == Qt::Checked) ticked.push_back(row + 1);
  }
  return ticked;
}

void PlotControls::Offer(std::int32_t sensors, std::int32_t items, const std::string& depths) {
  const std::vector<std::int32_t> hidden = HiddenSensors();
  filling_ = true;
  while (sensors_->count() > sensors) delete sensors_->takeItem(sensors_->count() - 1);
  for (std::int32_t sensor = 1; sensor <= sensors; ++sensor) {
    const QString name = QString::fromStdString(SensorName(depths, sensor, phrases_));
    const bool shown = std::find(hidden.begin(), hidden.end(), sensor) == hidden.end();
    if (sensor > sensors_->count()) {
      AddTickable(*sensors_, name, shown);
    } else {
      sensors_->item(sensor - 1)->setText(name);
    }
  }
  if (items > 0) item_->setMaximum(std::min(items, kMostItems));
  filling_ = false;
}

std::vector<std::int32_t> PlotControls::HiddenSensors() const {
  std::vector<std::int32_t> hidden;
  for (int row = 0; row < sensors_->count(); ++row) {
    if (sensors_->item(row)->checkState() != Qt::Checked) hidden.push_back(row + 1);
  }
  return hidden;
}

Quantity PlotControls::Left() const {
  return static_cast<Quantity>(left_->currentIndex());
}

void PlotControls::ChooseLeft(Quantity quantity) {
  left_->setCurrentIndex(static_cast<int>(quantity));
}

std::optional<Quantity> PlotControls::Right() const {
  if (right_->currentIndex() <= 0 || right_->currentIndex() - 1 == left_->currentIndex()) return std::nullopt;
  return static_cast<Quantity>(right_->currentIndex() - 1);
}

std::int32_t PlotControls::Item() const {
  return item_->value();
}

bool PlotControls::IsFromTo() const {
  return span_->currentIndex() == kFromTo;
}

TimeSpan PlotControls::ChosenSpan(const TimeSpan& whole) const {
  const int chosen = span_->currentIndex();
  if (IsFromTo()) return {from_->seconds(), to_->seconds()};
  if (chosen <= 0) return whole;
  const double length = static_cast<double>(kSpanDays[static_cast<std::size_t>(chosen)] * kSecondsPerDay);
  // What ends where the plot ends now; behind the readings there is nothing to see.
  const double end = std::min(to_->seconds(), whole.to);
  return {end - length, end};
}

void PlotControls::ShowSpan(const TimeSpan& span, Chosen chosen) {
  filling_ = true;
  if (chosen != Chosen::AsItIs) span_->setCurrentIndex(chosen == Chosen::All ? 0 : kFromTo);
  from_->SetSeconds(span.from);
  to_->SetSeconds(span.to);
  filling_ = false;
}

void PlotControls::EnableBack(bool enabled) {
  back_->setEnabled(enabled);
}

void PlotControls::EnableSave(bool enabled) {
  save_->setEnabled(enabled);
  copy_->setEnabled(enabled);
}

}  // namespace corvane::window
