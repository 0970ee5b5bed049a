#include "window/network/gap_map.h"

#include <algorithm>
#include <array>
#include <utility>

#include <QCheckBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QPushButton>
#include <QScrollBar>
#include <QTableView>
#include <QVBoxLayout>

#include "lang/date_words.h"
#include "window/network/day_cells.h"
#include "window/network/day_model.h"
#include "window/network/network_phrases.h"
#include "window/network/view_button.h"

namespace corvane::window {
namespace {

// IDs of the texts in language files.
constexpr int kUnitText = 800;
constexpr int kFilterText = 801;
constexpr int kRepairText = 802;
constexpr int kPlotText = 803;
constexpr int kOnlyMissingText = 804;
constexpr int kLegendText = 805;  ///< and those that follow it
constexpr int kUnheardText = 819;
constexpr int kTableText = 811;

constexpr int kNarrowest = 5;  ///< a day, in pixels
constexpr int kNameLetters = 22;
constexpr int kWeek = 7;
constexpr int kBar = 3;  ///< under a date

/// The days above the map: a date every so many weeks as there is room, counted back from today, over a bar as wide as
/// its day.
class DayHeader : public QHeaderView {
 public:
  DayHeader(const DayModel& days, QWidget* parent) : QHeaderView(Qt::Horizontal, parent), days_(days) {
    setSectionResizeMode(QHeaderView::Fixed);
    setMinimumSectionSize(1);
  }
  [[nodiscard]] QSize sizeHint() const override { return {0, fontMetrics().height() + 6}; }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    QPainter painter(viewport());
    painter.fillRect(viewport()->rect(), palette().color(QPalette::Window));
    painter.setPen(palette().color(QPalette::WindowText));
    const int between = 2 * fontMetrics().averageCharWidth();
    int free = length();  // up to the date at the right
    // So many weeks apart that none is left out; the one beside today's has half of a date less room.
    const int week = std::max(1, length() * kWeek / std::max(1, count()));
    const int room = fontMetrics().horizontalAdvance("30 Mmm") * 3 / 2 + between;
    const int step = kWeek * ((room + week - 1) / week);
    for (int day = count() - 1; day >= 0; day -= step) {
      const QString text = QString::fromStdString(DateText(days_.DayOf(day), "d mmm", days_.phrases()));
      const int width = fontMetrics().horizontalAdvance(text) + 1;
      const int middle = sectionPosition(day) + sectionSize(day) / 2;
      // Today's is not cut off, nor the first day's.
      const int left = std::max(0, std::min(middle - width / 2, length() - width));
      if (left + width > free) continue;
      free = left - between;
      painter.drawText(QRect(left - offset(), 0, width, height() - kBar), Qt::AlignCenter, text);
      painter.fillRect(sectionViewportPosition(day), height() - kBar, sectionSize(day) - 1, kBar,
                       palette().color(QPalette::WindowText));
    }
  }

 private:
  const DayModel& days_;
};

QLabel* NewLabel(const QString& text, int text_id, const char* name, QWidget* parent) {
  auto* label = new QLabel(text, parent);
  label->setObjectName(name);
  label->setProperty("textId", text_id);
  return label;
}

}  // namespace

GapMap::GapMap(QWidget* parent)
    : QWidget(parent),
      model_(new DayModel(this)),
      table_(new QTableView(this)),
      text_(new QLineEdit(this)),
      only_missing_(new QCheckBox("Only units that lack readings", this)),
      repair_(NewButton("Repair gaps", "Asks this unit again for the readings that are missing", kRepairText,
                        "gapMapRepair", this)),
      plot_(NewButton("Plot", "Shows the readings of this unit about this day", kPlotText, "gapMapPlot", this)),
      sentence_(new QLabel(this)) {
  setObjectName("gapMap");
  auto* column = new QVBoxLayout(this);
  AddControls();
  SetUpTable();
  column->addWidget(table_, 1);
  AddLegend();
  sentence_->setObjectName("gapMapSentence");
  sentence_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  sentence_->setWordWrap(true);
  sentence_->setMinimumHeight(2 * fontMetrics().lineSpacing());
  column->addWidget(sentence_);
  SayAtRest();
  EnableCommands();
}

