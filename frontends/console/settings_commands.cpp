#include "settings_commands.h"

#include <optional>

#include "app/setting_keys.h"
#include "base/outside_text.h"
#include "base/status.h"
#include "desktop/terminal.h"
#include "text_table.h"

namespace corvane::console {
namespace {

std::string Shown(const SettingKeys::Entry& entry) {
  if (!entry.password) return entry.value;
  return entry.value.empty() ? "(none)" : "(a password, not shown)";
}

std::string DoneText(const SettingKeys::Entry& before, const SettingKeys::Entry& after) {
  if (after.password)
    return after.key + (after.value.empty() ? ": the password is taken away" : ": the password is set");
  const std::string now = after.key + " is " + (after.value.empty() ? "empty" : after.value);
  if (before.value == after.value) return now + " already";
  return now + " now, was " + (before.value.empty() ? "empty" : before.value);
}

/// What came of a value that was entered, a line each.
struct Entered {
  std::string done;
  std::string odd;
};

Entered Enter(SettingKeys& keys, const std::string& key, const std::string& value) {
  try {
    const SettingKeys::Entry before = keys.Find(key);
    const std::string odd = keys.Enter(key, value);
    return {DoneText(before, keys.Find(key)), odd.empty() ? "" : before.key + ": " + odd};
  } catch (const RunTimeError& error) {
    throw UsageError(error.what());
  }
}

}  // namespace

bool ReadPassword(Options& options) {
  if (options.command != CommandId::Set || options.arguments.size() != 1) return true;
  const std::string& key = options.arguments[0];
  const std::optional<std::string> first = ReadSecret(key + ", empty for none: ");
  if (!first) {
    WriteOut(kStandardError, "corvanectl: no password was given; nothing is changed\n", true);
    return false;
  }
  if (IsTerminal(kStandardInput) && ReadSecret("Once more: ") != first) {
    WriteOut(kStandardError, "corvanectl: that was not the same twice; nothing is changed\n", true);
    return false;
  }
  options.arguments.push_back(*first);
  return true;
}

int SetSettings(Desk& desk, const Options& options) {
  const auto& arguments = options.arguments;
  std::vector<Entered> entered;
  for (std::size_t i = 0; i + 1 < arguments.size(); i += 2) {
    entered.push_back(Enter(desk.app.keys(), arguments[i], arguments[i + 1]));
  }
  // Told at the end: where one value is not taken, none is.
  for (const Entered& each : entered) {
    desk.output.Line(each.done);
    if (!each.odd.empty()) desk.output.Error(each.odd);
  }
  return StatusOf(desk);
}

int GetSettings(Desk& desk, const Options& options) {
  if (options.arguments.empty()) {
    std::vector<std::vector<std::string>> rows;
    for (const SettingKeys::Entry& entry : desk.app.keys().All()) rows.push_back({entry.key, Shown(entry)});
    desk.output.Result(FormatTable({{"Key"}, {"Value"}}, rows));
    return kAllWell;
  }
  try {
    desk.output.Result(Printable(Shown(desk.app.keys().Find(options.arguments[0]))) + "\n");
  } catch (const RunTimeError& error) {
    throw UsageError(error.what());
  }
  return kAllWell;
}

}  // namespace corvane::console
