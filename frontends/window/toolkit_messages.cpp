#include "window/toolkit_messages.h"

#include <atomic>
#include <cstdlib>
#include <iostream>

#include <QString>
#include <QStringList>

#include "base/outside_text.h"
#include "window/program.h"

namespace corvane::window {
namespace {

constexpr const char* kLostConnection = "The Wayland connection";  ///< begins what its plug-in says before it leaves

std::atomic<bool> waiting_for_display = false;
std::atomic<void (*)()> save_before_the_end = nullptr;

void OnMessage(QtMsgType type, const QMessageLogContext& context, const QString& text) {
  const QStringList lines = qFormatLogMessage(type, context, text).split('\n');
  for (const QString& line : lines) std::cerr << Printable(line.toStdString()) << "\n";
  std::cerr << std::flush;
  if (type == QtFatalMsg && waiting_for_display) {
    SayThereIsNoDisplay();
    std::_Exit(kNotStarted);
  }
  const auto save = save_before_the_end.load();
  if (save != nullptr && text.startsWith(kLostConnection)) save();
}

}  // namespace

void WatchToolkitMessages() {
  waiting_for_display = true;
  qInstallMessageHandler(OnMessage);
}

void DisplayIsThere() {
  waiting_for_display = false;
}

void OnLostConnection(void (*save)()) {
  save_before_the_end = save;
}

void SayThereIsNoDisplay() {
  std::cerr << "corvane: there is no display here; use corvanectl, the console program" << std::endl;
}

}  // namespace corvane::window
