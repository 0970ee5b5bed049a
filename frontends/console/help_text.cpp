#include <algorithm>

#include "command_table.h"

namespace corvane::console {
namespace {

constexpr std::size_t kHelpColumn = 34;

/// One line of a list: what is typed, padded, and what it does.
std::string HelpLine(std::string_view typed, std::string_view meaning) {
  std::string line = "  " + std::string(typed);
  line.resize(std::max(line.size() + 1, kHelpColumn), ' ');
  return line + std::string(meaning) + "\n";
}

std::string WithArguments(std::string_view name, std::string_view arguments) {
  return std::string(name) + (arguments.empty() ? "" : " ") + std::string(arguments);
}

std::string OptionLines(unsigned scope) {
  std::string lines;
  for (const OptionRow& row : OptionRows()) {
    if (row.Fits(scope)) lines += HelpLine(WithArguments(row.name, row.value), row.help);
  }
  return lines;
}

}  // namespace

std::string HelpText(CommandId command) {
  if (const CommandRow* row = FindCommand(command)) {
    return "Usage: corvanectl [OPTION]... " + WithArguments(row->name, row->arguments) + "\n" +
           std::string(row->details) + "\n\nOptions:\n" + OptionLines(row->options);
  }
  std::string text =
      "Usage: corvanectl [--home DIR] COMMAND [ARGUMENTS]\n"
      "Collects the readings of field units without a window.\n\nCommands:\n";
  for (const CommandRow& row : CommandRows()) text += HelpLine(WithArguments(row.name, row.arguments), row.summary);
  return text + "\nOptions:\n" + OptionLines(kEverywhere) +
         "\nExit status: 0 all well; 1 the port did not open, some unit or file ended untried or with a problem, a\n"
         "question without Yes, or settings or output that could not be written; 2 wrong usage; 3 could not start;\n"
         "129, 130, 143 ended by SIGHUP, SIGINT, SIGTERM.\n"
         "corvanectl COMMAND --help says more about a command.\n";
}

}  // namespace corvane::console
