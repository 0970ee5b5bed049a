#include "control_text.h"

#include "base/numbers.h"

namespace corvane::console {
namespace {

std::vector<std::string> RowsOf(const List& list) {
  std::vector<std::string> rows;
  for (std::int64_t row = 0; row < list.count(); ++row) {
    const bool marked = list.selected(row) || list.current() == row;
    rows.push_back((marked ? "> " : "") + std::string(list.checked(row) ? "[x] " : "") + list.text(row));
  }
  return rows;
}

std::vector<std::string> EntriesOf(const MenuGroup& menu) {
  std::vector<std::string> entries;
  for (const MenuGroup::Entry& entry : menu.entries()) entries.push_back(entry.visible ? entry.caption : "");
  return entries;
}

}  // namespace

std::vector<std::string> ShownTexts(const Control& control) {
  switch (control.kind()) {
    case ControlKind::Label:
      return {static_cast<const Label&>(control).text()};
    case ControlKind::Text:
      return {static_cast<const TextField&>(control).text()};
    case ControlKind::Check:
      return {static_cast<const CheckBox&>(control).ticked() ? "1" : "0"};
    case ControlKind::Options:
      return {std::to_string(static_cast<const OptionGroup&>(control).GetOptionIndex())};
    case ControlKind::List:
      return RowsOf(static_cast<const List&>(control));
    case ControlKind::Selector:
      return {static_cast<const Selector&>(control).shown_text()};
    case ControlKind::Button:
      return {static_cast<const Button&>(control).caption()};
    case ControlKind::Menu:
      return EntriesOf(static_cast<const MenuGroup&>(control));
    case ControlKind::Progress:
      return {ShortestText(static_cast<const ProgressBar&>(control).value())};
    case ControlKind::Window:
      return {static_cast<const Window&>(control).title()};
  }
  return {};
}

}  // namespace corvane::console
