#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "app/application.h"
#include "console_dialogs.h"
#include "console_output.h"
#include "console_view.h"
#include "unit_results.h"

namespace corvane::console {

/// What a command works with, and what its operations came to. All must outlive the command.
struct Desk {
  Application& app;  ///< its window was created
  EventLoop& loop;
  ConsoleView& view;
  ConsoleDialogs& dialogs;
  ConsoleOutput& output;
  bool saves = true;          ///< false: the command has changed nothing, and the settings stay as they are
  std::int64_t problems = 0;  ///< of all operations of the command
};

/// Runs one operation as an automatic run and counts its problems. **Yields.**
void Operate(Desk& desk, const std::function<void()>& operation);
/// The same for an operation over `units`; collects what became of them.
void OperateOn(Desk& desk, UnitResults& results, const std::vector<std::int64_t>& units,
               const std::function<void()>& operation);
/// Whether all operations went well and every question was answered with Yes.
[[nodiscard]] int StatusOf(const Desk& desk);
/// Prints the table of results, where there is one and somebody wants to see it; returns the exit status.
[[nodiscard]] int Report(const Desk& desk, const UnitResults& results);
void PrintTable(const Desk& desk, const std::string& table, int status);

}  // namespace corvane::console
