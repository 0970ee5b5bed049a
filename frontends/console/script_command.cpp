#include "script_command.h"

#include <cstdint>
#include <string>

#include "base/outside_text.h"
#include "base/scoped_value.h"
#include "base/status.h"
#include "options.h"
#include "script.h"
#include "script_runner.h"

namespace corvane::console {
namespace {

Statements ReadScript(Desk& desk, const std::string& file) {
  constexpr std::int64_t kLongestScript = 64LL * 1024 * 1024;
  if (file != "-") return LoadScript(file, desk.app.form());
  std::string text;
  const Status read = desk.dialogs.ReadAll(desk.loop, desk.app.flags().closing, kLongestScript, text);
  if (!read.ok()) throw UsageError("the script of the standard input cannot be read: " + read.text());
  return ParseScript("standard input", text, desk.app.form());
}

}  // namespace

int RunScript(Desk& desk, const Options& options) {
  const Statements script = ReadScript(desk, options.arguments[0]);
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
