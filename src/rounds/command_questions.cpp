#include "rounds/command_questions.h"

#include "base/format.h"
#include "link/exchange.h"

namespace corvane {

bool CommandQuestions::ConfirmCommand(std::int16_t ai_Command, const std::string& as_What, const std::string& as_Unit) {
  const std::string question = QuestionFor(ai_Command, as_What);
  if (question.empty()) return true;
  return messages_.Confirm(question, as_Unit) && messages_.Confirm(question + "\r\nAre you really sure", as_Unit);
}

std::string CommandQuestions::QuestionFor(std::int16_t ai_Command, const std::string& as_What) const {
  switch (ai_Command) {
    case kSetDate:
      return "Set date in " + as_What + " to: " + GeneralDate(loop_.Now());
    case kSetLogPeriod: {
      const std::string& period = form_.Cmb_LogPeriod.shown_text();
      const auto seconds = ParseTimeOfDay(period);
      return "Set log period in " + as_What + " to: " + (seconds ? DurationText(*seconds, false) : period);
    }
    case kSetMode:
    case kSetDelays:
      return std::string(CommandOf(ai_Command).name) + " in " + as_What +
             " to: " + (ai_Command == kSetMode ? form_.Lbl_Mode.text() : form_.Txt_Delays.text());
    default:
      return {};
  }
}

}  // namespace corvane
