#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "desk.h"
#include "setup/setup_plan.h"

namespace corvane::console {

/// Why a page is left before its questions are over; thrown by a question.
enum class Leave {
  Again,  ///< back, with some of its questions answered
  Back,   ///< back, at its first question
  Quit,   ///< the person, the input or the program ends it
};

/// Questions at a terminal, one a line: Enter keeps the present value, "back" and "quit" leave the page by a `Leave`.
/// All **yield**.
class SetupTalk {
 public:
  explicit SetupTalk(Desk& desk) : desk_(desk) {}

  /// A page begins.
  void BeginPage(std::string_view title);
  /// What was typed, blanks around it left out.
  [[nodiscard]] std::string Line(const std::string& prompt, bool secret = false);
  /// The text, or the present one; "-" stands for none where `none` says what none means.
  [[nodiscard]] std::string Text(const std::string& what, const std::string& present, const std::string& none = {});
  /// A text that is not shown as it is typed on a terminal, nor as the present value.
  [[nodiscard]] std::string Secret(const std::string& what, const std::string& present);
  [[nodiscard]] bool Yes(const std::string& question, bool present);
  /// Asks until `take`, which enters the answer, finds nothing wrong with it.
  void Until(const std::function<void()>& take, const std::function<std::vector<SetupFault>()>& faults);
  void Say(std::string_view text) { desk_.output.Line(text); }
  /// Says what was found and whether it is well.
  void Tell(const SetupAnswer& answer);
  /// Says what is wrong; false when nothing is.
  bool Tell(const std::vector<SetupFault>& faults, bool with_rows);

 private:
  Desk& desk_;
  bool first_question_ = true;
};

}  // namespace corvane::console
