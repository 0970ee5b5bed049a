#pragma once

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "app/application.h"
#include "base/text.h"
#include "support/fake_loop.h"
#include "support/fake_transfer.h"
#include "support/recorders.h"
#include "support/scripted_port.h"
#include "support/temp_folder.h"

namespace corvane::test {

/// "$" + items + "*" + checksum, computed here so that the program's own is not tested with itself.
inline std::string Frame(const std::string& items) {
  unsigned sum = 0;
  for (const char c : items) sum ^= static_cast<unsigned char>(c);
  char digits[3];
  std::snprintf(digits, sizeof digits, "%02X", sum & 0xFFU);
  return "$" + items + "*" + digits;
}
inline std::string Framed(const std::string& items) {
  return Frame(items) + "\r\n";
}

/// The whole application on a fake machine, in a temporary application folder.
///
/// Without a script of its own, the port echoes each command and answers a download with `readings` lines and "OK", any
/// other command with one line.
class World {
 public:
  explicit World(const std::string& settings = "") {
    if (!settings.empty()) home.Write("corvane.ini", settings);
    dialogs.answer_plain_boxes = true;
    port.on_line = [this](const std::string& line) { AnswerAsUsual(line); };
  }

  /// Creates the application and runs the window-creation steps.
  Application& Start(const std::string& switches = "") {
    app_ = std::make_unique<Application>(Platform{loop, port, shell, dialogs, internet, zip, help, {}, history},
                                         home.path());
    app_->life().OnWindowCreate(switches);
    return *app_;
  }
  [[nodiscard]] Application& app() { return *app_; }
  [[nodiscard]] Form& form() { return app_->form(); }
  [[nodiscard]] std::string Log() const { return home.Read("corvane.log"); }
  [[nodiscard]] bool Logged(const std::string& text) const { return Log().find(text) != std::string::npos; }

  /// Answers a line sent as it does without a script.
  void AnswerAsUsual(const std::string& line) {
    if (line.empty()) return port.Receive("ready\r\n");
    std::string answer = line + "\r\n";
    answer += line.substr(14, 2) == "rr" ? Download() : "done\r\n";
    port.Receive(answer);
  }

  TempFolder home;
  FakeLoop loop;
  ScriptedPort port{loop};
  RecordingDialogs dialogs;
  FakeShell shell;
  FakeInternet internet;
  FakeZip zip;
  HelpFiles help;
  HistoryStore* history = nullptr;  ///< none: no history is kept
  std::vector<std::string> readings = {"2010/3/12 8:00,12500,29310,1,1500,900,29300",
                                       "2010/3/12 9:00,12490,29320,2,1510,910,29310"};

 private:
  [[nodiscard]] std::string Download() const {
    std::string text = Framed("V2,00001,4,3," + std::to_string(readings.size()) + ",2010/3/12 10:00,12500,29310,100");
    for (const std::string& reading : readings) text += Framed(reading);
    return text + "OK\r\n";
  }

  std::unique_ptr<Application> app_;
};

/// Settings of a small network that tests can build on; tables included when the files are written.
inline std::string SmallNetwork(int units) {
  std::string text = "[General]\nUnitWait=1\nFolder=data\nMaxRetries=3\n[Ports]\nCOM1=/dev/base\n[Units]\nNumUnits=" +
                     std::to_string(units) + "\n";
  return text;
}

inline void WriteTables(const TempFolder& home) {
  home.Write("moisture.lkp", "0,0\n4000,40\n");
  home.Write("salinity.lkp", "0,0\n4000,4\n");
  home.Write("salcorr.lkp", "0,0\n10,1\n");
}

}  // namespace corvane::test
