#include "desk.h"

#include "base/scoped_value.h"
#include "options.h"

namespace corvane::console {

void Operate(Desk& desk, const std::function<void()>& operation) {
  // What the schedule begins runs here too.
  const ScopedValue<bool> by_command(desk.app.flags().by_command, !desk.app.flags().automatic_run);
  const AutomaticRun automatic(desk.app.flags());
  operation();
  desk.problems += desk.app.flags().problems;
}

void OperateOn(Desk& desk, UnitResults& results, const std::vector<std::int64_t>& units,
               const std::function<void()>& operation) {
  results.Begin(units);
  {
    const auto watch = [&results](const Control& control) { results.OnChange(control); };
    const ScopedValue<std::function<void(const Control&)>> watched(desk.view.on_change, watch);
    Operate(desk, operation);
  }
  results.End();
  for (const TransferResult& result : desk.app.transfer_results()) {
    if (!result.problem.empty()) desk.output.Error(result.file + ": " + result.problem);
  }
}

int StatusOf(const Desk& desk) {
  return desk.problems == 0 && desk.dialogs.declined() == 0 ? kAllWell : kProblems;
}

int Report(const Desk& desk, const UnitResults& results) {
  const int status = results.problems() == 0 ? StatusOf(desk) : kProblems;
  PrintTable(desk, results.Table(), status);
  return status;
}

void PrintTable(const Desk& desk, const std::string& table, int status) {
  if (table.empty() || (status == kAllWell && desk.output.quiet())) return;
  desk.output.Result("\n" + table);
}

}  // namespace corvane::console
