#include "window/plot/plot_page.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include <QApplication>
#include <QClipboard>
#include <QFileDialog>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "data/sensor_names.h"
#include "lang/date_words.h"
#include "window/network/view_button.h"
#include "window/plot/plot_axes.h"
#include "window/plot/plot_export.h"
#include "window/plot/plot_phrases.h"

namespace corvane::window {
namespace {

using Chosen = PlotControls::Chosen;

constexpr int kRawItemsTextId = 1890;
constexpr int kLookAgainMilliseconds = 5000;
constexpr int kCursorLines = 2;
constexpr double kSameSpan = 60;  // seconds, which is what the fields from and to show

struct FilterRow {
  const Phrase& kind;
  const char* files;
};
constexpr std::array<FilterRow, 4> kFilters = {{{kPlotSays.picture, "*.png"},
                                                {kPlotSays.drawing, "*.svg"},
                                                {kPlotSays.document, "*.pdf"},
                                                {kPlotSays.table, "*.csv"}}};

}  // namespace

PlotPage::PlotPage(Application& app)
    : app_(app),
      view_(new PlotView),
      cursor_text_(new QLabel),
      problem_(new QLabel),
      raw_items_(NewButton("Show raw items", "Shows on the left axis what the unit has sent, item by item",
                           kRawItemsTextId, "plotRawItems", nullptr)) {
  setObjectName("tabPlot");
  view_->setObjectName("plotView");
  view_->setAccessibleName(Words(kPlotSays.plot));
  cursor_text_->setObjectName("plotCursor");
  problem_->setObjectName("plotProblem");
  problem_->setWordWrap(true);
  problem_->setTextFormat(Qt::PlainText);
  cursor_text_->setTextFormat(Qt::PlainText);
  // However long the text is, it does not widen the window.
  cursor_text_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
  // Nor does the plot change its height while the cursor moves.
  cursor_text_->setWordWrap(true);
  cursor_text_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  cursor_text_->setFixedHeight(kCursorLines * cursor_text_->fontMetrics().lineSpacing());
  auto* below = new QWidget;
  auto* texts = new QVBoxLayout(below);
  texts->setContentsMargins(0, 0, 0, 0);
  texts->addWidget(cursor_text_);
  texts->addWidget(problem_);
  texts->addWidget(raw_items_, 0, Qt::AlignLeft);
  raw_items_->hide();
  controls_ = std::make_unique<PlotControls>(*this, *view_, *below);
  work_ = new BackgroundWork(this);
  work_->failed = [this](const QString& why) { view_->SetMessage(Words(kPlotSays.not_read, {why.toStdString()})); };
  saving_ = new BackgroundWork(this);
  saving_->failed = [this](const QString& why) { Say(Words(kPlotSays.not_saved, {why.toStdString()})); };
  look_again_.setInterval(kLookAgainMilliseconds);
  Connect();
  controls_->EnableBack(false);
  controls_->EnableSave(false);
}

PlotPage::~PlotPage() {
  // A field may tell of itself as it goes: nobody is to hear it then.
  controls_->units_changed = controls_->lines_changed = controls_->span_chosen = nullptr;
  controls_->date_refused = nullptr;
  qDeleteAll(findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly));
}

void PlotPage::SetPhrases(const Phrases& phrases) {
  phrases_ = phrases;
  view_->setAccessibleName(Words(kPlotSays.plot));
  controls_->SetPhrases(phrases);
  if (shown_) Load(true);
}

void PlotPage::Connect() {
  controls_->units_changed = [this] { Load(true); };
  controls_->lines_changed = [this] { Load(true); };
  controls_->span_chosen = [this] { ShowSpan(); };
  controls_->date_refused = [this](const QString& why) { Say(why); };
  controls_->back = [this] { view_->Back(); };
  controls_->save = [this] { AskWhereToSave(); };
  controls_->copy = [this] { Copy(); };
  connect(raw_items_, &QPushButton::clicked, this, [this] {
    controls_->ChooseLeft(Quantity::Item);
    view_->setFocus(Qt::OtherFocusReason);
  });
  view_->span_changed = [this] { SpanChanged(); };
  view_->cursor_changed = [this](bool by_keys) { CursorMoved(by_keys); };
  connect(&look_again_, &QTimer::timeout, this, [this] { LookForMore(); });
  look_again_.start();
}

