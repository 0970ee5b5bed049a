#include "options.h"

#include <algorithm>
#include <string_view>

#include "app/setting_keys.h"
#include "base/format.h"
#include "base/near_words.h"
#include "base/numbers.h"
#include "base/text.h"
#include "command_table.h"
#include "link/exchange.h"
#include "link/schedule.h"
#include "state/port_devices.h"

namespace corvane::console {
namespace {

constexpr std::int64_t kMostGenerations = 1000;

std::string Quoted(std::string_view text) {
  return "\"" + std::string(text) + "\"";
}

/// Takes the words apart; what belongs together is checked later.
class Parser {
 public:
  explicit Parser(const std::vector<std::string>& words) : words_(words) {}

  Options Parse() {
    bool options_ended = false;
    for (; next_ < words_.size(); ++next_) {
      const std::string& word = words_[next_];
      if (!options_ended && word == "--") {
        options_ended = true;
      } else if (!options_ended && IsOption(word)) {
        TakeOption(word == "-h" ? "--help" : word);
      } else if (row_ == nullptr) {
        TakeCommand(word);
      } else {
        options_.arguments.push_back(word);
      }
    }
    if (options_.command == CommandId::Help && !options_.help && !options_.version) {
      TakeHelp();
    } else if (!options_.help && !options_.version) {
      Check();
    }
    return std::move(options_);
  }

 private:
  /// A number below zero is a value.
  static bool IsOption(std::string_view word) { return word.size() > 1 && word.front() == '-' && !ParseNumber(word); }

  void TakeCommand(const std::string& word) {
    row_ = FindCommand(word);
    if (row_ == nullptr) throw UsageError("there is no command " + Quoted(word) + DidYouMean(word, CommandNames()));
    options_.command = row_->id;
  }

  void TakeOption(const std::string& word) {
    const std::size_t equals = std::min(word.find('='), word.size());
    const bool attached = equals < word.size();
    const OptionRow* const found = FindOption(word.substr(0, equals));
    if (found == nullptr) {
      const std::string name = word.substr(0, equals);
      throw UsageError("there is no option " + Quoted(name) + DidYouMean(name, OptionNames(Known())));
    }
    const OptionRow& row = *found;
    if (attached && row.value.empty()) throw UsageError(std::string(row.name) + " takes no value");
    std::string value;
    if (attached) {
      value = word.substr(equals + 1);
    } else if (!row.value.empty()) {
      if (next_ + 1 == words_.size()) throw UsageError(std::string(row.name) + " needs a value");
      value = words_[++next_];
    }
    if (!row.value.empty() && value.empty()) throw UsageError(std::string(row.name) + " needs a value");
    row.take(options_, value);
    if (row.scope != kEverywhere) scoped_.push_back(&row);
  }

  /// The options that the command takes; before it is known, all.
  [[nodiscard]] unsigned Known() const { return row_ == nullptr ? ~0U : row_->options; }

  /// `help COMMAND` is `COMMAND --help`.
  void TakeHelp() {
    Check();
    options_.help = true;
    options_.command = CommandId::None;
    if (!options_.arguments.empty()) TakeCommand(options_.arguments[0]);
  }

  void Check() const {
    if (row_ == nullptr) throw UsageError("no command is given");
    const std::string name(row_->name);
    for (const OptionRow* option : scoped_) {
      if (!option->Fits(row_->options)) throw UsageError(name + " takes no option " + std::string(option->name));
    }
    const std::size_t count = options_.arguments.size();
    if (count < row_->least) throw UsageError(name + " needs " + std::string(row_->arguments));
    if (count > row_->most) throw UsageError(name + ": " + Quoted(options_.arguments[row_->most]) + " is too much");
    if (options_.quiet && options_.verbose) throw UsageError("--quiet and --verbose exclude each other");
    CheckValues();
  }

