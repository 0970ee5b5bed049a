#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string>
#include <vector>

#include <QApplication>
#include <QSettings>

#include "base/outside_text.h"
#include "desktop/terminal.h"
#include "posix/signal_watch.h"
#include "state/app_info.h"
#include "window/box_style.h"
#include "window/options.h"
#include "window/program.h"
#include "window/toolkit_messages.h"

namespace {

std::vector<std::string> Arguments(const QStringList& all) {
  std::vector<std::string> arguments;
  for (qsizetype i = 1; i < all.size(); ++i) arguments.push_back(all[i].toStdString());
  return arguments;
}

}  // namespace

int main(int argc, char** argv) {
  using namespace corvane::window;
  corvane::FillStandardDescriptors();
  std::signal(SIGPIPE, SIG_IGN);
  const auto given = [argc, argv](const char* option) {
    return std::any_of(argv + (argc > 0 ? 1 : 0), argv + argc,
                       [option](const char* text) { return std::strcmp(text, option) == 0; });
  };
  // These need no display.
  if (given("--help")) {
    std::cout << HelpText();
    return kClosed;
  }
  if (given("--version")) {
    std::cout << "corvane " << corvane::AppInfo::VersionText() << "\n";
    return kClosed;
  }
  if (given("--language-template")) qputenv("QT_QPA_PLATFORM", "offscreen");

  const bool has_display = std::getenv("DISPLAY") != nullptr || std::getenv("WAYLAND_DISPLAY") != nullptr;
  if (!has_display && std::getenv("QT_QPA_PLATFORM") == nullptr && !given("-platform")) {
    SayThereIsNoDisplay();
    return kNotStarted;
  }
  // Dialogs of the toolkit remember folders; this program remembers nothing outside its settings file.
  QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, "/dev/null");
  // The toolkit starts threads, which must not take these away from the program.
  corvane::SignalWatch::BlockEarly({SIGINT, SIGTERM, SIGHUP});
  WatchToolkitMessages();
  QApplication toolkit(argc, argv);
  DisplayIsThere();
  QApplication::setQuitOnLastWindowClosed(false);
  QApplication::setApplicationName("corvane");
  QApplication::setDesktopFileName("corvane");
  QApplication::setStyle(new BoxStyle);
  try {
    const Options options = ParseOptions(Arguments(QCoreApplication::arguments()));
    return options.language_template ? PrintLanguageTemplate() : RunProgram(options);
  } catch (const UsageError& error) {
    std::cerr << "corvane: " << corvane::Printable(error.what()) << "\nTry: corvane --help\n";
    return kUsage;
  }
}