void GapMap::AddControls() {
  auto* row = new QHBoxLayout;
  static_cast<QVBoxLayout*>(layout())->addLayout(row);
  auto* label = NewLabel("Unit:", kUnitText, "gapMapUnit", this);
  label->setBuddy(text_);
  text_->setObjectName("gapMapFilter");
  text_->setToolTip("Shows the units whose name holds this text");
  text_->setProperty("textId", kFilterText);
  text_->setClearButtonEnabled(true);
  only_missing_->setObjectName("gapMapOnlyMissing");
  only_missing_->setToolTip("Leaves out the units of which every reading is there");
  only_missing_->setProperty("textId", kOnlyMissingText);
  row->addWidget(label);
  row->addWidget(text_, 1);
  row->addWidget(only_missing_);
  row->addStretch(1);
  row->addWidget(repair_);
  row->addWidget(plot_);
  connect(text_, &QLineEdit::textChanged, this, [this] { Filter(); });
  connect(only_missing_, &QCheckBox::toggled, this, [this] { Filter(); });
  connect(repair_, &QPushButton::clicked, this, [this] {
    const QModelIndex current = table_->currentIndex();
    if (current.isValid() && repair) repair(model_->KeyAt(current.row()));
  });
  connect(plot_, &QPushButton::clicked, this, [this] {
    const QModelIndex current = table_->currentIndex();
    if (current.isValid() && show_plot) show_plot(model_->KeyAt(current.row()), model_->DayOf(current.column()));
  });
}

void GapMap::AddLegend() {
  DayCell unheard;
  unheard.unheard = true;
  const std::array<std::pair<DayCell, const char*>, 7> samples = {{
      {{48, 48, 0, 0, false}, "all readings"},
      {{48, 46, 0, 0, false}, "90 % and above"},
      {{48, 24, 0, 0, false}, "less"},
      {{48, 0, 0, 0, false}, "none"},
      {{48, 24, 24, 0, false}, "some lost for ever"},
      {{}, "none were due"},
      {unheard, "not heard of"},
  }};
  auto* row = new QHBoxLayout;
  static_cast<QVBoxLayout*>(layout())->addLayout(row);
  int text_id = kLegendText;
  for (const auto& [cell, text] : samples) {
    row->addWidget(new DaySample(cell, this));
    row->addWidget(NewLabel(text, text_id, ("gapMapLegend_" + std::to_string(text_id - kLegendText)).c_str(), this));
    row->addSpacing(fontMetrics().averageCharWidth());
    text_id = text_id == kLegendText + 5 ? kUnheardText : text_id + 1;
  }
  row->addStretch(1);
}

void GapMap::SetUpTable() {
  table_->setObjectName("gapMapTable");
  table_->setToolTip("The last 90 days of each unit; arrow keys go from day to day, Enter offers what can be done");
  table_->setProperty("textId", kTableText);
  table_->setHorizontalHeader(new DayHeader(*model_, table_));
  table_->setModel(model_);
  table_->setItemDelegate(new DayDelegate(table_));
  table_->setShowGrid(false);
  table_->setSelectionMode(QAbstractItemView::SingleSelection);
  table_->setCornerButtonEnabled(false);
  table_->setTabKeyNavigation(false);
  table_->setMouseTracking(true);
  table_->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
  table_->setContextMenuPolicy(Qt::CustomContextMenu);
  QHeaderView& names = *table_->verticalHeader();
  names.setSectionResizeMode(QHeaderView::Fixed);
  names.setMinimumSectionSize(1);
  names.setDefaultSectionSize(fontMetrics().height() + 4);
  names.setFixedWidth(fontMetrics().averageCharWidth() * kNameLetters);
  names.setTextElideMode(Qt::ElideRight);
  names.setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  names.setSectionsClickable(false);
  table_->viewport()->installEventFilter(this);
  table_->installEventFilter(this);
  connect(table_, &QAbstractItemView::entered, this, [this](const QModelIndex& index) { Tell(index); });
  connect(table_, &QWidget::customContextMenuRequested, this, [this](const QPoint& where) {
    if (const QModelIndex index = table_->indexAt(where); index.isValid()) table_->setCurrentIndex(index);
    OfferCommands(where);
  });
  connect(table_->selectionModel(), &QItemSelectionModel::currentChanged, this, [this](const QModelIndex& index) {
    Tell(index);
    EnableCommands();
  });
}

