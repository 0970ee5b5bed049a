// The standard streams of a console program.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace corvane {

inline constexpr int kStandardInput = 0;
inline constexpr int kStandardOutput = 1;
inline constexpr int kStandardError = 2;

/// True when a person sees or types what goes through `descriptor`.
[[nodiscard]] bool IsTerminal(int descriptor);
/// Columns of the terminal at the standard output; 80 when it does not say.
[[nodiscard]] int TerminalColumns();
/// Opens what is closed of the three standard streams on nothing, so that no other file takes its number.
void FillStandardDescriptors();
/// Writes all of `text`; when `patient`, waits for a slow reader, else what the reader does not take at once is lost.
///
/// False when it cannot be written (a full disk); a reader that went away is no failure.
bool WriteOut(int descriptor, std::string_view text, bool patient);
/// Appends what has arrived to `text`, waiting where nothing has; false at the end of the input.
[[nodiscard]] bool ReadArrived(int descriptor, std::string& text);
/// Reads one line from the standard input, without its line end. At a terminal `prompt` is written to the error output
/// and what is typed stays unseen. None at the end of the input and where the person broke off with Ctrl-C.
[[nodiscard]] std::optional<std::string> ReadSecret(std::string_view prompt);

/// Keeps a terminal from showing what is typed, as long as it lives; does nothing to any other descriptor.
class NoEcho {
 public:
  /// What Ctrl-C does meanwhile: it ends the program as ever, or is read as one more character that ends a line.
  enum class BreakOff { Signals, IsRead };

  explicit NoEcho(int descriptor, BreakOff break_off = BreakOff::Signals);
  ~NoEcho();
  NoEcho(const NoEcho&) = delete;
  NoEcho& operator=(const NoEcho&) = delete;

 private:
  int descriptor_;
  unsigned modes_ = 0;          ///< before
  unsigned char line_end_ = 0;  ///< likewise
  bool on_ = false;
};

}  // namespace corvane
