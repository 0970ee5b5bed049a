#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include <QObject>
#include <QTimer>

#include "app/application.h"
#include "history/day_map.h"
#include "lang/phrases.h"
#include "platform/event_loop.h"
#include "window/network/history_reader.h"

class QTabWidget;

namespace corvane::window {

class GapMap;
class RoundsView;

/// Gap map and rounds, read from the history when they are looked at and something has happened since.
class HistoryViews : public QObject {
 public:
  /// Adds both to `views`; all must outlive this object.
  HistoryViews(Application& app, EventLoop& loop, QTabWidget& views);

  /// Shows everything in these words from then on.
  void SetPhrases(const Phrases& phrases);
  /// An operation begins or has ended.
  void SetIdle(bool idle);

  /// Shows one unit's readings about a day; set by the window. Positions are those of the list of units, from 1.
  std::function<void(std::int64_t position, DateTime day)> show_plot;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Connect();
  void ReadMap();
  void ReadRound(std::int64_t key);
  /// Calls `command` from the loop with the place that a unit has then.
  void Post(std::int64_t key, const std::function<void(std::int64_t position)>& command);

  Application& app_;
  EventLoop& loop_;
  Phrases phrases_;
  GapMap* map_;
  RoundsView* rounds_;
  bool map_is_stale_ = true;
  bool map_is_read_ = false;                  ///< it is being read
  std::optional<std::int64_t> unread_round_;  ///< the key of one that could not be read yet
  QTimer again_;
  QTimer ageing_;  ///< days pass, and other programs write too
  HistoryReader reader_;
};

}  // namespace corvane::window
