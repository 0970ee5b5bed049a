#pragma once

#include <cstdint>

#include <QWidget>

#include "app/application.h"

namespace corvane::window {

/// The page "Plot": the readings of units over time.
class PlotPage : public QWidget {
 public:
  /// Both must outlive the page.
  PlotPage(Application& app, EventLoop& loop);

  /// Shows the unit at that position (from 1) of the list of units.
  void ShowUnit(std::int64_t position);

 private:
  Application& app_;
  EventLoop& loop_;
};

}  // namespace corvane::window
