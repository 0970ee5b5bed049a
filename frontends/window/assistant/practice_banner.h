#pragma once

#include <functional>
#include <string>

#include <QFrame>

namespace corvane::window {

/// Says above every page of the main window that nothing shown is real, and ends the practice by one click.
class PracticeBanner : public QFrame {
 public:
  explicit PracticeBanner(QWidget* parent);

  /// The person has practised enough.
  std::function<void()> ended;
};

/// Opens a window of its own on a simulated network; empty, or why it could not be started.
[[nodiscard]] std::string StartPractice();

}  // namespace corvane::window
