#include "window/network/history_views.h"

#include <optional>
#include <utility>
#include <vector>

#include <QEvent>
#include <QScrollArea>
#include <QTabWidget>

#include "history/round_texts.h"
#include "platform/history_store.h"
#include "window/network/gap_map.h"
#include "window/network/rounds_view.h"

namespace corvane::window {
namespace {

constexpr int kAgeingMilliseconds = 600'000;
constexpr int kAgainMilliseconds = 1000;  ///< behind a reading for which another program left no room

/// What the gap map shows.
struct MapContents {
  DayMap map;
  std::vector<UnitRecord> units;
};

/// A view that can be made as small as the window.
QScrollArea* Scrolled(QWidget* view) {
  auto* area = new QScrollArea;
  area->setWidgetResizable(true);
  area->setFrameShape(QFrame::NoFrame);
  area->setFocusPolicy(Qt::NoFocus);
  area->setWidget(view);
  // The page shows through.
  area->viewport()->setAutoFillBackground(false);
  view->setAutoFillBackground(false);
  return area;
}

}  // namespace

HistoryViews::HistoryViews(Application& app, EventLoop& loop, QTabWidget& views)
    : app_(app), loop_(loop), map_(new GapMap), rounds_(new RoundsView), reader_(app.app().Folder()) {
  views.addTab(Scrolled(map_), "Gap map");
  views.addTab(Scrolled(rounds_), "Rounds");
  Connect();
}

void HistoryViews::Connect() {
  map_->installEventFilter(this);
  map_->repair = [this](std::int64_t key) {
    Post(key, [this](std::int64_t position) { app_.commands().RepairUnits({position}, DateTime()); });
  };
  map_->show_plot = [this](std::int64_t key, DateTime day) {
    Post(key, [this, day](std::int64_t position) {
      if (show_plot) show_plot(position, day);
    });
  };
  again_.setSingleShot(true);
  again_.setInterval(kAgainMilliseconds);
  connect(&again_, &QTimer::timeout, this, [this] {
    if (map_is_stale_ && map_->isVisible()) ReadMap();
    if (const auto key = std::exchange(unread_round_, {})) ReadRound(*key);
  });
  rounds_->read_round = [this](std::int64_t key) { ReadRound(key); };
  connect(&ageing_, &QTimer::timeout, this, [this] {
    map_is_stale_ = true;
    if (map_->isVisible()) ReadMap();
  });
  ageing_.start(kAgeingMilliseconds);
}

void HistoryViews::SetPhrases(const Phrases& phrases) {
  phrases_ = phrases;
  map_->SetPhrases(phrases);
  rounds_->SetPhrases(phrases);
}

void HistoryViews::SetIdle(bool idle) {
  map_->SetIdle(idle);
  if (!idle) return;
  map_is_stale_ = true;
  if (map_->isVisible()) ReadMap();
  rounds_->RoundEnded();
}

bool HistoryViews::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Show && map_is_stale_) ReadMap();
  return QObject::eventFilter(watched, event);
}

void HistoryViews::ReadMap() {
  map_is_stale_ = true;
  if (std::exchange(map_is_read_, true)) return;
  map_is_stale_ = false;
  const Moment now = loop_.NowUtc();
  reader_.Read<MapContents>(
      DayMapQuery(now),
      [now](const HistoryContents& history) {
        return MapContents{MakeDayMap(history, now), history.units};
      },
      [this](const Status& read, MapContents contents) {
        map_is_read_ = false;
        if (read.ok()) map_->Show(std::move(contents.map), contents.units);
        // What is shown is as old as it was.
        if (!read.ok()) map_is_stale_ = true;
        if (read.code() == HistoryStore::kBusy) return again_.start();
        if (read.ok() && map_is_stale_ && map_->isVisible()) ReadMap();
      });
}

void HistoryViews::ReadRound(std::int64_t key) {
  unread_round_.reset();
  // The one that runs is told of when it is over.
  const std::int64_t running = app_.history().Round().key;
  if (running > 0 && key >= running) key = running - 1;
  if (key < 1) return rounds_->Show(std::nullopt);
  reader_.Read<std::optional<RoundTexts>>(
      RoundQuery(key),
      [phrases = phrases_](const HistoryContents& history) -> std::optional<RoundTexts> {
        if (history.rounds.empty()) return std::nullopt;
        return TextsOf(history.rounds.front(), history, phrases);
      },
      [this, key](const Status& read, const std::optional<RoundTexts>& texts) {
        if (read.ok()) return rounds_->Show(texts);
        if (read.code() != HistoryStore::kBusy) return;
        unread_round_ = key;
        again_.start();
      });
}

void HistoryViews::Post(std::int64_t key, const std::function<void(std::int64_t position)>& command) {
  loop_.Post([this, key, command] {
    if (app_.flags().closing) return;
    // The list may have been edited since the map was read.
    app_.history().FollowUnits();
    const auto positions = app_.history().PositionsOf({key});
    if (!positions.empty()) command(positions.front());
  });
}

}  // namespace corvane::window
