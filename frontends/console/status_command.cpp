#include "status_command.h"

#include <algorithm>
#include <utility>

#include "base/format.h"
#include "base/numbers.h"
#include "base/outside_text.h"
#include "desktop/terminal.h"
#include "health_text.h"
#include "history/status_json.h"
#include "history_reading.h"
#include "note_command.h"
#include "status_metrics.h"
#include "status_text.h"

namespace corvane::console {
namespace {

int Print(const std::string& text, int exit_status = kAllWell) {
  if (WriteOut(kStandardOutput, text, true)) return exit_status;
  WriteOut(kStandardError, "corvanectl: the standard output cannot be written\n", true);
  return exit_status == kAllWell ? static_cast<int>(kProblems) : exit_status;
}

int PrintUnknown(const std::string& why) {
  const CheckResult result = CheckUnknown(why);
  return Print(result.line, result.exit_status);
}

int Refuse(const std::string& why) {
  WriteOut(kStandardError, Printable("corvanectl: " + why) + "\n", true);
  return kNotStarted;
}

int Check(const HistoryReading& reading, const Options& options) {
  try {
    const CheckResult result = StatusCheck(reading.StatusOf(options.units));
    return Print(result.line, result.exit_status);
  } catch (const UsageError& error) {
    // A plug-in that names a unit which is gone must not look like one that found a fault.
    return PrintUnknown(error.what());
  }
}

int ShowStatus(const Options& options, const std::string& folder) {
  HistoryReading reading(folder);
  if (const Status read = reading.ReadForStatus(); !read.ok()) {
    return options.check ? PrintUnknown(read.text()) : Refuse(read.text());
  }
  if (options.check) return Check(reading, options);
  const NetworkStatus status = reading.StatusOf(options.units);
  if (options.json) return Print(StatusJson(status));
  return Print(options.metrics ? StatusMetrics(status) : StatusTable(status));
}

int ShowHealth(const Options& options, const std::string& folder) {
  HistoryReading reading(folder);
  if (const Status read = reading.ReadForStatus(); !read.ok()) return Refuse(read.text());
  const std::int64_t key = reading.FindUnit(options.arguments[0]).key;
  HistoryContents contents;
  if (const Status read = reading.ReadUnit(key, contents); !read.ok()) return Refuse(read.text());
  const NetworkStatus network = reading.StatusOf({});
  const auto unit = std::find_if(network.units.begin(), network.units.end(),
                                 [key](const UnitStatus& each) { return each.key == key; });
  return Print(HealthText(*unit, HealthOf(*unit, network, contents)));
}

int LeaveNote(const Options& options, const std::string& folder) {
  const Status noted = WriteNote(options, folder);
  return noted.ok() ? static_cast<int>(kAllWell) : Refuse(noted.text());
}

}  // namespace

int RunHistoryCommand(const Options& options, const std::string& folder) {
  try {
    switch (options.command) {
      case CommandId::Health:
        return ShowHealth(options, folder);
      case CommandId::Note:
        return LeaveNote(options, folder);
      default:
        return ShowStatus(options, folder);
    }
  } catch (const UsageError& error) {
    WriteOut(kStandardError, Printable(std::string("corvanectl: ") + error.what()) + "\n", true);
    return kUsage;
  }
}

}  // namespace corvane::console