void PlotPage::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  if (shown_) {
    LookForMore();
  } else if (app_.registry().Units.count() > 0) {
    ShowUnit(std::max<std::int64_t>(app_.form().Lst_Units.current() + 1, 1));
  }
}

void PlotPage::ListUnits() {
  std::vector<std::string> names;
  for (const Unit& unit : app_.registry().Units) names.push_back(unit.Name);
  controls_->SetUnits(names);
}

void PlotPage::ShowUnit(std::int64_t position, DateTime day) {
  shown_ = true;
  day_ = day;
  view_->ClearCursor();
  ListUnits();
  controls_->TickOnly(position);
  Load(false);
}

PlotWish PlotPage::Wish() const {
  PlotWish wish;
  for (const std::int32_t position : controls_->TickedUnits()) {
    if (!app_.registry().Units.Has(position)) continue;
    const Unit& unit = app_.registry().Units[position];
    wish.units.push_back({unit.Name, unit.Depths, RequestOf(app_.form(), app_.registry(), app_.names(), position)});
  }
  wish.left = controls_->Left();
  wish.right = controls_->Right();
  wish.hidden_sensors = controls_->HiddenSensors();
  wish.item = controls_->Item();
  wish.phrases = phrases_;
  return wish;
}

void PlotPage::Load(bool keeps_span) {
  work_->CancelAll();
  view_->SetMessage(Words(kPlotSays.reading));
  work_->Add([this, wish = Wish(), keeps_span](const BackgroundWork::Cancelled& cancelled) -> std::function<void()> {
    std::string files = StateOf(wish);
    auto reading = std::make_shared<PlotReading>(ReadPlot(wish, cancelled));
    return [this, reading, keeps_span, files = std::move(files)] {
      shown_files_ = files;
      Take(reading, keeps_span);
    };
  });
}

void PlotPage::LookForMore() {
  if (!isVisible() || Busy() || !shown_) return;
  ListUnits();
  work_->Add([this, wish = Wish(),
              former = shown_files_](const BackgroundWork::Cancelled& cancelled) -> std::function<void()> {
    std::string files = StateOf(wish);
    if (files == former) return {};
    auto reading = std::make_shared<PlotReading>(ReadPlot(wish, cancelled));
    return [this, reading, files = std::move(files)] {
      shown_files_ = files;
      Take(reading, true);
    };
  });
}

void PlotPage::Take(const std::shared_ptr<PlotReading>& reading, bool keeps_span) {
  controls_->Offer(reading->sensors, reading->items, reading->depths);
  const bool empty = reading->contents.lines.empty();
  problem_->setText(reading->contents.problem);
  problem_->setVisible(!reading->contents.problem.isEmpty());
  // What reached to the last reading goes on doing so.
  const TimeSpan former_whole = view_->contents().Whole();
  const bool showed_all = view_->span().to >= former_whole.to && view_->span().from <= former_whole.from;
  const bool raw_instead = empty && reading->no_table && reading->items > 0;
  raw_items_->setVisible(raw_instead);
  view_->SetMessage(reading->units == 0 ? Words(kPlotSays.tick_a_unit)
                    : raw_instead       ? Words(kPlotSays.needs_tables)
                    : empty             ? Words(kPlotSays.no_readings)
                                        : QString());
  view_->Show(std::shared_ptr<const PlotContents>(reading, &reading->contents), keeps_span && !showed_all);
  controls_->EnableSave(!empty);
  CursorMoved(false);
  ShowDay();
}

void PlotPage::ShowDay() {
  const DateTime day = std::exchange(day_, DateTime());
  const TimeSpan whole = view_->contents().Whole();
  if (day.IsNone() || whole.length() <= 0) return;
  const auto from = static_cast<double>(day.Midnight().seconds());
  view_->Zoom({from - kSecondsPerDay, from + 2 * kSecondsPerDay});
  if (from <= whole.to && from + kSecondsPerDay > whole.from) return;
  Say(Words(kPlotSays.none_of_day, {DateText(day, "d mmm yyyy", phrases_)}));
}

