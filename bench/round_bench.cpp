// Measures what a window that is drawn costs a round, on an application folder whose units answer.
//   corvane-bench-round FOLDER TURNS    prints "hidden S drawn S ratio N paints N key N worst N": medians of the
//   seconds
//                                       of rounds over all units, by turns with the window hidden and with the page
//                                       Network drawn; how often widgets were painted in a round; milliseconds from a
//                                       key in a further round to what it changed
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include <QApplication>
#include <QKeyEvent>
#include <QMetaObject>
#include <QTreeView>

#include "benched_window.h"
#include "sqlite/sqlite_history_store.h"

namespace {

using namespace corvane;

constexpr std::chrono::milliseconds kKeyInterval{41};  ///< beats with nothing else
constexpr int kPolls = 100;  ///< until nothing of a change of what is shown is left to be done

/// Seconds of a round over all units.
double Round(Bench& bench) {
  const auto start = std::chrono::steady_clock::now();
  if (!bench.app().commands().DownloadAll(true, kRadioUnits, false)) throw std::runtime_error("no round began");
  const double seconds = SecondsSince(start);
  if (bench.app().flags().problems != 0) throw std::runtime_error("a unit did not answer");
  return seconds;
}

/// Milliseconds from a key until what it changed is painted, for keys all through a round. They come from a thread of
/// their own, as from the screen: while the window is held they wait.
std::vector<double> KeysInARound(Bench& bench, QTreeView& table) {
  std::vector<double> times;
  std::jthread keyboard([&](const std::stop_token& released) {
    while (!released.stop_requested()) {
      std::this_thread::sleep_for(kKeyInterval);
      const auto pressed = std::chrono::steady_clock::now();
      const auto handle = [&table, &times, pressed] {
        QKeyEvent press(QEvent::KeyPress, times.size() % 8 < 4 ? Qt::Key_Down : Qt::Key_Up, {});
        QApplication::sendEvent(&table, &press);
        table.viewport()->repaint();
        times.push_back(1000 * SecondsSince(pressed));
      };
      QMetaObject::invokeMethod(&table, handle, Qt::QueuedConnection);
    }
  });
  Round(bench);
  keyboard.request_stop();
  keyboard.join();
  bench.Poll();
  return times;
}

int MeasureRounds(const std::string& folder, int turns) {
  SqliteHistoryStore history;
  Bench bench(folder, &history);
  auto& table = bench.Widget<QTreeView>("stationTable");
  // The first one meets units without any reading.
  Round(bench);
  std::vector<double> hidden, drawn, paints;
  for (int turn = 0; turn < 2 * turns; ++turn) {
    // Hidden, drawn, drawn, hidden: what changes slowly falls on both.
    const bool shown = (turn + 1) / 2 % 2 == 1;
    bench.window().setVisible(shown);
    for (int poll = 0; poll < kPolls; ++poll) bench.Poll();
    const int before = bench.paints();
    (shown ? drawn : hidden).push_back(Round(bench));
    if (shown) paints.push_back(bench.paints() - before);
    if (!shown && bench.paints() != before) throw std::runtime_error("a hidden window was painted");
  }
  bench.window().show();
  bench.Poll();
  std::vector<double> keys = KeysInARound(bench, table);
  std::printf("hidden %.3f drawn %.3f ratio %.4f paints %.0f key %.1f worst %.1f\n", Median(hidden), Median(drawn),
              Median(drawn) / Median(hidden), Median(paints), Median(keys),
              *std::max_element(keys.begin(), keys.end()));
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication toolkit(argc, argv);
  if (argc != 3) {
    std::fprintf(stderr, "usage: corvane-bench-round FOLDER TURNS\n");
    return 2;
  }
  try {
    return MeasureRounds(argv[1], std::atoi(argv[2]));
  } catch (const std::exception& error) {
    std::fprintf(stderr, "corvane-bench-round: %s\n", error.what());
    return EXIT_FAILURE;
  }
}
