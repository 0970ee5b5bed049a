#include "practise_command.h"

#include <cerrno>
#include <csignal>
#include <string>
#include <vector>

#include "base/outside_text.h"
#include "desktop/posix_shell.h"
#include "desktop/practice_folder.h"
#include "desktop/terminal.h"
#include "posix/signal_watch.h"
#include "setup/practice.h"

namespace corvane::console {
namespace {

void Say(const Options& options, const std::string& text) {
  if (!options.quiet) WriteOut(kStandardOutput, text + "\n", true);
}

void Complain(const Status& status) {
  WriteOut(kStandardError, Printable("corvanectl: " + status.text()) + "\n", true);
}

/// A word as a shell takes it.
std::string ShellWord(const std::string& word) {
  constexpr const char* kPlain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789/._-+@%";
  if (word.find_first_not_of(kPlain) == word.npos) return word;
  std::string quoted = "'";
  for (const char letter : word) quoted += letter == '\'' ? std::string("'\\''") : std::string(1, letter);
  return quoted + "'";
}

std::string WhatToTry(const std::string& folder) {
  const std::string command = "\n  corvanectl --home " + Printable(ShellWord(folder)) + " ";
  return "PRACTICE: all of this is simulated. The units log a reading a minute. Raw and calibrated files are in\n" +
         Printable(folder) + "/data, archives in its folder backup. To try:\n" + command + "download" + command +
         "status" + command + "health \"Practice hill\"" + command + "get-date" + command + "units" +
         "\n\nEnd it, and all of it goes away:\n\n  corvanectl practise --end\n";
}

/// The options of another command in the practice.
Options CommandIn(const std::string& folder, CommandId command, const Options& options) {
  Options other;
  other.command = command;
  other.home = folder;
  other.quiet = options.quiet;
  other.verbose = options.verbose;
  return other;
}

int Begin(PracticeGround& ground, const Options& options, const std::function<int(const Options&)>& run) {
  std::string folder;
  if (const Status begun = BeginPractice(ground, PracticeGround::Station::StaysBehind, folder); !begun.ok()) {
    Complain(begun);
    return kNotStarted;
  }
  Say(options, "PRACTICE in " + Printable(folder));
  const int status = run(CommandIn(folder, CommandId::Download, options));
  if (status > kSignalBase) {
    static_cast<void>(ground.Remove(folder));
    return status;
  }
  if (!options.quiet) {
    Say(options, "");
    static_cast<void>(run(CommandIn(folder, CommandId::Status, options)));
    Say(options, "\n" + WhatToTry(folder));
  }
  return status;
}

int End(PracticeGround& ground, const Options& options) {
  const std::vector<std::string> folders =
      options.home.empty() ? ground.Folders() : std::vector<std::string>{options.home};
  int problems = 0;
  for (const std::string& folder : folders) {
    const Status removed = ground.Remove(folder);
    // Meanwhile somebody else has ended it.
    if (removed.code() == ENOENT && options.home.empty()) continue;
    if (removed.ok()) {
      Say(options, "The practice is over, and " + Printable(folder) + " is gone.");
    } else {
      Complain(removed);
      ++problems;
    }
  }
  if (folders.empty()) Say(options, "There is no practice.");
  return problems == 0 ? kAllWell : kProblems;
}

}  // namespace

int Practise(const Options& options, const std::function<int(const Options&)>& run) {
  // From here on a signal ends the practice as a whole; the threads that are made later leave it to the command that
  // runs.
  if (!options.end) SignalWatch::BlockEarly({SIGINT, SIGTERM, SIGHUP});
  PracticeFolder ground(PosixShell("corvane").ProgramFolder());
  return options.end ? End(ground, options) : Begin(ground, options, run);
}

}  // namespace corvane::console
