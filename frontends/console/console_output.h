#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace corvane::console {

/// What the program prints: whole lines, errors, and on a terminal one progress line that is written over.
class ConsoleOutput {
 public:
  struct Settings {
    std::function<void(bool error, const std::string& text)> write;  ///< to the error output or the standard output
    std::function<std::string()> stamp;  ///< text put before each line; empty function: none
    std::function<int()> columns;        ///< width of the terminal; empty function: no terminal, no progress line
    bool quiet = false;                  ///< leave out what `Line` and `Progress` print
  };
  explicit ConsoleOutput(Settings settings) : settings_(std::move(settings)) {}

  /// Prints one line about the work.
  void Line(std::string_view text);
  /// Prints the lines of an error or message, whatever is quiet.
  void Error(std::string_view text);
  /// Prints `text`, which ends with a line end and is fit for a terminal, whatever is quiet: as it stands, or its lines
  /// with their stamps.
  void Result(std::string_view text);
  /// Prints the lines of a question, without a line end behind the last.
  void Prompt(std::string_view text);
  /// Writes the progress line over, where there is one.
  void Progress(std::string_view text);
  [[nodiscard]] bool shows_progress() const { return settings_.columns && !settings_.quiet; }
  [[nodiscard]] bool quiet() const { return settings_.quiet; }

 private:
  void EndProgress();
  [[nodiscard]] std::string PrintableLines(std::string_view text) const;
  [[nodiscard]] std::string Stamp() const { return settings_.stamp ? settings_.stamp() : ""; }

  Settings settings_;
  bool progress_shown_ = false;
};

}  // namespace corvane::console
