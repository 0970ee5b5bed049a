#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

#include "console_output.h"
#include "form/form.h"
#include "form/form_view.h"
#include "platform/event_loop.h"

namespace corvane::console {

/// Prints what an operator wants to read later: what was begun, answers, results and errors. The rest goes to the
/// progress line of a terminal only, so that a pipe gets no line for each reading.
class ConsoleView : public FormView {
 public:
  /// All must outlive the view; `verbose` prints the lines of the on-screen trace too.
  ConsoleView(const Form& form, const EventLoop& loop, ConsoleOutput& output, bool verbose)
      : form_(form), loop_(loop), output_(output), verbose_(verbose) {}

  void ControlChanged(const Control& control, Aspect aspect, std::size_t row) override;
  /// A console has nothing to repaint.
  void RepaintNow(const Control& /*control*/) override {}

  /// Prints the next download time whenever it changes.
  void ShowNextDownload() { shows_next_download_ = true; }

  /// Whether steps go to the progress line only: whoever runs the operation tells what it came to.
  bool hides_steps = false;

  /// Sees every change, after it was printed; may be empty.
  std::function<void(const Control& control)> on_change;

 private:
  void OnStatus();
  void OnTrace(std::size_t first_row);
  void ShowProgress();

  const Form& form_;
  const EventLoop& loop_;
  ConsoleOutput& output_;
  bool verbose_;
  bool shows_next_download_ = false;
  std::int64_t last_progress_ = 0;  ///< monotonic milliseconds
};

}  // namespace corvane::console
