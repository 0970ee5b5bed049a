#include "options.h"

#include <algorithm>
#include <string_view>

#include "base/format.h"
#include "base/numbers.h"
#include "command_table.h"
#include "link/exchange.h"
#include "link/schedule.h"

namespace corvane::console {
namespace {

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
      } else if (!options_ended && word.starts_with('-') && word != "-") {
        TakeOption(word == "-h" ? "--help" : word);
      } else if (row_ == nullptr) {
        TakeCommand(word);
      } else {
        options_.arguments.push_back(word);
      }
    }
    if (!options_.help && !options_.version) Check();
    return std::move(options_);
  }

 private:
  void TakeCommand(const std::string& word) {
    row_ = FindCommand(word);
    if (row_ == nullptr) throw UsageError("there is no command " + Quoted(word));
    options_.command = row_->id;
  }

  void TakeOption(const std::string& word) {
    const std::size_t equals = std::min(word.find('='), word.size());
    const bool attached = equals < word.size();
    const OptionRow* const found = FindOption(word.substr(0, equals));
    if (found == nullptr) throw UsageError("there is no option " + Quoted(word.substr(0, equals)));
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
    if (row_->id == CommandId::SetLogPeriod) CheckLogPeriod(arguments[0]);
    if (row_->id == CommandId::TestPort || row_->id == CommandId::FindPort) CheckPort(arguments);
    if (row_->options != kUnitOption || arguments.empty()) return;
    const auto is_control = [](unsigned char c) { return c < 32 || c == 127; };
    if (std::any_of(arguments[0].begin(), arguments[0].end(), is_control)) {
      throw UsageError("a text for units must be one line without control characters");
    }
  }

  static void CheckLogPeriod(const std::string& text) {
    if (!ParseTimeOfDay(text) || !LogPeriodMinutes(text)) {
      throw UsageError(Quoted(text) + " is no log period from 00:01 to 04:15");
    }
  }

  static void CheckPort(const std::vector<std::string>& arguments) {
    if (arguments.empty() || arguments[0] == "radio" || arguments[0] == "hand-held") return;
    throw UsageError(Quoted(arguments[0]) + " is no port: say radio or hand-held");
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

std::string CommandName(CommandId command) {
  const CommandRow* row = FindCommand(command);
  return row == nullptr ? "" : std::string(row->name);
}

}  // namespace corvane::console
