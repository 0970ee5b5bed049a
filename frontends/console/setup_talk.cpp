#include "setup_talk.h"

#include "base/text.h"

namespace corvane::console {

void SetupTalk::BeginPage(std::string_view title) {
  first_question_ = true;
  Say("");
  Say(std::string(title));
}

std::string SetupTalk::Line(const std::string& prompt, bool secret) {
  const bool& closing = desk_.app.flags().closing;
  const auto line = desk_.dialogs.ReadLine("  " + prompt + ": ", desk_.loop, closing, secret);
  if (!line || closing) throw Leave::Quit;
  std::string text(Trim(*line));
  if (EqualsNoCase(text, "quit")) throw Leave::Quit;
  if (EqualsNoCase(text, "back")) throw first_question_ ? Leave::Back : Leave::Again;
  first_question_ = false;
  return text;
}

std::string SetupTalk::Text(const std::string& what, const std::string& present, const std::string& none) {
  std::string prompt = what;
  if (!none.empty()) prompt += ", - for " + none;
  prompt += " [" + (present.empty() ? none.empty() ? "" : "-" : present) + "]";
  std::string text = Line(prompt);
  if (text.empty()) return present;
  return text == "-" && !none.empty() ? std::string() : text;
}

std::string SetupTalk::Secret(const std::string& what, const std::string& present) {
  const std::string text = Line(what + (present.empty() ? "" : " [as it is]"), true);
  return text.empty() ? present : text;
}

bool SetupTalk::Yes(const std::string& question, bool present) {
  for (;;) {
    const std::string text = Line(question + (present ? " [Y/n]" : " [y/N]"));
    if (text.empty()) return present;
    if (EqualsNoCase(text, "y") || EqualsNoCase(text, "yes")) return true;
    if (EqualsNoCase(text, "n") || EqualsNoCase(text, "no")) return false;
    Refuse("Answer y or n, not \"" + text + "\".");
  }
}

void SetupTalk::Until(const std::function<void()>& take, const std::function<std::vector<SetupFault>()>& faults) {
  do {
    take();
  } while (Refuse(faults(), false));
}

void SetupTalk::Tell(const SetupAnswer& answer) {
  if (desk_.app.flags().closing) throw Leave::Quit;
  if (answer.well) {
    Say("  " + answer.text);
  } else {
    desk_.output.Error("  " + answer.text);
  }
}

void SetupTalk::Refuse(const std::string& text) {
  desk_.output.Error("  " + text);
  if (!HasPerson()) throw Leave::Quit;
}

bool SetupTalk::Refuse(const std::vector<SetupFault>& faults, bool with_rows) {
  std::string text;
  for (const SetupFault& fault : faults) {
    if (!text.empty()) text += "\n";
    text += (with_rows && fault.row > 0 ? "Row " + std::to_string(fault.row) + ": " : "") + fault.text;
  }
  if (!text.empty()) Refuse(text);
  return !faults.empty();
}

}  // namespace corvane::console