void PlotPage::ShowSpan() {
  const TimeSpan whole = view_->contents().Whole();
  const TimeSpan chosen = controls_->ChosenSpan(whole);
  CursorMoved(false);
  setting_span_ = true;
  const auto text = [this](double seconds) { return TimeText(seconds, phrases_).toStdString(); };
  if (!controls_->IsFromTo()) {
    view_->Zoom(chosen);
  } else if (chosen.from >= chosen.to) {
    Say(Words(kPlotSays.from_before_to, {text(chosen.from), text(chosen.to)}));
  } else {
    const TimeSpan shown = {std::max(chosen.from, whole.from), std::min(chosen.to, whole.to)};
    // The fields show whole minutes.
    const bool cut = shown.from - chosen.from >= kSameSpan || chosen.to - shown.to >= kSameSpan;
    if (cut) Say(Words(kPlotSays.readings_from_to, {text(whole.from), text(whole.to)}));
    if (shown.from < shown.to) view_->Zoom(shown);
  }
  setting_span_ = false;
  controls_->ShowSpan(view_->span(), Chosen::AsItIs);
}

void PlotPage::SpanChanged() {
  controls_->EnableBack(view_->CanGoBack());
  if (setting_span_) return;
  const TimeSpan whole = view_->contents().Whole();
  const TimeSpan chosen = controls_->ChosenSpan(whole);
  const TimeSpan& shown = view_->span();
  const bool same = std::abs(chosen.from - shown.from) < kSameSpan && std::abs(chosen.to - shown.to) < kSameSpan;
  controls_->ShowSpan(shown, same ? Chosen::AsItIs : shown == whole ? Chosen::All : Chosen::FromTo);
}

void PlotPage::CursorMoved(bool by_keys) {
  const QString text = view_->CursorText();
  cursor_text_->setText(text);
  // Moved by keys it is read out; a mouse that passes over the plot is not.
  if (by_keys) view_->setAccessibleDescription(text);
}

PlotLayout PlotPage::Layout() const {
  return {view_->span(), QSizeF(view_->size()), view_->font()};
}

void PlotPage::AskWhereToSave() {
  if (auto* open = findChild<QFileDialog*>(); open != nullptr) return open->activateWindow();
  auto* dialog = new QFileDialog(this, Words(kPlotSays.save_as), QString::fromStdString(app_.names().DataFolder()));
  dialog->setAcceptMode(QFileDialog::AcceptSave);
  QStringList filters;
  for (const FilterRow& row : kFilters) filters << Words(row.kind) + " (" + row.files + ")";
  dialog->setNameFilters(filters);
  dialog->setDefaultSuffix("png");
  connect(dialog, &QFileDialog::filterSelected, dialog,
          [dialog](const QString& filter) { dialog->setDefaultSuffix(filter.section("*.", 1).chopped(1)); });
  connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& file) { SaveTo(file); });
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  // Not modal: a round behind it and its boxes go on.
  dialog->setModal(false);
  dialog->show();
}

void PlotPage::SaveTo(const QString& file) {
  const std::string name = file.toStdString();
  // The lines stay for as long as the work needs them.
  auto contents = std::make_shared<const PlotContents>(view_->contents());
  const bool table = file.endsWith(".csv", Qt::CaseInsensitive);
  saving_->Add([this, name, contents, table,
                layout = Layout()](const BackgroundWork::Cancelled& cancelled) -> std::function<void()> {
    const Status saved =
        table ? SaveTable(name, *contents, layout.span, cancelled) : SavePicture(name, *contents, layout);
    return [this, name, saved] {
      Say(saved.ok() ? Words(kPlotSays.saved, {name}) : Words(kPlotSays.not_saved, {saved.text()}));
    };
  });
}

void PlotPage::Copy() {
  QApplication::clipboard()->setImage(PictureOf(view_->contents(), Layout()));
  Say(Words(kPlotSays.copied));
}

QString PlotPage::Words(const Phrase& phrase, std::initializer_list<std::string_view> values) const {
  return QString::fromStdString(phrases_.Text(phrase, values));
}

void PlotPage::Say(const QString& text) {
  cursor_text_->setText(text);
}

}  // namespace corvane::window
