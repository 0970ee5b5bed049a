#pragma once

#include <fstream>
#include <string>
#include <string_view>

namespace corvane::basestation {

/// The optional record of a run: what came in, what was answered, which faults were made.
class Log {
 public:
  /// Appends to the file from now on ("-" is the error output); throws `RunTimeError` when it cannot be opened.
  void Open(const std::string& path);
  /// Writes one line with the time of day, once a file is open; characters that do not print are shown as [code].
  void Write(std::string_view text);

 private:
  std::ofstream file_;
  std::ostream* out_ = nullptr;
};

}  // namespace corvane::basestation
