// Scripts that work the controls of the main window. The language: docs/console.md.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "form/form.h"

namespace corvane::console {

enum class Verb { Set, Select, Check, Open, Click, Menu, Answer, WaitFor, Wait, Show, Activate };

/// One statement, checked as far as that can be done before it runs.
struct Statement {
  std::string place;  ///< "file:line" for messages
  Verb verb = Verb::Wait;
  Control* control = nullptr;         ///< none for answer, wait and activate
  std::string text;                   ///< value, answer or switches
  std::vector<std::int64_t> numbers;  ///< rows, index, tick, seconds or milliseconds
};

using Statements = std::vector<Statement>;

/// Reads a script over the controls of `form`; `name` is for messages. Throws `UsageError` with "name:line: text" at
/// the first line that cannot be understood.
[[nodiscard]] Statements ParseScript(std::string_view name, std::string_view text, Form& form);
/// Reads the script in `file`; throws `UsageError`.
[[nodiscard]] Statements LoadScript(const std::string& file, Form& form);

}  // namespace corvane::console
