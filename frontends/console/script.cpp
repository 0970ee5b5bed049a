#include "script.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <sstream>
#include <utility>

#include "base/numbers.h"
#include "base/text.h"
#include "options.h"

namespace corvane::console {
namespace {

constexpr std::int64_t kLongestNumber = 1'000'000'000;

/// The words of a line, taken from its front or its end.
class Words {
 public:
  explicit Words(std::string_view text) : rest_(Trim(text)) {}

  [[nodiscard]] bool empty() const { return rest_.empty(); }
  std::string_view First() {
    const std::string_view word = rest_.substr(0, rest_.find_first_of(" \t"));
    rest_ = Trim(rest_.substr(word.size()));
    return word;
  }
  std::string_view Last() {
    const std::size_t blank = rest_.find_last_of(" \t");
    const std::string_view word = blank == std::string_view::npos ? rest_ : rest_.substr(blank + 1);
    rest_ = Trim(rest_.substr(0, rest_.size() - word.size()));
    return word;
  }
  /// All that is left; one pair of double quotes around it is taken off.
  std::string Rest() {
    std::string_view rest = std::exchange(rest_, {});
    if (rest.size() >= 2 && rest.front() == '"' && rest.back() == '"') rest = rest.substr(1, rest.size() - 2);
    return std::string(rest);
  }

 private:
  std::string_view rest_;
};

std::int64_t Number(std::string_view word, std::int64_t highest = kLongestNumber) {
  const auto number = ParseInteger(word, 0, highest);
  if (number) return *number;
  throw UsageError("\"" + std::string(word) + "\" is no whole number from 0 to " + std::to_string(highest));
}

/// Says whether a control can do what a verb asks for.
using Fits = bool (*)(const Control& control, const Form& form);

bool CanBeSet(const Control& control, const Form& form) {
  switch (control.kind()) {
    case ControlKind::Text:
    case ControlKind::Check:
    case ControlKind::Options:
    case ControlKind::Selector:
    case ControlKind::Window:
      return true;
    // Texts that the person chooses in a dialog or a list.
    case ControlKind::Label:
      return &control == &form.Lbl_Mode || &control == &form.Lbl_BackupDestination;
    default:
      return false;
  }
}

template <ControlKind kKind>
bool IsKind(const Control& control, const Form& /*form*/) {
  return control.kind() == kKind;
}

bool HasRows(const Control& control, const Form& /*form*/) {
  return control.kind() == ControlKind::List || control.kind() == ControlKind::Selector;
}

bool Any(const Control& /*control*/, const Form& /*form*/) {
  return true;
}

struct VerbRow {
  std::string_view name;
  Verb verb;
  Fits fits;  ///< none for a verb without a control
  void (*read)(Words& words, Statement& statement);
};

void ReadNumbers(Words& words, Statement& statement) {
  while (!words.empty()) statement.numbers.push_back(Number(words.First()));
}

void ReadOneNumber(Words& words, Statement& statement) {
  statement.numbers.push_back(Number(words.First()));
}

void ReadText(Words& words, Statement& statement) {
  statement.text = words.Rest();
}

constexpr std::array kVerbs = {
    VerbRow{"set", Verb::Set, CanBeSet, ReadText},
    VerbRow{"select", Verb::Select, HasRows, ReadNumbers},
    VerbRow{"check", Verb::Check, IsKind<ControlKind::List>,
            [](Words& words, Statement& statement) {
              ReadOneNumber(words, statement);
              statement.numbers.push_back(Number(words.First(), 1));
            }},
    VerbRow{"open", Verb::Open, IsKind<ControlKind::List>, ReadOneNumber},
    VerbRow{"click", Verb::Click, IsKind<ControlKind::Button>, [](Words&, Statement&) {}},
    VerbRow{"menu", Verb::Menu, IsKind<ControlKind::Menu>, ReadOneNumber},
    VerbRow{"answer", Verb::Answer, nullptr, ReadText},
    VerbRow{"wait-for", Verb::WaitFor, Any,
            [](Words& words, Statement& statement) {
              statement.numbers.push_back(Number(words.Last()));
              statement.text = words.Rest();
              if (statement.text.empty()) throw UsageError("wait-for needs NAME TEXT SECONDS");
            }},
    VerbRow{"wait", Verb::Wait, nullptr, ReadOneNumber},
    VerbRow{"show", Verb::Show, Any, [](Words&, Statement&) {}},
    VerbRow{"activate", Verb::Activate, nullptr, ReadText},
};

/// The control of that name; for `click NAME INDEX` the member of an array.
Control* FindControl(Words& words, const VerbRow& row, const Form& form) {
  std::string name(words.First());
  if (name.empty()) throw UsageError(std::string(row.name) + " needs the name of a control");
  if (row.verb == Verb::Click && !words.empty()) name += "_" + std::to_string(Number(words.First()));
  Control* control = form.Find(name);
  if (control == nullptr) throw UsageError("there is no control \"" + name + "\"");
  if (!row.fits(*control, form)) throw UsageError(control->name() + " cannot be used with " + std::string(row.name));
  return control;
}

Statement ParseStatement(std::string_view line, const Form& form) {
  Words words(line);
  const std::string_view name = words.First();
  const auto* row =
      std::find_if(kVerbs.begin(), kVerbs.end(), [name](const VerbRow& each) { return each.name == name; });
  if (row == kVerbs.end()) throw UsageError("there is no statement \"" + std::string(name) + "\"");
  Statement statement;
  statement.verb = row->verb;
  if (row->fits != nullptr) statement.control = FindControl(words, *row, form);
  row->read(words, statement);
  if (!words.empty()) throw UsageError("\"" + words.Rest() + "\" is too much");
  return statement;
}

}  // namespace

Statements ParseScript(std::string_view name, std::string_view text, Form& form) {
  Statements script;
  std::int64_t number = 0;
  for (std::string_view line : Split(text, '\n')) {
    const std::string place = std::string(name) + ":" + std::to_string(++number);
    if (line.ends_with('\r')) line.remove_suffix(1);
    line = Trim(line);
    if (line.empty() || line.front() == '#') continue;
    try {
      script.push_back(ParseStatement(line, form));
      script.back().place = place;
    } catch (const UsageError& error) {
      throw UsageError(place + ": " + error.what());
    }
  }
  return script;
}

Statements LoadScript(const std::string& file, Form& form) {
  std::ifstream in(file, std::ios::binary);
  std::ostringstream contents;
  if (!in || !(contents << in.rdbuf())) throw UsageError("the script " + file + " cannot be read");
  return ParseScript(file, contents.str(), form);
}

}  // namespace corvane::console
