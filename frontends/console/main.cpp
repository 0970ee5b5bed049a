#include <csignal>
#include <iostream>
#include <string>
#include <vector>

#include "base/outside_text.h"
#include "console/completion.h"
#include "console/options.h"
#include "console/program.h"
#include "console/settings_commands.h"
#include "desktop/terminal.h"
#include "state/app_info.h"

int main(int argc, char** argv) {
  using namespace corvane::console;
  corvane::FillStandardDescriptors();
  // A reader that went away must not end a download.
  std::signal(SIGPIPE, SIG_IGN);
  Options options;
  try {
    options = ParseOptions(std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc));
  } catch (const UsageError& error) {
    std::cerr << "corvanectl: " << corvane::Printable(error.what()) << "\nTry: corvanectl --help\n";
    return kUsage;
  }
  if (options.version) {
    std::cout << "corvanectl " << corvane::AppInfo::VersionText() << "\n";
    return kAllWell;
  }
  if (options.help) {
    std::cout << HelpText(options.command);
    return kAllWell;
  }
  if (options.command == CommandId::Completion) {
    std::cout << CompletionScript(options.arguments[0]);
    return kAllWell;
  }
  if (!ReadPassword(options)) return kUsage;
  return RunProgram(options);
}
