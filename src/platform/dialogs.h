// Boxes and choices that a person answers.
//
// A box is shown modal and the call returns at once; the click arrives later from the event loop (or before `OpenBox`
// returns, where an adapter answers by itself). Choices marked **Yields** run the loop until they are answered.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/status.h"

namespace corvane {

/// Icons of a box, with the standard numbers.
enum class BoxIcon : int { None = 0, Stop = 16, Question = 32, Exclamation = 48, Information = 64 };

/// What a box shows. The buttons stand left to right; positions count from 1.
struct BoxContents {
  std::string title;
  std::string text;
  std::vector<std::string> buttons;
  int default_position = 1;
  BoxIcon icon = BoxIcon::None;
  std::string count_down;  ///< text of the count-down label; empty when the box waits for ever
};

class Dialogs {
 public:
  virtual ~Dialogs() = default;
  Dialogs() = default;
  Dialogs(const Dialogs&) = delete;
  Dialogs& operator=(const Dialogs&) = delete;

  using BoxId = int;
  /// Shows a box; `on_click` gets the position of the button, or 0 when the box was closed without one. Called at most
  /// once.
  virtual BoxId OpenBox(const BoxContents& contents, std::function<void(int position)> on_click) = 0;
  /// Changes the text of the count-down label.
  virtual void SetCountDown(BoxId box, const std::string& text) = 0;
  /// Takes the box away; its click is not called any more.
  virtual void CloseBox(BoxId box) = 0;

  /// Asks for a line of text; none when cancelled. **Yields.**
  virtual std::optional<std::string> AskText(const std::string& title, const std::string& prompt,
                                             const std::string& initial) = 0;
  /// Asks for an existing file; `filter` is "description|pattern" pairs joined by "|"; none when cancelled. **Yields.**
  virtual std::optional<std::string> ChooseFile(const std::string& title, const std::string& filter,
                                                const std::string& folder) = 0;
  /// Asks for a folder; none when cancelled. **Yields.**
  virtual std::optional<std::string> ChooseFolder(const std::string& title, const std::string& folder) = 0;
};

}  // namespace corvane
