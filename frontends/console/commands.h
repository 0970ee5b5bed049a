#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "app/application.h"
#include "console_dialogs.h"
#include "console_output.h"
#include "console_view.h"
#include "options.h"
#include "unit_results.h"

namespace corvane::console {

/// Runs the commands of the console on an application whose window was created.
class ConsoleCommands {
 public:
  /// All must outlive this object.
  ConsoleCommands(Application& app, EventLoop& loop, ConsoleView& view, ConsoleDialogs& dialogs, ConsoleOutput& output)
      : app_(app), loop_(loop), view_(view), dialogs_(dialogs), output_(output) {}

  /// Runs the command of `options` and returns the exit status. Throws `UsageError` for names that do not exist.
  /// **Yields.**
  [[nodiscard]] int Run(const Options& options);

 private:
  [[nodiscard]] int Download(const Options& options);
  [[nodiscard]] int Convert(const Options& options);
  [[nodiscard]] int Transfer(const Options& options);
  [[nodiscard]] int UnitCommand(const Options& options);
  [[nodiscard]] int TestPort(const Options& options);
  [[nodiscard]] int FindPort(const Options& options);
  [[nodiscard]] int KeepSchedule(const Options& options);
  [[nodiscard]] int ListUnits();
  [[nodiscard]] int RunScript(const Options& options);

  /// Runs one operation over `units` as an automatic run and collects what became of them.
  void Operate(UnitResults& results, const std::vector<std::int64_t>& units, const std::function<void()>& operation);
  void DownloadUnit(UnitResults& results, std::int64_t unit);
  void ConvertUnit(UnitResults& results, std::int64_t unit);
  void ConvertFile(UnitResults& results, const std::string& file);
  [[nodiscard]] int Report(const UnitResults& results);
  [[nodiscard]] int OperationStatus() const;
  /// The units that `send`, `fetch` or `backup` is about when it names none.
  [[nodiscard]] std::vector<std::int64_t> TransferUnits(CommandId command) const;
  void RunTransfer(const std::function<void()>& operation);
  void TransferAll(CommandId command);
  void TransferOne(CommandId command, std::int64_t unit);
  /// Positions of the units with these names or IDs, in the order given.
  [[nodiscard]] std::vector<std::int64_t> FindUnits(const std::vector<std::string>& names) const;
  [[nodiscard]] std::int64_t FindUnit(const std::string& name) const;
  /// Positions of all active units of a connection, or of any (-1).
  [[nodiscard]] std::vector<std::int64_t> ActiveUnits(std::int32_t get_from) const;
  void EnterCommandText(const Options& options);
  [[nodiscard]] std::string PortText(int index) const;

  Application& app_;
  EventLoop& loop_;
  ConsoleView& view_;
  ConsoleDialogs& dialogs_;
  ConsoleOutput& output_;
  std::int64_t problems_ = 0;  ///< of all operations of the command
};

}  // namespace corvane::console
