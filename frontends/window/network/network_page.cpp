#include "window/network/network_page.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

#include <QEvent>
#include <QFont>
#include <QLabel>
#include <QLayout>
#include <QMargins>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>

#include "history/status_headline.h"
#include "window/network/health_dialog.h"
#include "window/network/network_phrases.h"
#include "window/network/station_table.h"
#include "window/network/stations_dialog.h"
#include "window/network/stations_view.h"
#include "window/network/view_button.h"

namespace corvane::window {
namespace {

constexpr int kViewsTextId = 782;  ///< and those that follow it
constexpr int kSetUpTextId = 918;
constexpr int kMinute = 60'000;
/// While units answer, reading the whole status takes at most this part of the time.
constexpr std::int64_t kRestFactor = 40;
constexpr int kShortestRest = 1000;
/// More single units than these do not wait for being read: the whole status shows them soon.
constexpr int kMostUnits = 8;

/// What to do about it; null when nothing is to be done.
const Phrase* AdviceOn(const NetworkStatus& status) {
  if (status.units.empty()) return &kNetworkSays.begin_here;
  if (!status.nobody_collects.empty()) return &kNetworkSays.set_interval;
  if (status.last.key == 0) return &kNetworkSays.first_round;
  return status.next_round.IsNone() ? &kNetworkSays.by_hand_only : nullptr;
}

}  // namespace

NetworkPage::NetworkPage(Application& app, EventLoop& loop) : app_(app), loop_(loop), reader_(app.app().Folder()) {
  setObjectName("tabNetwork");
  setWidgetResizable(true);
  setFrameShape(QFrame::NoFrame);
  auto* contents = new QWidget;
  auto* column = new QVBoxLayout(contents);
  headline_ = AddLine(*column, "networkHeadline");
  QFont large = headline_->font();
  large.setBold(true);
  large.setPointSizeF(large.pointSizeF() * 1.15);
  headline_->setFont(large);
  round_ = AddLine(*column, "networkRound");
  advice_ = AddLine(*column, "networkAdvice");
  round_->hide();
  advice_->hide();
  AddSetUp(*column);
  views_ = new QTabWidget(contents);
  views_->setObjectName("networkViews");
  views_->setProperty("textId", kViewsTextId);
  views_->setDocumentMode(true);
  column->addWidget(views_, 1);
  setWidget(contents);
  stations_ = new StationsView(views_);
  AddView(*stations_, "Units");
  table_ = new StationsDialog(app_, loop_, this);
  table_->on_put_in = [this] { Refresh(); };
  health_ = new HealthDialog(reader_, this);
  BindCommands();
  FollowRounds();
  soon_.setSingleShot(true);
  for (QTimer* timer : {&every_minute_, &soon_}) connect(timer, &QTimer::timeout, this, [this] { Refresh(); });
  every_minute_.start(kMinute);
}

NetworkPage::~NetworkPage() {
  app_.round_follower() = {};
}

QLabel* NetworkPage::AddLine(QVBoxLayout& column, const char* name) {
  auto* line = new QLabel(this);
  line->setObjectName(name);
  // Names of units are text, whatever they hold.
  line->setTextFormat(Qt::PlainText);
  line->setWordWrap(true);
  line->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  column.addWidget(line);
  return line;
}

void NetworkPage::AddSetUp(QVBoxLayout& column) {
  QPushButton* const button =
      NewButton("Set &up...", "Asks for what the network needs, a page at a time, and shows what is there",
                kSetUpTextId, "setUpButton", this);
  column.addWidget(button, 0, Qt::AlignLeft);
  connect(button, &QPushButton::clicked, this, [this] {
    loop_.Post([this] {
      if (set_up && !app_.flags().closing) set_up();
    });
  });
}

void NetworkPage::SetPhrases(const Phrases& phrases) {
  phrases_ = phrases;
  stations_->SetPhrases(phrases);
  health_->SetPhrases(phrases);
  // What stands there in other words is told anew.
  if (!headline_->text().isEmpty()) Refresh();
}

void NetworkPage::AddView(QWidget& view, const QString& caption) {
  views_->addTab(&view, caption);
}

void NetworkPage::BindCommands() {
  using Keys = StationsView::Keys;
  stations_->collect = [this](const Keys& keys) {
    Run(keys, [this](const auto& units) { app_.commands().Collect(units); });
  };
  stations_->repair = [this](const Keys& keys) {
    Run(keys, [this](const auto& units) { app_.commands().RepairUnits(units, DateTime()); });
  };
  stations_->set_active = [this](const Keys& keys, bool active) {
    Run(keys, [this, active](const auto& units) {
      app_.commands().SetActive(units, active);
      Refresh();
    });
  };
  stations_->as_table = [this] { table_->ShowEmpty(); };
  stations_->health = [this](const UnitStatus& unit) {
    health_->ShowUnit(unit, NeighboursOf(unit, stations_->table().stations().units()), loop_.NowUtc());
  };
  stations_->plot = [this](std::int64_t key) {
    const auto positions = app_.history().PositionsOf({key});
    if (!positions.empty() && show_plot) show_plot(positions.front());
  };
}

void NetworkPage::Run(const std::vector<std::int64_t>& keys, Command command) {
  loop_.Post([this, keys, command = std::move(command)] {
    if (app_.slot().Taken() || app_.flags().closing) return;
    // The list may have been edited since the table was read.
    app_.history().FollowUnits();
    const auto positions = app_.history().PositionsOf(keys);
    if (!positions.empty()) command(positions);
  });
}

void NetworkPage::FollowRounds() {
  RoundFollower& follower = app_.round_follower();
  follower.on_asking = [this](std::int64_t position) {
    running_ = position;
    stations_->SetRunning(position);
    ShowRound();
  };
  follower.on_contact = [this](std::int64_t position) {
    // Who shows the page gets all of it.
    if (!isVisible()) return;
    RefreshUnit(position);
    if (!soon_.isActive()) soon_.start(static_cast<int>(std::max<std::int64_t>(kShortestRest, took_ * kRestFactor)));
  };
  follower.on_round_end = [this] {
    running_ = 0;
    stations_->SetRunning(0);
    Refresh();
  };
}

void NetworkPage::FollowCommand(QWidget& command) {
  command.installEventFilter(this);
  SetBusy(!command.isEnabled());
}

bool NetworkPage::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::EnabledChange) SetBusy(!static_cast<QWidget*>(watched)->isEnabled());
  return QScrollArea::eventFilter(watched, event);
}

