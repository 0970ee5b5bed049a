#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <QElapsedTimer>
#include <QScrollArea>
#include <QTimer>

#include "app/application.h"
#include "history/network_status.h"
#include "lang/phrases.h"
#include "window/network/history_reader.h"
#include "window/network/station_order.h"

class QLabel;
class QTabWidget;
class QVBoxLayout;

namespace corvane::window {

class HealthDialog;
class StationsDialog;
class StationsView;

/// The page "Network": how things stand. A view of the network's status; no rule of the system lives here.
///
/// The status is read on a thread and shown when it is there: at the start, behind each contact of a round, at its end
/// and every minute. While a round runs everything here can be looked at.
class NetworkPage : public QScrollArea {
 public:
  /// Both must outlive the page.
  NetworkPage(Application& app, EventLoop& loop);
  ~NetworkPage() override;

  /// Disables the commands whenever that widget is.
  void FollowCommand(QWidget& command);
  /// Shows everything in these words from then on.
  void SetPhrases(const Phrases& phrases);
  /// Reads how things stand, soon.
  void Refresh();
  /// What reads the history for every view of it.
  [[nodiscard]] HistoryReader& reader() { return reader_; }

  /// Shows one unit's readings; set by the window. Positions are those of the list of units, from 1.
  std::function<void(std::int64_t position)> show_plot;
  /// Opens the assistant that sets a network up; called from the loop.
  std::function<void()> set_up;
  /// How the network stands but for its units, and that in one sentence, whenever it was read.
  std::function<void(const NetworkStatus& status, const std::string& headline)> on_status;

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  using Command = std::function<void(const std::vector<std::int64_t>& positions)>;

  QLabel* AddLine(QVBoxLayout& column, const char* name);
  void AddSetUp(QVBoxLayout& column);
  /// A view of its own beside the table of the stations: the gap map, the rounds.
  void AddView(QWidget& view, const QString& caption);
  void BindCommands();
  /// Runs a command for units by their keys, from the loop; not while an operation runs.
  void Run(const std::vector<std::int64_t>& keys, Command command);
  void FollowRounds();
  void SetBusy(bool busy);
  void RefreshUnit(std::int64_t position);
  /// How the network stands, and what of it is worked out before it is shown.
  struct Shown {
    NetworkStatus status;  ///< its units are in the rows
    std::string headline;
    const Phrase* advice = nullptr;
    StationRows rows;
  };
  void Take(const Status& read, Shown shown);
  void ShowRound();
  /// Null: there is none.
  void ShowAdvice(const Phrase* advice);

  Application& app_;
  EventLoop& loop_;
  QLabel* headline_ = nullptr;
  QLabel* round_ = nullptr;
  QLabel* advice_ = nullptr;
  QTabWidget* views_ = nullptr;
  StationsView* stations_ = nullptr;
  StationsDialog* table_ = nullptr;
  HealthDialog* health_ = nullptr;
  Phrases phrases_;
  std::string last_round_;
  std::int64_t running_ = 0;   ///< place of the unit that has its turn, 0 none
  bool reading_ = false;       ///< the status is being read
  bool again_ = false;         ///< something has happened since that began
  int units_reading_ = 0;      ///< single units
  QElapsedTimer since_begin_;  ///< of the reading
  std::int64_t took_ = 0;      ///< milliseconds, the last one
  QTimer every_minute_;
  QTimer soon_;
  HistoryReader reader_;
};

}  // namespace corvane::window
