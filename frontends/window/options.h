#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::window {

class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What the command line of the window program says.
struct Options {
  std::string home;  ///< value of --home, empty when not given
  bool language_template = false;
  bool practise = false;  ///< in a practice of its own, not in `home`
  std::string switches;   ///< the text in which "/M", "/D" and "/Q" are looked for
};

/// Reads the arguments behind the program's name.
///
/// Options with two dashes and their values, and what begins with one dash (the toolkit's own), are left out of the
/// switches, so that a path cannot start a download. Throws `UsageError` for an unknown option.
[[nodiscard]] Options ParseOptions(const std::vector<std::string>& arguments);

[[nodiscard]] std::string_view HelpText();

}  // namespace corvane::window
