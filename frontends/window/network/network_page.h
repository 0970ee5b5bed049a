#pragma once

#include <QWidget>

#include "app/application.h"

class QTabWidget;

namespace corvane::window {

/// The page "Network": how things stand. A view of the network's status; no rule of the system lives here.
class NetworkPage : public QWidget {
 public:
  /// Both must outlive the page.
  NetworkPage(Application& app, EventLoop& loop);

  /// Shows one unit's readings; set by the window. Positions are those of the list of units, from 1.
  std::function<void(std::int64_t position)> show_plot;

 private:
  /// A view of its own beside the table of the stations: the gap map, the rounds.
  void AddView(QWidget& view, const QString& caption);

  Application& app_;
  EventLoop& loop_;
  QTabWidget* views_;
};

}  // namespace corvane::window
