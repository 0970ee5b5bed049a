#include "console_dialogs.h"

#include <cerrno>
#include <utility>

#include "base/text.h"
#include "desktop/terminal.h"

namespace corvane::console {
namespace {

constexpr int kClosed = 0;  ///< a box closed without a button

/// The position of the button with that caption, its first letter being enough; `kClosed` when there is none.
int PositionOf(const BoxContents& contents, std::string_view caption) {
  for (std::size_t i = 0; i < contents.buttons.size(); ++i) {
    const std::string& button = contents.buttons[i];
    const bool letter = caption.size() == 1 && StartsWithNoCase(button, caption);
    if (letter || EqualsNoCase(button, caption)) return static_cast<int>(i) + 1;
  }
  return kClosed;
}

}  // namespace

ConsoleDialogs::BoxId ConsoleDialogs::OpenBox(const BoxContents& contents, std::function<void(int)> on_click) {
  const BoxId box = ++last_box_;
  if (contents.buttons.size() == 1) {
    output_.Error(contents.text);
    on_click(1);
  } else if (answering_ == Answering::Terminal && PositionOf(contents, "Yes") != kClosed) {
    asked_box_ = box;
    asked_ = contents;
    on_click_ = std::move(on_click);
    Ask();
  } else {
    Answer(contents, AutomaticPosition(contents), on_click);
  }
  return box;
}

int ConsoleDialogs::AutomaticPosition(const BoxContents& contents) {
  if (answering_ == Answering::Script) {
    const auto answer = NextAnswer();
    const int position = answer ? PositionOf(contents, *answer) : kClosed;
    if (position != kClosed) return position;
  }
  if (answering_ == Answering::Yes && PositionOf(contents, "Yes") != kClosed) return PositionOf(contents, "Yes");
  // A closed box counts as the end of its count-down, which is Yes in a box of Yes and No.
  return PositionOf(contents, "No");
}

void ConsoleDialogs::Answer(const BoxContents& contents, int position, const std::function<void(int)>& on_click) {
  const int yes = PositionOf(contents, "Yes");
  const bool declined = yes != kClosed && position != yes;
  if (declined) ++declined_;
  std::string text = contents.text;
  if (position != kClosed) text += " " + contents.buttons[static_cast<std::size_t>(position - 1)];
  if (declined && answering_ == Answering::Nobody) text += " (nobody can be asked here; --yes answers Yes)";
  if (declined || !output_.quiet()) output_.Error(text);
  on_click(position);
}

void ConsoleDialogs::Ask() {
  output_.Prompt(asked_.text + " [yes/no] ");
  if (const auto line = TakeTyped()) return TakeLine(*line);
  watcher_.WatchRead(input_, [this] { OnInput(); });
}

void ConsoleDialogs::OnInput() {
  if (!ReadArrived(input_, typed_)) return TakeLine("no");
  if (const auto line = TakeTyped()) TakeLine(*line);
}

std::optional<std::string> ConsoleDialogs::TakeTyped() {
  const std::size_t end = typed_.find('\n');
  if (end == std::string::npos) return std::nullopt;
  std::string line = typed_.substr(0, end);
  typed_.erase(0, end + 1);
  if (line.ends_with('\r')) line.pop_back();
  return line;
}

bool ConsoleDialogs::HasPerson() const {
  return IsTerminal(input_);
}

std::optional<std::string> ConsoleDialogs::ReadLine(const std::string& prompt, EventLoop& loop, const bool& ended,
                                                    bool secret) {
  output_.Prompt(prompt);
  std::optional<NoEcho> unseen;
  if (secret) unseen.emplace(input_);
  std::optional<std::string> line = TakeTyped();
  const auto has_line = [&] {
    if (!line) line = TakeTyped();
    return line.has_value();
  };
  const bool at_end = !ReadUntil(loop, ended, has_line);
  // A last line without its end counts too.
  if (!line && at_end && !typed_.empty()) line = std::exchange(typed_, {});
  // Whoever reads what came through a pipe sees the answers too.
  if (secret || !HasPerson()) output_.Error(secret ? "" : line.value_or(""));
  return line;
}

Status ConsoleDialogs::ReadAll(EventLoop& loop, const bool& ended, std::int64_t limit, std::string& text) {
  const auto too_long = [&] { return static_cast<std::int64_t>(typed_.size()) > limit; };
  const bool at_end = !ReadUntil(loop, ended, too_long);
  text = std::exchange(typed_, {});
  if (at_end) return Status::Ok();
  return ended ? Status(ECANCELED, "it was broken off")
               : Status(EFBIG, "it is longer than " + std::to_string(limit) + " bytes");
}

bool ConsoleDialogs::ReadUntil(EventLoop& loop, const bool& ended, const std::function<bool()>& enough) {
  if (enough()) return true;
  bool at_end = false;
  watcher_.WatchRead(input_, [&] { at_end = !ReadArrived(input_, typed_); });
  while (!at_end && !ended && !enough()) loop.Yield();
  watcher_.Unwatch(input_);
  return !at_end;
}

void ConsoleDialogs::TakeLine(std::string_view line) {
  const std::string_view answer = Trim(line);
  const int position = PositionOf(asked_, answer.empty() ? "No" : answer);
  if (position == kClosed) return Ask();
  if (position != PositionOf(asked_, "Yes")) ++declined_;
  const auto on_click = std::exchange(on_click_, nullptr);
  StopAsking();
  on_click(position);
}

void ConsoleDialogs::CloseBox(BoxId box) {
  if (box != asked_box_) return;
  StopAsking();
  ++declined_;
  output_.Error("No");
}

void ConsoleDialogs::StopAsking() {
  if (asked_box_ != 0) watcher_.Unwatch(input_);
  asked_box_ = 0;
}

std::optional<std::string> ConsoleDialogs::NextAnswer() {
  if (answers_.empty()) return std::nullopt;
  std::string answer = std::move(answers_.front());
  answers_.pop_front();
  return answer;
}

std::optional<std::string> ConsoleDialogs::AnswerOrNone(const std::string& question) {
  const auto answer = NextAnswer();
  output_.Error(question + " " + answer.value_or("(no answer)"));
  return answer;
}

std::optional<std::string> ConsoleDialogs::AskText(const std::string& /*title*/, const std::string& prompt,
                                                   const std::string& /*initial*/) {
  return AnswerOrNone(prompt);
}

std::optional<std::string> ConsoleDialogs::ChooseFile(const std::string& title, const std::string& /*filter*/,
                                                      const std::string& /*folder*/) {
  return AnswerOrNone(title);
}

std::optional<std::string> ConsoleDialogs::ChooseFolder(const std::string& title, const std::string& /*folder*/) {
  return AnswerOrNone(title);
}

}  // namespace corvane::console
