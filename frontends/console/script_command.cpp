#include "script_command.h"

#include "base/outside_text.h"
#include "base/scoped_value.h"
#include "script.h"
#include "script_runner.h"

namespace corvane::console {

int RunScript(Desk& desk, const Options& options) {
  const Statements script = LoadScript(options.arguments[0], desk.app.form());
  ScriptRunner runner(desk.app.form(), desk.loop, desk.app.flags(),
                      {[&desk](const std::string& text) { desk.dialogs.QueueAnswer(text); },
                       [&desk](const std::string& switches) { desk.app.life().OnWindowActivate(switches); },
                       [&desk](const std::string& text) { desk.output.Result(Printable(text) + "\n"); }});
  const auto watch = [&runner](const Control& control) { runner.OnChange(control); };
  const ScopedValue<std::function<void(const Control&)>> watched(desk.view.on_change, watch);
  const ScriptResult result = runner.Run(script);
  if (!result.error.empty()) desk.output.Error("corvanectl: " + result.error);
  return result.error.empty() && result.problems == 0 ? kAllWell : kProblems;
}

}  // namespace corvane::console
