#include "window/plot/plot_page.h"

namespace corvane::window {

PlotPage::PlotPage(Application& app, EventLoop& loop) : app_(app), loop_(loop) {
  setObjectName("tabPlot");
}

void PlotPage::ShowUnit(std::int64_t position) {
  static_cast<void>(position);
  static_cast<void>(loop_);
  static_cast<void>(app_);
}

}  // namespace corvane::window