  void CheckValues() const {
    const auto& arguments = options_.arguments;
    if (options_.hand_held && !arguments.empty()) throw UsageError("--hand-held takes all such units: name none");
    if (options_.files && arguments.empty()) throw UsageError("--file needs the names of raw files");
    if (!options_.interval.empty() && !AutomaticInterval(options_.interval)) {
      throw UsageError("--interval: " + Quoted(options_.interval) + " is no interval such as 3:00");
    }
    if (!options_.since.empty() && !ParseDate(options_.since)) {
      throw UsageError("--since: " + Quoted(options_.since) + " is no date such as 2026-03-31");
    }
    if (!options_.log_size.empty() && ParseNumber(options_.log_size).value_or(-1) < 0) {
      throw UsageError("--log-size: " + Quoted(options_.log_size) + " is no number of megabytes");
    }
    if (options_.json + options_.check + options_.metrics > 1) {
      throw UsageError("--json, --check and --metrics exclude each other");
    }
    if (!options_.until.empty() && !ParseDate(options_.until)) {
      throw UsageError("--until: " + Quoted(options_.until) + " is no date such as 2026-12-31");
    }
    if (!options_.generations.empty() && !ParseInteger(options_.generations, 0, kMostGenerations)) {
      throw UsageError("--generations: " + Quoted(options_.generations) + " is no whole number from 0 to " +
                       std::to_string(kMostGenerations));
    }
    const bool takes_archive = row_->id == CommandId::Keep || row_->id == CommandId::Restore;
    if (takes_archive && !arguments[0].ends_with(".zip")) {
      throw UsageError(Quoted(arguments[0]) + " is no archive: name a file that ends in .zip");
    }
    if (row_->id == CommandId::Practise && !options_.end && !options_.home.empty()) {
      throw UsageError("practise has a folder of its own: --home goes with --end alone");
    }
    if (row_->id == CommandId::Set) CheckPairs(arguments);
    if (row_->id == CommandId::Ports) CheckPorts(arguments);
    if (row_->id == CommandId::Completion && arguments[0] != "bash" && arguments[0] != "zsh") {
      throw UsageError(Quoted(arguments[0]) + " is no shell: say bash or zsh" +
                       DidYouMean(arguments[0], {"bash", "zsh"}));
    }
    if (row_->id == CommandId::SetLogPeriod) CheckLogPeriod(arguments[0]);
    if (row_->id == CommandId::Stations) CheckStations(options_);
    if (row_->id == CommandId::TestPort || row_->id == CommandId::FindPort) CheckPort(arguments);
    if (row_->options != kUnitOption || arguments.empty()) return;
    const auto is_control = [](unsigned char c) { return c < 32 || c == 127; };
    if (std::any_of(arguments[0].begin(), arguments[0].end(), is_control)) {
      throw UsageError("a text for units must be one line without control characters");
    }
  }

  static void CheckStations(const Options& options) {
    const std::string& action = options.arguments[0];
    if (action != "export" && action != "import") {
      throw UsageError(Quoted(action) + " is neither export nor import" + DidYouMean(action, {"export", "import"}));
    }
    if (action == "export" && (options.dry_run || options.deletes)) {
      throw UsageError("stations export takes neither --dry-run nor --delete");
    }
  }

  static void CheckLogPeriod(const std::string& text) {
    if (!ParseTimeOfDay(text) || !LogPeriodMinutes(text)) {
      throw UsageError(Quoted(text) + " is no log period from 00:01 to 04:15");
    }
  }

  static void CheckPairs(const std::vector<std::string>& arguments) {
    for (std::size_t i = 0; i < arguments.size(); i += 2) {
      if (!SettingKeys::NamesPassword(arguments[i])) continue;
      if (arguments.size() == 1) return;
      throw UsageError("a password is no argument, where others can read it: corvanectl set " + arguments[i] +
                       " alone asks for it, or reads it from a pipe");
    }
    if (arguments.size() % 2 != 0) throw UsageError("set: " + arguments.back() + " needs a value");
  }

  static void CheckPorts(const std::vector<std::string>& arguments) {
    if (arguments.empty()) return;
    if (arguments[0] != "assign") {
      throw UsageError("ports: there is no " + Quoted(arguments[0]) + "; say ports, or ports assign N DEVICE");
    }
    if (arguments.size() != 3) throw UsageError("ports assign needs the number of a port and a device, or -");
    if (!PortNumber(arguments[1])) throw UsageError(Quoted(arguments[1]) + " is no port number from 1 to 50");
  }

  static void CheckPort(const std::vector<std::string>& arguments) {
    if (arguments.empty() || arguments[0] == "radio" || arguments[0] == "hand-held") return;
    throw UsageError(Quoted(arguments[0]) + " is no port: say radio or hand-held" +
                     DidYouMean(arguments[0], {"radio", "hand-held"}));
  }

  const std::vector<std::string>& words_;
  std::size_t next_ = 0;
  const CommandRow* row_ = nullptr;
  std::vector<const OptionRow*> scoped_;
  Options options_;
};

}  // namespace

Options ParseOptions(const std::vector<std::string>& words) {
  return Parser(words).Parse();
}

std::optional<int> PortNumber(std::string_view text) {
  if (StartsWithNoCase(text, "COM")) text.remove_prefix(3);
  const auto number = ParseInteger(text, 1, PortDevices::kLastNumber);
  return number ? std::optional<int>(static_cast<int>(*number)) : std::nullopt;
}

bool OnlyReads(const Options& options) {
  switch (options.command) {
    case CommandId::Units:
    case CommandId::Page:
    case CommandId::Get:
    case CommandId::Keep:
    // It has taken and given back the lock when this is asked.
    case CommandId::Restore:
      return true;
    case CommandId::Ports:
      return options.arguments.empty();
    case CommandId::Stations:
      return options.dry_run || options.arguments[0] == "export";
    default:
      return false;
  }
}

std::string CommandName(CommandId command) {
  const CommandRow* row = FindCommand(command);
  return row == nullptr ? "" : std::string(row->name);
}

}  // namespace corvane::console
