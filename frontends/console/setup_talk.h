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

/// Questions, one a line: Enter keeps the present value, "back" and "quit" leave the page by a `Leave`. All **yield**.
///
/// Answers that come through a pipe were written without knowing what is found: what cannot be taken ends the set-up,
/// as the lines behind it would answer other questions, and what fails when it is tried asks nothing more.
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
  /// Says why an answer cannot be taken; it is asked for once more.
  void Refuse(const std::string& text);
  /// Whether a person can be asked once more.
  [[nodiscard]] bool HasPerson() const { return desk_.dialogs.HasPerson(); }
  /// Says what was found by a try; one that the end of the program has cut short leaves too.
  void Tell(const SetupAnswer& answer);
  /// Refuses what is wrong; false when nothing is.
  bool Refuse(const std::vector<SetupFault>& faults, bool with_rows);

 private:
  Desk& desk_;
  bool first_question_ = true;
};

}  // namespace corvane::console