void GapMap::Show(DayMap map, const std::vector<UnitRecord>& units) {
  const QModelIndex current = table_->currentIndex();
  const std::int64_t key = current.isValid() ? model_->KeyAt(current.row()) : 0;
  const DateTime day = current.isValid() ? model_->DayOf(current.column()) : DateTime();
  const int scrolled = table_->verticalScrollBar()->value();
  const DateTime first = map.first;
  model_->Take(std::move(map), units);
  FitColumns();
  table_->verticalScrollBar()->setValue(scrolled);
  if (!std::exchange(shown_, true)) table_->horizontalScrollBar()->setValue(table_->horizontalScrollBar()->maximum());
  const int row = key != 0 ? model_->RowOf(key) : -1;
  const auto column = static_cast<int>((day - first) / kSecondsPerDay);
  if (row >= 0 && column >= 0 && column < model_->columnCount()) {
    table_->selectionModel()->setCurrentIndex(model_->index(row, column), QItemSelectionModel::ClearAndSelect);
  } else {
    SayAtRest();
  }
  EnableCommands();
}

void GapMap::SetPhrases(const Phrases& phrases) {
  phrases_ = phrases;
  model_->SetPhrases(phrases);
  SayAtRest();
}

void GapMap::SetIdle(bool idle) {
  idle_ = idle;
  EnableCommands();
}

bool GapMap::eventFilter(QObject* watched, QEvent* event) {
  if (watched == table_->viewport() && event->type() == QEvent::Resize) FitColumns();
  if (watched == table_->viewport() && event->type() == QEvent::Leave && table_->currentIndex().isValid()) {
    Tell(table_->currentIndex());
  }
  if (watched == table_ && event->type() == QEvent::KeyPress) {
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key != Qt::Key_Return && key != Qt::Key_Enter) return false;
    if (table_->currentIndex().isValid()) OfferCommands(table_->visualRect(table_->currentIndex()).center());
    return true;
  }
  return QWidget::eventFilter(watched, event);
}

void GapMap::FitColumns() {
  const int days = model_->columnCount();
  const int width = std::max(kNarrowest * days, table_->viewport()->width());
  if (days == 0 || table_->horizontalHeader()->length() == width) return;
  // Some days are a pixel wider than others, so that all of them fill the width.
  for (int day = 0; day < days; ++day) {
    table_->horizontalHeader()->resizeSection(day, (day + 1) * width / days - day * width / days);
  }
}

void GapMap::Filter() {
  model_->Filter(text_->text().trimmed(), only_missing_->isChecked());
  SayAtRest();
  EnableCommands();
}

void GapMap::SayAtRest() {
  const Phrase* says = &kNetworkSays.point_at_a_day;
  if (model_->Units() == 0) {
    says = &kNetworkSays.no_day;
  } else if (model_->rowCount() == 0) {
    says = &kNetworkSays.none_left;
  }
  sentence_->setText(QString::fromStdString(phrases_.Text(*says)));
}

void GapMap::Tell(const QModelIndex& index) {
  if (index.isValid()) sentence_->setText(model_->SentenceAt(index) + ".");
}

void GapMap::EnableCommands() {
  const QModelIndex current = table_->currentIndex();
  repair_->setEnabled(idle_ && current.isValid() && model_->CanBeRepaired(current.row()));
  plot_->setEnabled(current.isValid());
}

void GapMap::OfferCommands(const QPoint& where) {
  const QModelIndex current = table_->currentIndex();
  if (!current.isValid()) return;
  auto* menu = new QMenu(this);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  for (QPushButton* command : {repair_, plot_}) {
    QAction* entry = menu->addAction(command->text(), command, &QPushButton::click);
    entry->setEnabled(command->isEnabled());
    if (menu->activeAction() == nullptr && entry->isEnabled()) menu->setActiveAction(entry);
  }
  menu->popup(table_->viewport()->mapToGlobal(where));
}

}  // namespace corvane::window
