#include "script_runner.h"

#include <algorithm>
#include <memory>
#include <optional>

#include "base/status.h"
#include "control_text.h"
#include "form/entering.h"

namespace corvane::console {
namespace {

constexpr std::int64_t kLookInterval = 100;  ///< milliseconds between two looks at an awaited control

bool Shows(const Control& control, const std::string& text) {
  const std::vector<std::string> shown = ShownTexts(control);
  return std::any_of(shown.begin(), shown.end(),
                     [&text](const std::string& each) { return each.find(text) != std::string::npos; });
}

void RequireRow(const Control& control, std::int64_t row, std::int64_t count) {
  if (row < count) return;
  throw RunTimeError(control.name() + " has no row " + std::to_string(row) + ", it has " + std::to_string(count) +
                     " (the first is row 0)");
}

}  // namespace

ScriptResult ScriptRunner::Run(const Statements& script) {
  ScriptResult result;
  for (const Statement& statement : script) {
    if (flags_.closing) break;
    flags_.problems = 0;
    try {
      RunStatement(statement);
    } catch (const RunTimeError& error) {
      result.error = statement.place + ": " + error.what();
    }
    result.problems += flags_.problems;
    if (!result.error.empty()) break;
  }
  return result;
}

void ScriptRunner::RequireUsable(const Control& control) const {
  if (!control.visible()) throw RunTimeError(control.name() + " is not shown");
  if (!control.enabled()) throw RunTimeError(control.name() + " is disabled now");
}

void ScriptRunner::RunStatement(const Statement& statement) {
  Control* control = statement.control;
  if (control != nullptr && statement.verb != Verb::Show && statement.verb != Verb::WaitFor) RequireUsable(*control);
  switch (statement.verb) {
    case Verb::Set:
      return Set(statement);
    case Verb::Select:
      return SelectRows(statement);
    case Verb::Check:
    case Verb::Open: {
      List& list = static_cast<List&>(*control);
      RequireRow(list, statement.numbers[0], list.count());
      if (statement.verb == Verb::Open) return list.Open(statement.numbers[0]);
      return list.SetChecked(statement.numbers[0], statement.numbers[1] != 0);
    }
    case Verb::Click:
      return static_cast<const Button*>(control)->Click();
    case Verb::Menu:
      return ClickMenu(statement);
    case Verb::Answer:
      return hooks_.answer(statement.text);
    case Verb::WaitFor:
      return WaitFor(statement);
    case Verb::Wait:
      return Wait(statement.numbers[0]);
    case Verb::Show:
      return Show(*control);
    case Verb::Activate:
      return hooks_.activate(statement.text);
  }
}

void ScriptRunner::Set(const Statement& statement) {
  Control& control = *statement.control;
  try {
    EnterValue(control, statement.text);
  } catch (const RunTimeError& error) {
    throw RunTimeError(control.name() + " " + error.what());
  }
  if (control.kind() == ControlKind::Text) static_cast<const TextField&>(control).Leave();
}

void ScriptRunner::SelectRows(const Statement& statement) {
  if (statement.control->kind() == ControlKind::Selector) {
    auto& selector = static_cast<Selector&>(*statement.control);
    if (statement.numbers.size() != 1) throw RunTimeError(selector.name() + " takes one row");
    RequireRow(selector, statement.numbers[0], selector.count());
    return selector.SetCurrent(statement.numbers[0]);
  }
  auto& list = static_cast<List&>(*statement.control);
  if (statement.numbers.size() > 1 && !list.multi_select()) throw RunTimeError(list.name() + " takes one row");
  for (const std::int64_t row : statement.numbers) RequireRow(list, row, list.count());
  for (std::int64_t row = 0; row < list.count(); ++row) {
    const bool wanted = std::find(statement.numbers.begin(), statement.numbers.end(), row) != statement.numbers.end();
    if (list.multi_select()) list.SetSelected(row, wanted);
  }
  list.SetCurrent(statement.numbers.empty() ? -1 : statement.numbers.back());
}

void ScriptRunner::ClickMenu(const Statement& statement) {
  const auto& menu = static_cast<const MenuGroup&>(*statement.control);
  const auto index = static_cast<std::size_t>(statement.numbers[0]);
  const bool there =
      index < menu.entries().size() && menu.entries()[index].visible && menu.entries()[index].caption != "-";
  const std::string entry = menu.name() + " entry " + std::to_string(index);
  if (!there) throw RunTimeError(entry + " does not exist");
  if (!menu.entries()[index].enabled) throw RunTimeError(entry + " is disabled now");
  menu.Click(statement.numbers[0]);
}

void ScriptRunner::WaitFor(const Statement& statement) {
  awaited_ = &statement;
  deadline_ = loop_.MonotonicMilliseconds() + statement.numbers[0] * 1000;
  seen_ = Shows(*statement.control, statement.text);
  // Wakes the wait up when nothing else happens.
  const auto timer = loop_.MakeTimer([] {});
  timer->Start(kLookInterval);
  while (!seen_ && !flags_.closing && loop_.MonotonicMilliseconds() < deadline_) loop_.Yield();
  awaited_ = nullptr;
  if (seen_ || flags_.closing) return;
  const std::vector<std::string> shown = ShownTexts(*statement.control);
  throw RunTimeError(statement.control->name() + " did not show \"" + statement.text + "\" within " +
                     std::to_string(statement.numbers[0]) + " s; it shows \"" + (shown.empty() ? "" : shown.back()) +
                     "\"");
}

void ScriptRunner::OnChange(const Control& control) {
  if (awaited_ == nullptr || &control != awaited_->control || seen_) return;
  // Rows stay, and a long list is not searched for each of them.
  if (control.kind() == ControlKind::List) return;
  seen_ = loop_.MonotonicMilliseconds() <= deadline_ && Shows(control, awaited_->text);
}

void ScriptRunner::Wait(std::int64_t milliseconds) {
  bool over = false;
  const auto timer = loop_.MakeTimer([&over] { over = true; });
  timer->Start(milliseconds);
  while (!over && !flags_.closing) loop_.Yield();
}

void ScriptRunner::Show(const Control& control) {
  const std::vector<std::string> shown = ShownTexts(control);
  const bool has_rows = control.kind() == ControlKind::List || control.kind() == ControlKind::Menu;
  for (std::size_t row = 0; row < shown.size(); ++row) {
    hooks_.print(control.name() + (has_rows ? "[" + std::to_string(row) + "]" : "") + ": " + shown[row]);
  }
  if (shown.empty()) hooks_.print(control.name() + ": empty");
}

}  // namespace corvane::console
