// The program's window on the real machine, for what measures it.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <QApplication>
#include <QEvent>
#include <QTabWidget>

#include "app/application.h"
#include "curl/curl_internet_client.h"
#include "desktop/posix_shell.h"
#include "printing_dialogs.h"
#include "qt/qt_loop.h"
#include "serial/termios_port.h"
#include "window/main_window.h"
#include "zip/libzip_component.h"

namespace corvane {

inline double SecondsSince(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

inline double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values.at(values.size() / 2);
}

inline void Print(const std::string& what, std::vector<double> times) {
  std::sort(times.begin(), times.end());
  std::printf("%s: median %.1f ms, worst %.1f ms\n", what.c_str(), times[times.size() / 2], times.back());
}

class PaintCounter : public QObject {
 public:
  int paints = 0;

 private:
  bool eventFilter(QObject* /*watched*/, QEvent* event) override {
    if (event->type() == QEvent::Paint) ++paints;
    return false;
  }
};

/// The program's window on the real machine, shown and activated.
class Bench {
 public:
  explicit Bench(const std::string& folder, HistoryStore* history = nullptr)
      : shell_("corvane-bench-window", folder),
        app_(Platform{loop_, port_, shell_, dialogs_, internet_, zip_, {}, {}, history}, folder) {
    QApplication::instance()->installEventFilter(&counter_);
    app_.life().OnWindowCreate();
    window_.show();
    Measure([this] { loop_.Post([this] { app_.life().OnWindowActivate(""); }); });
  }

  Application& app() { return app_; }
  QWidget& window() { return window_; }
  [[nodiscard]] int paints() const { return counter_.paints; }
  void Poll() { loop_.Poll(); }
  void Yield() { loop_.Yield(); }

  /// The widget of that name, on a tab that is shown.
  template <class Kind>
  Kind& Widget(const char* name) {
    auto* found = window_.findChild<Kind*>(name);
    if (found == nullptr) throw std::runtime_error(std::string("no widget ") + name);
    auto* tabs = window_.findChild<QTabWidget*>("tabs");
    for (int tab = 0; tab < tabs->count(); ++tab) {
      if (tabs->widget(tab)->isAncestorOf(found)) tabs->setCurrentIndex(tab);
    }
    loop_.Poll();
    return *found;
  }
  /// Milliseconds of processor time until `action` is done and what it changed is painted.
  double Measure(const std::function<void()>& action) {
    const std::clock_t start = std::clock();
    counter_.paints = 0;
    action();
    loop_.Poll();
    if (counter_.paints == 0) throw std::runtime_error("nothing was painted");
    return 1000.0 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
  }

 private:
  QtLoop loop_;
  TermiosPort port_{loop_, loop_};
  PosixShell shell_;
  PrintingDialogs dialogs_;
  CurlInternetClient internet_{loop_};
  LibzipComponent zip_{loop_};
  Application app_;
  window::MainWindow window_{app_, loop_};
  PaintCounter counter_;
};

/// Milliseconds of processor time of this thread.
inline double ThreadMilliseconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return 1e3 * static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e6;
}

/// The longest that the window worked without looking at its events until something was so, in milliseconds of
/// processor time.
inline double Held(Bench& bench, const std::function<bool()>& done) {
  constexpr double kLongestWait = 60;  // seconds
  double held = 0;
  const auto begun = std::chrono::steady_clock::now();
  while (!done()) {
    const double start = ThreadMilliseconds();
    bench.Poll();
    held = std::max(held, ThreadMilliseconds() - start);
    if (SecondsSince(begun) > kLongestWait) throw std::runtime_error("the window does not come to show it");
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return held;
}

}  // namespace corvane
