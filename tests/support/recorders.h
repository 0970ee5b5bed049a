// Fakes that record what was shown, asked and started.
#pragma once

#include <deque>
#include <functional>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "form/control.h"
#include "form/form_view.h"
#include "platform/dialogs.h"
#include "platform/shell.h"

namespace corvane::test {

/// Records every change as "<name>:<aspect number>".
class RecordingView : public FormView {
 public:
  void ControlChanged(const Control& control, Aspect aspect, std::size_t) override {
    changes.push_back(control.name() + ":" + std::to_string(static_cast<int>(aspect)));
  }
  void RepaintNow(const Control&) override {}

  std::vector<std::string> changes;
};

/// Answers boxes from a queue of positions; without an answer the box stays open (0 in `open_boxes` terms: unanswered).
class RecordingDialogs : public Dialogs {
 public:
  BoxId OpenBox(const BoxContents& contents, std::function<void(int)> on_click) override {
    boxes.push_back(contents);
    if (answer_plain_boxes && contents.buttons.size() == 1) {
      on_click(1);
    } else if (!answers.empty()) {
      const int position = answers.front();
      answers.pop_front();
      on_click(position);
    } else {
      ++open_boxes;
      waiting_[static_cast<BoxId>(boxes.size())] = std::move(on_click);
    }
    return static_cast<BoxId>(boxes.size());
  }
  void SetCountDown(BoxId, const std::string& text) override { count_downs.push_back(text); }
  void CloseBox(BoxId box) override {
    --open_boxes;
    waiting_.erase(box);
  }
  /// Presses a button of the box that was opened last and is still there.
  void AnswerOpenBox(int position) {
    const auto on_click = waiting_.extract(std::prev(waiting_.end())).mapped();
    --open_boxes;
    on_click(position);
  }
  std::optional<std::string> AskText(const std::string&, const std::string&, const std::string&) override {
    return text_answer;
  }
  std::optional<std::string> ChooseFile(const std::string&, const std::string& filter, const std::string&) override {
    last_filter = filter;
    return text_answer;
  }
  std::optional<std::string> ChooseFolder(const std::string&, const std::string&) override { return text_answer; }

  /// Texts of all boxes so far.
  [[nodiscard]] std::vector<std::string> Texts() const {
    std::vector<std::string> texts;
    for (const BoxContents& box : boxes) texts.push_back(box.text);
    return texts;
  }

  std::vector<BoxContents> boxes;
  std::deque<int> answers;  ///< positions for the next boxes with a choice
  bool answer_plain_boxes = true;
  int open_boxes = 0;
  std::vector<std::string> count_downs;
  std::optional<std::string> text_answer;
  std::string last_filter;

 private:
  std::map<BoxId, std::function<void(int)>> waiting_;
};

class FakeShell : public Shell {
 public:
  [[nodiscard]] std::string ProgramFolder() const override { return "/nowhere"; }
  [[nodiscard]] std::string ProgramName() const override { return "corvane"; }
  Status OpenEditor(const std::string& file) override {
    edited.push_back(file);
    return Status::Ok();
  }
  Status OpenDocument(const std::string& file) override {
    opened.push_back(file);
    return Status::Ok();
  }
  [[nodiscard]] bool HasLogOnEntry() const override { return log_on_entry.has_value(); }
  Status WriteLogOnEntry(const std::string& arguments) override {
    if (write_result.ok()) log_on_entry = arguments;
    return write_result;
  }
  Status DeleteLogOnEntry() override {
    log_on_entry.reset();
    return Status::Ok();
  }
  Status TakeInstanceLock(const std::string&) override { return Status::Ok(); }
  void Beep() override {}

  std::vector<std::string> edited;
  std::vector<std::string> opened;
  std::optional<std::string> log_on_entry;
  Status write_result;
};

}  // namespace corvane::test
