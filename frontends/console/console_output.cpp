#include "console_output.h"

#include <algorithm>

#include "base/outside_text.h"
#include "base/text.h"

namespace corvane::console {
namespace {

constexpr const char* kClearLine = "\r\033[K";

}  // namespace

void ConsoleOutput::Line(std::string_view text) {
  if (settings_.quiet) return;
  EndProgress();
  settings_.write(false, Stamp() + Printable(text) + "\n");
}

void ConsoleOutput::Error(std::string_view text) {
  EndProgress();
  settings_.write(true, PrintableLines(text) + "\n");
}

std::string ConsoleOutput::PrintableLines(std::string_view text) const {
  std::string lines;
  for (std::string_view line : Split(text, '\n')) {
    if (line.ends_with('\r')) line.remove_suffix(1);
    lines += (lines.empty() ? Stamp() : "\n  ") + Printable(line);
  }
  return lines;
}

void ConsoleOutput::Result(std::string_view text) {
  EndProgress();
  if (!settings_.stamp) return settings_.write(false, std::string(text));
  for (const std::string_view line : Split(text, '\n')) {
    if (!line.empty()) settings_.write(false, Stamp() + std::string(line) + "\n");
  }
}

void ConsoleOutput::Prompt(std::string_view text) {
  EndProgress();
  settings_.write(true, PrintableLines(text));
}

void ConsoleOutput::Progress(std::string_view text) {
  if (!shows_progress()) return;
  const auto columns = static_cast<std::size_t>(std::max(settings_.columns(), 2));
  settings_.write(false, kClearLine + std::string(CutCharacters(Printable(text), columns - 1)));
  progress_shown_ = true;
}

void ConsoleOutput::EndProgress() {
  if (progress_shown_) settings_.write(false, kClearLine);
  progress_shown_ = false;
}

}  // namespace corvane::console
