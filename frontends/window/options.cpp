#include "window/options.h"

#include <cstddef>

namespace corvane::window {
namespace {

constexpr std::string_view kHomeOption = "--home";

}  // namespace

Options ParseOptions(const std::vector<std::string>& arguments) {
  Options options;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    if (argument == kHomeOption) {
      if (++i == arguments.size() || arguments[i].empty()) throw UsageError("--home needs a folder");
      options.home = arguments[i];
    } else if (argument.starts_with(std::string(kHomeOption) + "=")) {
      options.home = argument.substr(kHomeOption.size() + 1);
      if (options.home.empty()) throw UsageError("--home needs a folder");
    } else if (argument == "--language-template") {
      options.language_template = true;
    } else if (argument == "--practise") {
      options.practise = true;
    } else if (argument.starts_with("-")) {
      throw UsageError("there is no option " + argument);
    } else {
      options.switches += (options.switches.empty() ? "" : " ") + argument;
    }
  }
  if (options.practise && !options.home.empty())
    throw UsageError("--practise has a folder of its own: leave out --home");
  return options;
}

std::string_view HelpText() {
  return R"(Usage: corvane [OPTION]... [/M] [/D] [/Q]

Collects the readings of field data loggers: the window. For servers and scripts there is corvanectl.

  /M                    start minimised
  /D                    download all active radio units at once, then do what follows a download
  /Q                    close when that is done
  --home DIR            the application folder: settings, log, tables and, by default, the data
  --practise            try it all on a simulated network; nothing of it stays
  --language-template   print the language file that holds the captions of this version
  --version             print the version
  --help                print this text

The switches count in either letter case and anywhere in the command line; "/m/d" is both.
Exit status: 0 closed in order, 1 the settings could not be saved, 2 usage, 3 could not start.
)";
}

}  // namespace corvane::window
