#include "keep_command.h"

#include <atomic>
#include <cerrno>
#include <fstream>
#include <functional>
#include <iterator>

#include "app/settings_tables.h"
#include "base/files.h"
#include "base/format.h"
#include "base/numbers.h"
#include "base/outside_text.h"
#include "base/paths.h"
#include "base/status.h"
#include "base/text.h"
#include "desktop/application_folder.h"
#include "desktop/folder_holder.h"
#include "desktop/posix_shell.h"
#include "desktop/terminal.h"
#include "full_path.h"
#include "history/status_texts.h"
#include "setup/keeping.h"
#include "setup/restoring.h"
#include "sqlite/sqlite_history_store.h"
#include "state/settings_file.h"
#include "text_table.h"
#include "zip/libzip_archive.h"

namespace corvane::console {
namespace {

constexpr int kUsualGenerations = 3;

std::string HostName() {
  std::string name;
  std::getline(std::ifstream("/proc/sys/kernel/hostname"), name);
  return name;
}

void Say(bool error, const std::string& text) {
  WriteOut(error ? kStandardError : kStandardOutput, Printable(text) + "\n", true);
}

int Refuse(const std::string& why, ExitStatus status) {
  Say(true, "corvanectl: " + why);
  return status;
}

/// What a restore came to.
void Tell(const Restoring& restoring, const Options& options, const std::string& folder, const std::string& before) {
  const KeptManifest& manifest = restoring.manifest();
  if (!before.empty()) Say(false, "What was replaced is in " + before);
  if (!options.quiet) {
    Say(false, "Restored into " + folder + ": " + CountText(std::ssize(manifest.entries), "file", "files") +
                   ", kept on " + manifest.host + " at " + manifest.made);
  }
  if (!restoring.changed().empty()) {
    std::vector<std::vector<std::string>> rows;
    for (const Restoring::Changed& changed : restoring.changed()) {
      rows.push_back({changed.key, changed.before, changed.now});
    }
    WriteOut(kStandardOutput, "\nThese lie elsewhere now:\n" + FormatTable({{"Key"}, {"Was"}, {"Is"}}, rows), true);
  }
  if (manifest.passwords) return;
  Say(true, "The archive holds no passwords. Enter those that are used: corvanectl set FTPPassword, set Password");
}

/// Why the program of the alerts cannot be run here; empty when nothing is known against it.
std::string ProblemOfCommand(const std::string& command) {
  const std::string program = command.substr(0, command.find_first_of(" ;|&<>"));
  return program.starts_with('/') && !ExamineFile(program) ? "there is no " + program : "";
}

}  // namespace

int Keep(Desk& desk, const Options& options) {
  Application& app = desk.app;
  if (!ExamineFile(app.app().AppPath(kSettingsFile))) {
    return Refuse("there is nothing to keep: " + app.app().Folder() + " has no settings yet", kNotStarted);
  }
  const KeptSettings settings = SettingsToKeep(app.app());
  std::atomic<bool> cancelled = false;
  const auto is_cancelled = [&cancelled] { return cancelled.load(); };
  const auto copy_history = [&](const std::string& from, const std::string& to) {
    SqliteHistoryStore store;
    const Status opened = store.OpenToRead(from);
    return opened.ok() ? store.CopyTo(to, is_cancelled) : opened;
  };
  const auto aside = [&](const std::function<void()>& work) {
    desk.loop.Aside(work, [&] { cancelled = app.flags().closing; });
  };
  LibzipArchive archive(is_cancelled);
  Keeping keeping(
      {app.form(), app.registry(), app.app(), app.names(), settings, archive, copy_history, aside, is_cancelled});
  KeepingOrder order;
  order.archive = FullPath(options.arguments[0]);
  order.data = options.with_data;
  order.passwords = !options.without_passwords;
  order.generations = static_cast<int>(ParseInteger(options.generations, 0, INT32_MAX).value_or(kUsualGenerations));
  order.host = HostName();
  order.made = FormatDate(desk.loop.Now(), "yyyy-mm-dd HH:MM");
  try {
    const Kept kept = keeping.Keep(order);
    for (const std::string& left_out : kept.left_out) desk.output.Error("Not kept: " + left_out);
    desk.output.Line(order.archive + ": " + CountText(kept.files, "file", "files") + ", " + FormatSize(kept.bytes));
  } catch (const RunTimeError& error) {
    desk.output.Error(std::string("corvanectl: nothing was kept: ") + error.what());
    return kProblems;
  }
  if (order.passwords)
    desk.output.Line("It holds the passwords: nobody else may read it. Keep it where that stays so.");
  if (!order.passwords) desk.output.Line("The passwords are left out. AlertCommand is kept as it stands.");
  if (ExamineFile(app.app().AppPath("corvane.ini.recovery"))) {
    desk.output.Error("What was entered and not saved yet is not in it: keep once more when the program has ended.");
  }
  return kAllWell;
}

int RestoreFolder(const Options& options, const std::string& folder) {
  PosixShell shell("corvane", folder);
  if (const Status prepared = PrepareApplicationFolder(folder); !prepared.ok()) {
    return Refuse(prepared.text(), kNotStarted);
  }
  if (const Status locked = shell.TakeInstanceLock(folder); !locked.ok()) {
    const std::string holder = HolderOfFolder(folder);
    return Refuse(locked.code() == EWOULDBLOCK ? (holder.empty() ? shell.ProgramName() : holder) + " is running in " +
                                                     folder + ": end it first; nothing was restored"
                                               : locked.text(),
                  kNotStarted);
  }
  try {
    std::string before;
    Require(FinishRestore(folder, before));
    const KeptSettings settings = SettingsToKeep(AppInfo(folder));
    LibzipArchive archive;
    Restoring restoring(folder, settings, archive);
    restoring.Examine(FullPath(options.arguments[0]));
    before = restoring.PutIn();
    Tell(restoring, options, folder, before);
  } catch (const RunTimeError& error) {
    return Refuse(error.what(), kProblems);
  }
  return kAllWell;
}

int TellWhatIsMissing(Desk& desk, const Options& /*options*/) {
  Application& app = desk.app;
  std::vector<std::vector<std::string>> rows;
  for (const SettingKeys::Problem& problem : app.keys().MissingPaths()) {
    rows.push_back({problem.key, problem.text, "corvanectl set " + problem.key + " PATH"});
  }
  for (const char* const key : {"Port", "PortHandHeld"}) {
    const auto number = ParseInteger(app.keys().Find(key).value, 1, PortDevices::kLastNumber);
    if (!number) continue;
    const PortChoice port = app.ports().Look(static_cast<int>(*number));
    if (port.problem.empty()) continue;
    rows.push_back(
        {key, port.problem, "corvanectl ports; corvanectl ports assign " + std::to_string(*number) + " DEVICE"});
  }
  const std::string problem = ProblemOfCommand(app.keys().Find("AlertCommand").value);
  if (!problem.empty()) rows.push_back({"AlertCommand", problem, "corvanectl set AlertCommand COMMAND"});
  if (rows.empty()) {
    desk.output.Line("Everything that the settings name is here.");
  } else {
    desk.output.Result("\nThis is not on this computer:\n" +
                       FormatTable({{"Key"}, {"What is wrong"}, {"Mend it by"}}, rows));
  }
  return kAllWell;
}

}  // namespace corvane::console
