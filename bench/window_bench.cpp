// Measures the window on an application folder that holds its settings.
//   corvane-bench-window paint FOLDER BEGIN    prints the seconds since BEGIN (of the clock, with fractions) when the
//                                              window stands activated and painted
//   corvane-bench-window work FOLDER           prints what a keystroke and a click cost, a line each
//                                              (processor time, other programs do not count)
//   corvane-bench-window list FOLDER           prints the slowest of several refreshes of the file list, likewise
//   corvane-bench-window network FOLDER        prints what the page Network needs to fill (seconds of the clock),
//                                              and the slowest sort, key in the filter and grouping, a line each
//   corvane-bench-window convert FOLDER        prints the seconds of converting all units
//   corvane-bench-window plot FOLDER           prints "shown S held MS all N zoomed N": seconds from the choice of a
//   unit
//                                              to its plot, the longest that the window did not answer meanwhile,
//                                              pictures a second of about all readings and on the way into them
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTreeView>

#include "benched_window.h"
#include "sqlite/sqlite_history_store.h"
#include "window/network/stations_dialog.h"
#include "window/plot/plot_page.h"

namespace {

using namespace corvane;

constexpr int kKeystrokes = 400;
constexpr int kClicks = 200;
constexpr int kRefreshes = 6;
constexpr int kPlots = 5;
constexpr std::size_t kPlotLines = 3;
constexpr int kPictures = 240;

void MeasureKeystrokes(Bench& bench, const char* field) {
  auto& edit = bench.Widget<QLineEdit>(field);
  edit.setFocus();
  std::vector<double> times;
  for (int i = 0; i < kKeystrokes; ++i) {
    const bool back = i % 2 == 1;
    QKeyEvent press(QEvent::KeyPress, back ? Qt::Key_Backspace : Qt::Key_X, {}, back ? "\b" : "x");
    times.push_back(bench.Measure([&] { QApplication::sendEvent(&edit, &press); }));
  }
  Print(std::string("keystroke in ") + field, std::move(times));
}

void MeasureClicks(Bench& bench) {
  bench.Widget<QAbstractItemView>("Lst_LocalFiles");
  auto& units = bench.Widget<QAbstractItemView>("Lst_Units");
  std::vector<double> times;
  for (int i = 0; i < kClicks; ++i) {
    const QPointF point = units.visualRect(units.model()->index(1 + i % 8, 0)).center();
    const QPointF global = units.viewport()->mapToGlobal(point);
    QMouseEvent press(QEvent::MouseButtonPress, point, global, Qt::LeftButton, Qt::LeftButton, {});
    QMouseEvent release(QEvent::MouseButtonRelease, point, global, Qt::LeftButton, {}, {});
    times.push_back(bench.Measure([&] {
      QApplication::sendEvent(units.viewport(), &press);
      QApplication::sendEvent(units.viewport(), &release);
    }));
    if (bench.app().form().Lst_Units.current() != 1 + i % 8) throw std::runtime_error("the click chose no unit");
  }
  Print("click in Lst_Units", std::move(times));
}

int MeasureWork(const std::string& folder) {
  Bench bench(folder);
  for (const char* field : {"Txt_UnitName", "Txt_Prefix", "Txt_Folder"}) MeasureKeystrokes(bench, field);
  MeasureClicks(bench);
  return EXIT_SUCCESS;
}

int MeasurePaint(const std::string& folder, double begin) {
  const Bench bench(folder);
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  std::printf("%.3f\n", std::chrono::duration<double>(now).count() - begin);
  return EXIT_SUCCESS;
}

int MeasureList(const std::string& folder) {
  Bench bench(folder);
  bench.Widget<QAbstractItemView>("Lst_LocalFiles");
  double slowest = 0;
  for (int i = 1; i <= kRefreshes; ++i) {
    const double time = bench.Measure([&] { bench.app().form().Opt_SortFile.SetOptionIndex(i % 3); });
    slowest = std::max(slowest, time);
  }
  std::printf("%.3f s, %lld files\n", slowest / 1000,
              static_cast<long long>(bench.app().form().Lst_LocalFiles.count()));
  return EXIT_SUCCESS;
}

void PrintHeld(const char* what, double milliseconds) {
  std::printf("%s: longest %.1f ms\n", what, milliseconds);
}

/// A round of all units as sentences, and a table that changes all units.
void MeasureLongTexts(Bench& bench, const std::string& folder, std::int64_t units) {
  auto& text = bench.Widget<QPlainTextEdit>("roundsText");
  auto& views = bench.Widget<QTabWidget>("networkViews");
  PrintHeld("round shown in sentences", Held(bench, [&] {
              views.setCurrentIndex(2);
              return text.blockCount() > units;
            }));
  const std::string file = folder + "/units.csv";
  std::ofstream table(file);
  table << "Name,ID\n";
  for (std::int64_t unit = 1; unit <= units; ++unit) table << "Place " << unit << "," << unit << "\n";
  table.close();
  views.setCurrentIndex(0);
  auto& dialog = dynamic_cast<window::StationsDialog&>(bench.Widget<QDialog>("StationsDialog"));
  auto& put_in = bench.Widget<QPushButton>("putInStations");
  auto& lines = bench.Widget<QPlainTextEdit>("stationsChanges");
  auto& state = bench.Widget<QLabel>("stationsState");
  dialog.ShowEmpty();
  dialog.ReadFrom(QString::fromStdString(file));
  PrintHeld("table of stations read and shown",
            Held(bench, [&] { return put_in.isEnabled() && lines.blockCount() >= units; }));
  put_in.click();
  PrintHeld("table of stations put in", Held(bench, [&] { return state.text().endsWith("put in."); }));
  const auto& table_of_units = *bench.Widget<QTreeView>("stationTable").model();
  PrintHeld("status read anew",
            Held(bench, [&] { return table_of_units.index(0, 1).data().toString().startsWith("Place "); }));
}

int MeasureNetwork(const std::string& folder) {
  SqliteHistoryStore history;
  const auto start = std::chrono::steady_clock::now();
  Bench bench(folder, &history);
  auto& table = bench.Widget<QTreeView>("stationTable");
  while (table.model()->rowCount() == 0) bench.Yield();
  bench.Measure([&table] { table.viewport()->update(); });
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  std::printf("Start until the page Network is filled: %.2f s\n", seconds);
  std::vector<double> times;
  for (int column = 0; column < table.model()->columnCount(); ++column) {
    times.push_back(bench.Measure([&] { table.sortByColumn(column, Qt::DescendingOrder); }));
  }
  Print("sort", std::exchange(times, {}));
  auto& filter = bench.Widget<QLineEdit>("stationFilter");
  for (const char key : std::string("station 77\b\b")) {
    QKeyEvent press(QEvent::KeyPress, key == '\b' ? Qt::Key_Backspace : Qt::Key_A, {}, QString(QChar(key)));
    times.push_back(bench.Measure([&] { QApplication::sendEvent(&filter, &press); }));
  }
  Print("key in the filter", std::exchange(times, {}));
  auto& groups = bench.Widget<QComboBox>("stationGroups");
  filter.clear();
  for (const int grouping : {1, 2, 0}) times.push_back(bench.Measure([&] { groups.setCurrentIndex(grouping); }));
  Print("grouping", std::move(times));
  MeasureLongTexts(bench, folder, bench.app().registry().Units.count());
  return EXIT_SUCCESS;
}

int MeasureConversion(const std::string& folder) {
  Bench bench(folder);
  const auto start = std::chrono::steady_clock::now();
  bench.app().commands().ConvertAll(true);
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  std::printf("%.3f\n", seconds);
  return bench.app().flags().problems == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

/// Pictures a second while the span is each of these shares of the whole.
double PicturesPerSecond(window::PlotView& view, int pictures, const std::function<double(int)>& share) {
  const window::TimeSpan whole = view.contents().Whole();
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < pictures; ++i) {
    const double length = whole.length() * share(i);
    const double from = whole.from + (whole.length() - length) / 3;
    view.Zoom({from, from + length});
    view.repaint();
  }
  return pictures / SecondsSince(start);
}

int MeasurePlot(const std::string& folder) {
  Bench bench(folder);
  auto& view = dynamic_cast<window::PlotView&>(bench.Widget<QWidget>("plotView"));
  auto& page = dynamic_cast<window::PlotPage&>(bench.Widget<QWidget>("tabPlot"));
  double held = 0;
  const auto wait = [&] {
    while (page.Busy()) {
      const auto start = std::chrono::steady_clock::now();
      bench.Poll();
      held = std::max(held, SecondsSince(start));
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  };
  wait();
  std::vector<double> times;
  for (int i = 0; i < kPlots; ++i) {
    const auto start = std::chrono::steady_clock::now();
    page.ShowUnit(1);
    wait();
    view.repaint();
    times.push_back(SecondsSince(start));
  }
  if (view.contents().lines.size() != kPlotLines) throw std::runtime_error("not all lines are shown");
  std::sort(times.begin(), times.end());
  const double all = PicturesPerSecond(view, kPictures, [](int i) { return 0.99 - 0.001 * (i % 10); });
  const double zoomed = PicturesPerSecond(view, kPictures, [](int i) { return std::pow(0.9, i % 60); });
  std::printf("shown %.3f held %.0f all %.0f zoomed %.0f\n", times[times.size() / 2], held * 1000, all, zoomed);
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication toolkit(argc, argv);
  const std::map<std::string, std::function<int()>> measures = {
      {"paint", [argv] { return MeasurePaint(argv[2], std::strtod(argv[3], nullptr)); }},
      {"work", [argv] { return MeasureWork(argv[2]); }},
      {"list", [argv] { return MeasureList(argv[2]); }},
      {"plot", [argv] { return MeasurePlot(argv[2]); }},
      {"network", [argv] { return MeasureNetwork(argv[2]); }},
      {"convert", [argv] { return MeasureConversion(argv[2]); }},
  };
  const auto measure = argc < 3 ? measures.end() : measures.find(argv[1]);
  if (measure == measures.end() || (measure->first == "paint") != (argc == 4)) {
    std::fprintf(stderr, "usage: corvane-bench-window work|list|network|convert|plot FOLDER, or paint FOLDER BEGIN\n");
    return 2;
  }
  try {
    return measure->second();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "corvane-bench-window: %s\n", error.what());
    return EXIT_FAILURE;
  }
}
