// The commands and options of corvanectl: what may be typed. Parser, help and completion read these rows.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "options.h"

namespace corvane::console {

/// Which commands an option belongs to.
enum OptionScope : unsigned {
  kEverywhere = 0,
  kUnitOption = 1,
  kDownloadOption = 2,
  kConvertOption = 4,
  kRunOption = 8,
  kStatusOption = 16,
  kNoteOption = 32,
  kRepairOption = 64,
  kKeepOption = 4096,
  kPractiseOption = 128,
  kStationsOption = 256,
};

struct CommandRow {
  CommandId id;
  std::string_view name;
  std::string_view arguments;
  std::string_view summary;
  std::string_view details;
  unsigned options;
  std::size_t least;  ///< arguments
  std::size_t most;
};

struct OptionRow {
  std::string_view name;
  std::string_view value;  ///< what the value is called, empty for a switch
  std::string_view help;
  unsigned scope;
  void (*take)(Options& options, const std::string& value);

  /// Whether it may stand behind a command with these `options`.
  [[nodiscard]] constexpr bool Fits(unsigned options) const { return scope == kEverywhere || (options & scope) != 0; }
};

[[nodiscard]] std::span<const CommandRow> CommandRows();
[[nodiscard]] std::span<const OptionRow> OptionRows();
/// All names of commands, and of options that may stand behind a command with these `options`.
[[nodiscard]] std::vector<std::string> CommandNames();
[[nodiscard]] std::vector<std::string> OptionNames(unsigned options);
/// The row of a name or of a command; nullptr when there is none.
[[nodiscard]] const CommandRow* FindCommand(std::string_view name);
[[nodiscard]] const CommandRow* FindCommand(CommandId command);
[[nodiscard]] const OptionRow* FindOption(std::string_view name);

}  // namespace corvane::console
