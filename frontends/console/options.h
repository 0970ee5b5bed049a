// The command line of corvanectl.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::console {

/// How the program ends; a command other than `run` that a signal ended returns 128 and the signal's number.
enum ExitStatus : int { kAllWell = 0, kProblems = 1, kUsage = 2, kNotStarted = 3, kSignalBase = 128 };

/// Something on the command line or in a script is not as it should be; the text says what.
class UsageError : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

enum class CommandId {
  None,
  Download,
  Convert,
  Send,
  Fetch,
  Backup,
  Repair,
  GetDate,
  SetDate,
  SetLogPeriod,
  SetMode,
  SetDelays,
  ReadMemory,
  TestPort,
  FindPort,
  Run,
  Recover,
  Units,
  Status,
  Health,
  Note,
  Page,
  Script,
  Practise,
  Setup,
  Set,
  Get,
  Ports,
  Completion,
  Help,
  Keep,
  Restore,
  Stations,
};

/// What was asked for.
struct Options {
  CommandId command = CommandId::None;
  std::vector<std::string> arguments;  ///< of the command, its options taken out
  std::vector<std::string> units;      ///< --unit
  std::string home;                    ///< --home as given; empty when not given
  std::string since;                   ///< --since; empty when not given
  std::string interval;                ///< --interval; empty when not given
  std::string log_size;                ///< --log-size; empty when not given
  std::string generations;             ///< --generations; empty when not given
  std::string until;                   ///< --until; empty when not given
  bool automatic = false;              ///< --automatic
  bool files = false;                  ///< --file: the arguments are raw files
  bool hand_held = false;
  bool yes = false;
  bool go_on = false;              ///< --go-on
  bool recover = false;            ///< --recover
  bool with_data = false;          ///< --with-data
  bool without_passwords = false;  ///< --without-passwords
  bool json = false;
  bool check = false;
  bool end = false;      ///< --end
  bool dry_run = false;  ///< --dry-run
  bool deletes = false;  ///< --delete
  bool metrics = false;
  bool quiet = false;
  bool verbose = false;
  bool help = false;
  bool version = false;
};

/// Reads the words behind the program's name; throws `UsageError`.
[[nodiscard]] Options ParseOptions(const std::vector<std::string>& words);
/// The help of one command, or of the program for `None`.
[[nodiscard]] std::string HelpText(CommandId command);
/// The number of "5" or "COM5"; none when it is no port number.
[[nodiscard]] std::optional<int> PortNumber(std::string_view text);
/// The name of a command as it is typed.
[[nodiscard]] std::string CommandName(CommandId command);
/// True for what only reads the application folder: it takes no lock and saves nothing.
[[nodiscard]] bool OnlyReads(const Options& options);

/// True for commands that work on the history alone, beside whatever program runs: they need no settings either.
[[nodiscard]] constexpr bool NeedsHistoryOnly(CommandId command) {
  return command == CommandId::Status || command == CommandId::Health || command == CommandId::Note;
}

}  // namespace corvane::console
