#include "form/entering.h"

#include <cstdint>

#include "base/numbers.h"
#include "base/status.h"
#include "base/text.h"

namespace corvane {
namespace {

constexpr std::int64_t kMostEntriesTold = 12;

std::int64_t IndexOf(const std::string& text, int highest) {
  if (const auto number = ParseInteger(text, 0, highest)) return *number;
  throw RunTimeError("takes a number from 0 to " + std::to_string(highest));
}

/// The entries that can be chosen; of many the first and the last.
std::string EntriesOf(const Selector& selector) {
  if (selector.count() == 0) return {};
  if (selector.count() > kMostEntriesTold) {
    return ": it has " + selector.text(0) + " to " + selector.text(selector.count() - 1);
  }
  std::string entries;
  for (std::int64_t row = 0; row < selector.count(); ++row) {
    entries += (row == 0 ? ": it has " : ", ") + std::to_string(selector.number(row)) + " (" + selector.text(row) + ")";
  }
  return entries;
}

void Choose(Selector& selector, const std::string& text) {
  for (std::int64_t row = 0; row < selector.count(); ++row) {
    if (EqualsNoCase(selector.text(row), text)) return selector.SetCurrent(row);
  }
  if (selector.editable()) return selector.SetShownText(text);
  const auto number = ParseInteger(text, INT32_MIN, INT32_MAX);
  for (std::int64_t row = 0; number && row < selector.count(); ++row) {
    if (selector.number(row) == *number) return selector.SetCurrent(row);
  }
  throw RunTimeError("has no entry \"" + text + "\"" + EntriesOf(selector));
}

}  // namespace

void EnterValue(Control& control, const std::string& text) {
  switch (control.kind()) {
    case ControlKind::Label:
      return dynamic_cast<Label&>(control).SetText(text);
    case ControlKind::Text:
      return dynamic_cast<TextField&>(control).SetText(text);
    case ControlKind::Selector:
      return Choose(dynamic_cast<Selector&>(control), text);
    case ControlKind::Options: {
      auto& group = dynamic_cast<OptionGroup&>(control);
      return group.SetOptionIndex(IndexOf(text, group.count() - 1));
    }
    case ControlKind::Check:
      return dynamic_cast<CheckBox&>(control).SetTicked(IndexOf(text, 1) != 0);
    case ControlKind::Window:
      return dynamic_cast<Window&>(control).SetMinimised(IndexOf(text, 1) != 0);
    default:
      throw RunTimeError("takes no value");
  }
}

}  // namespace corvane
