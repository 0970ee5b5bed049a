#include "settings_commands.h"

#include <optional>

#include "app/setting_keys.h"
#include "base/outside_text.h"
#include "base/status.h"
#include "desktop/terminal.h"
#include "full_path.h"
#include "text_table.h"

namespace corvane::console {
namespace {

std::string Shown(const SettingKeys::Entry& entry) {
  if (!entry.password) return entry.value;
  return entry.value.empty() ? "(none)" : "(a password, not shown)";
}

std::string InBrackets(const std::string& words) {
  return words.empty() ? words : " (" + words + ")";
}

std::string DoneText(const SettingKeys::Entry& before, const SettingKeys::Entry& after) {
  if (after.password)
    return after.key + (after.value.empty() ? ": the password is taken away" : ": the password is set");
  const std::string now = after.key + " is " + (after.value.empty() ? "empty" : after.value);
  if (before.value == after.value) return now + " already" + InBrackets(after.words);
  return now + " now" + InBrackets(after.words) + ", was " + (before.value.empty() ? "empty" : before.value) +
         InBrackets(before.words);
}

/// What came of a value that was entered, a line each.
struct Entered {
  std::string done;
  std::string odd;
};

Entered Enter(Application& app, const std::string& key, const std::string& value) {
  SettingKeys& keys = app.keys();
  try {
    const SettingKeys::Entry before = keys.Find(key);
    const std::string odd = keys.Enter(key, before.path ? TypedPath(app.app(), value) : value);
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
    entered.push_back(Enter(desk.app, arguments[i], arguments[i + 1]));
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
    for (const SettingKeys::Entry& entry : desk.app.keys().All()) {
      rows.push_back({entry.key, Shown(entry), entry.words});
    }
    desk.output.Result(FormatTable({{"Key"}, {"Value"}, {"In words"}}, rows));
    return kAllWell;
  }
  try {
    const SettingKeys::Entry entry = desk.app.keys().Find(options.arguments[0]);
    // A script gets the value alone.
    const std::string words = IsTerminal(kStandardOutput) ? InBrackets(entry.words) : "";
    desk.output.Result(Printable(Shown(entry)) + words + "\n");
  } catch (const RunTimeError& error) {
    throw UsageError(error.what());
  }
  return kAllWell;
}

}  // namespace corvane::console