void NetworkPage::SetBusy(bool busy) {
  stations_->SetBusy(busy);
  table_->SetBusy(busy);
}

void NetworkPage::resizeEvent(QResizeEvent* event) {
  QScrollArea::resizeEvent(event);
  // The sentences are read without scrolling, however wide the table below is.
  const QMargins margins = widget()->layout()->contentsMargins();
  for (QLabel* line : {headline_, round_, advice_}) {
    line->setMaximumWidth(viewport()->width() - margins.left() - margins.right());
  }
}

void NetworkPage::showEvent(QShowEvent* event) {
  QScrollArea::showEvent(event);
  loop_.Post([this] {
    if (app_.history().Round().key == 0 && !app_.flags().closing) app_.history().FollowUnits();
    Refresh();
    // The first activation tells when the next round begins.
    soon_.start(kShortestRest);
  });
}

void NetworkPage::Refresh() {
  if (!app_.history().Kept()) return;
  again_ = reading_;
  if (reading_) return;
  reading_ = true;
  soon_.stop();
  since_begin_.start();
  const Moment now = loop_.NowUtc();
  reader_.Read<Shown>(
      StatusQuery(now),
      [now, phrases = phrases_, choice = stations_->table().stations().choice()](const HistoryContents& read) {
        Shown shown;
        shown.status = WorkOutStatus(read, now, Holder::Somebody, phrases);
        shown.headline = HeadlineOf(shown.status, phrases);
        shown.advice = AdviceOn(shown.status);
        shown.rows = RowsOf(std::move(shown.status.units), choice, phrases);
        return shown;
      },
      [this](const Status& read, Shown shown) { Take(read, std::move(shown)); });
}

void NetworkPage::RefreshUnit(std::int64_t position) {
  const std::int64_t key = app_.history().KeyOf(position);
  if (key == 0 || units_reading_ >= kMostUnits) return;
  ++units_reading_;
  const Moment now = loop_.NowUtc();
  HistoryQuery query = StatusQuery(now);
  query.unit = key;
  reader_.Read<NetworkStatus>(
      query,
      [now, key, phrases = phrases_](const HistoryContents& read) {
        HistoryContents of_unit = read;
        std::erase_if(of_unit.units, [key](const UnitRecord& unit) { return unit.key != key; });
        return WorkOutStatus(of_unit, now, Holder::Somebody, phrases);
      },
      [this](const Status& read, const NetworkStatus& status) {
        --units_reading_;
        if (read.ok() && !status.units.empty()) stations_->TakeUnit(status.units.front());
      });
}

void NetworkPage::Take(const Status& read, Shown shown) {
  reading_ = false;
  took_ = since_begin_.elapsed();
  if (read.code() == HistoryStore::kBusy && !headline_->text().isEmpty()) {
    soon_.start(kShortestRest);
    return;
  }
  if (!read.ok()) {
    headline_->setText(QString::fromStdString(phrases_.Text(kNetworkSays.cannot_tell, {read.text()})));
    return ShowAdvice(&kNetworkSays.rounds_go_on);
  }
  headline_->setText(QString::fromStdString(shown.headline));
  last_round_ = shown.status.last_round;
  ShowRound();
  ShowAdvice(shown.advice);
  if (on_status) on_status(shown.status, shown.headline);
  // Thousands of them are not taken down here either.
  reader_.Drop(std::make_shared<std::vector<UnitStatus>>(stations_->Take(std::move(shown.rows), shown.status.now)));
  if (again_) Refresh();
}

void NetworkPage::ShowRound() {
  std::string text;
  const bool running = running_ > 0 && app_.registry().Units.Has(running_);
  if (running) {
    text = phrases_.Text(kNetworkSays.round_asks, {app_.registry().Units[running_].Name});
  } else if (app_.history().Round().key > 0) {
    text = phrases_.Text(kNetworkSays.round_runs);
  } else if (!last_round_.empty()) {
    text = phrases_.Text(kNetworkSays.last_round, {last_round_});
  }
  round_->setText(QString::fromStdString(text));
  round_->setVisible(!text.empty());
}

void NetworkPage::ShowAdvice(const Phrase* advice) {
  advice_->setText(advice == nullptr ? QString() : QString::fromStdString(phrases_.Text(*advice)));
  advice_->setVisible(advice != nullptr);
}

}  // namespace corvane::window
