#pragma once

#include <cstdint>
#include <string>

#include "form/form.h"
#include "platform/event_loop.h"
#include "ui/messages.h"

namespace corvane {

/// The questions before a command that changes units.
class CommandQuestions {
 public:
  /// All must outlive this object.
  CommandQuestions(const Form& av_Form, EventLoop& av_Loop, Messages& av_Messages)
      : form_(av_Form), loop_(av_Loop), messages_(av_Messages) {}

  /// Asks twice before a command that changes units; true at once for any other. **Yields.**
  ///
  /// `as_Unit`, when one unit is meant, is shown in the title.
  [[nodiscard]] bool ConfirmCommand(std::int16_t ai_Command, const std::string& as_What, const std::string& as_Unit);

 private:
  /// Empty for a command that changes nothing.
  [[nodiscard]] std::string QuestionFor(std::int16_t ai_Command, const std::string& as_What) const;

  const Form& form_;
  EventLoop& loop_;
  Messages& messages_;
};

}  // namespace corvane
