#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "form/form.h"
#include "platform/event_loop.h"
#include "script.h"
#include "state/run_flags.h"

namespace corvane::console {

/// How a script ended.
struct ScriptResult {
  std::string error;          ///< "file:line: text" of the statement that failed; empty when all ran
  std::int64_t problems = 0;  ///< ports, units and files that ended untried or with a problem
};

/// Runs a script over a Form, one statement after the other.
class ScriptRunner {
 public:
  /// What a script can ask for beside the controls.
  struct Hooks {
    std::function<void(const std::string& text)> answer;        ///< keeps the answer for the next question
    std::function<void(const std::string& switches)> activate;  ///< runs the activation steps
    std::function<void(const std::string& text)> print;         ///< prints one line
  };
  ScriptRunner(Form& form, EventLoop& loop, RunFlags& flags, Hooks hooks)
      : form_(form), loop_(loop), flags_(flags), hooks_(std::move(hooks)) {}

  /// Runs until the end, the first error, or the close of the program. **Yields.**
  [[nodiscard]] ScriptResult Run(const Statements& script);
  /// To be called for every change of a control: a text that shows only for a moment ends `wait-for` too.
  void OnChange(const Control& control);

 private:
  void RunStatement(const Statement& statement);
  void Set(const Statement& statement);
  void SelectRows(const Statement& statement);
  void ClickMenu(const Statement& statement);
  void WaitFor(const Statement& statement);
  void Wait(std::int64_t milliseconds);
  void Show(const Control& control);
  /// Throws `RunTimeError` when a person could not use the control now.
  void RequireUsable(const Control& control) const;

  Form& form_;
  EventLoop& loop_;
  RunFlags& flags_;
  Hooks hooks_;
  const Statement* awaited_ = nullptr;  ///< the `wait-for` that runs
  std::int64_t deadline_ = 0;           ///< monotonic milliseconds
  bool seen_ = false;
};

}  // namespace corvane::console
