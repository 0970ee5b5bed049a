#pragma once

#include <functional>

#include <QString>

#include "app/application.h"
#include "setup/setup_plan.h"
#include "window/assistant/sentences.h"

namespace corvane::window::assistant {

/// What the pages of the assistant share: the plan that they fill, and how they try a part of it.
struct Desk {
  Application& app;
  EventLoop& loop;
  const Sentences& say;
  SetupPlan plan;
  SetupTried tried;
  bool trying = false;  ///< a try runs
  /// Runs a try from the loop: `show` gets "Trying..." and then the answer. Nothing happens while another one runs.
  std::function<void(std::function<SetupAnswer()> attempt, std::function<void(const QString& text)> show)> run_try;
};

/// Forgets what was tried with values that the plan no longer holds.
void ForgetOutdated(SetupTried& tried, const SetupPlan& before, const SetupPlan& now);

}  // namespace corvane::window::assistant
