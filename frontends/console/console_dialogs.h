#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "base/status.h"
#include "console_output.h"
#include "platform/dialogs.h"
#include "platform/event_loop.h"
#include "posix/descriptor_watcher.h"

namespace corvane::console {

/// Who answers a question.
enum class Answering {
  Nobody,    ///< every question is answered No
  Yes,       ///< every yes/no question is answered Yes
  Terminal,  ///< the person at the terminal
  Script,    ///< the texts queued with `QueueAnswer`; without one, No
};

/// Boxes on a console: messages are printed and answered at once, questions as `Answering` says.
class ConsoleDialogs : public Dialogs {
 public:
  /// `input` is the descriptor that a person's answers come from.
  ConsoleDialogs(ConsoleOutput& output, DescriptorWatcher& watcher, int input, Answering answering)
      : output_(output), watcher_(watcher), input_(input), answering_(answering) {}
  ~ConsoleDialogs() override { StopAsking(); }

  BoxId OpenBox(const BoxContents& contents, std::function<void(int position)> on_click) override;
  /// Shows nothing: the console has no count-down.
  void SetCountDown(BoxId /*box*/, const std::string& /*text*/) override {}
  void CloseBox(BoxId box) override;
  /// The next queued text in a script, else none.
  std::optional<std::string> AskText(const std::string& title, const std::string& prompt,
                                     const std::string& initial) override;
  std::optional<std::string> ChooseFile(const std::string& title, const std::string& filter,
                                        const std::string& folder) override;
  std::optional<std::string> ChooseFolder(const std::string& title, const std::string& folder) override;

  /// Asks for a line; none at the end of the input, or when `ended` while it waits. A line that nobody types is shown
  /// behind the prompt, or is not when it is `secret`; then a terminal does not show it either. **Yields.**
  [[nodiscard]] std::optional<std::string> ReadLine(const std::string& prompt, EventLoop& loop, const bool& ended,
                                                    bool secret = false);

  /// Reads what comes to its end, at most `limit` bytes; fails for more, and when `ended` while it waits. **Yields.**
  [[nodiscard]] Status ReadAll(EventLoop& loop, const bool& ended, std::int64_t limit, std::string& text);

  /// Whether a person types, who can be asked once more.
  [[nodiscard]] bool HasPerson() const;

  /// Keeps an answer for the next question: a button's caption, or a text.
  void QueueAnswer(std::string text) { answers_.push_back(std::move(text)); }
  /// Questions that were not answered with Yes.
  [[nodiscard]] int declined() const { return declined_; }

 private:
  [[nodiscard]] std::optional<std::string> NextAnswer();
  [[nodiscard]] std::optional<std::string> AnswerOrNone(const std::string& question);
  [[nodiscard]] int AutomaticPosition(const BoxContents& contents);
  void Answer(const BoxContents& contents, int position, const std::function<void(int)>& on_click);
  void Ask();
  void OnInput();
  void TakeLine(std::string_view line);
  void StopAsking();
  /// Lets the input come until `enough`, or until `ended`; false at its end. **Yields.**
  bool ReadUntil(EventLoop& loop, const bool& ended, const std::function<bool()>& enough);
  /// Takes the first line that has arrived; none when none is whole.
  [[nodiscard]] std::optional<std::string> TakeTyped();

  ConsoleOutput& output_;
  DescriptorWatcher& watcher_;
  int input_;
  Answering answering_;
  std::deque<std::string> answers_;
  int declined_ = 0;
  BoxId last_box_ = 0;

  BoxId asked_box_ = 0;  ///< 0 while nobody is asked
  BoxContents asked_;
  std::function<void(int)> on_click_;
  std::string typed_;
};

}  // namespace corvane::console
