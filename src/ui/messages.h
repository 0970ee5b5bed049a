#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "base/scoped_value.h"
#include "form/form.h"
#include "platform/dialogs.h"
#include "platform/event_loop.h"
#include "state/run_flags.h"
#include "trace/trace.h"

namespace corvane {

/// Message-box styles (buttons plus icon plus default button) and answers, in the standard encoding.
enum MessageStyle : std::int32_t {
  kOkOnly = 0,
  kOkCancel = 1,
  kAbortRetryIgnore = 2,
  kYesNoCancel = 3,
  kYesNo = 4,
  kRetryCancel = 5,
  kStopIcon = 16,
  kQuestionIcon = 32,
  kExclamationIcon = 48,
  kInformationIcon = 64,
  kSecondDefault = 256,
  kThirdDefault = 512,
};
enum MessageAnswer : std::int32_t {
  kAnswerOk = 1,
  kAnswerCancel = 2,
  kAnswerAbort = 3,
  kAnswerRetry = 4,
  kAnswerIgnore = 5,
  kAnswerYes = 6,
  kAnswerNo = 7,
};

/// Everything the system says to a person in a box. Every message is logged; none can stop an unattended run.
class Messages {
 public:
  /// What the boxes work with; all must outlive it.
  struct Parts {
    Form& form;
    const RunFlags& flags;
    EventLoop& loop;
    Dialogs& dialogs;
    Trace& trace;
  };
  explicit Messages(const Parts& av_Parts) : p_(av_Parts) {}

  /// Shows a message with one button and waits for it. **Yields.**
  ///
  /// In an automatic run, while automatic download is on and in the close steps it goes through the timed box, once for
  /// each kind (`as_Kind`; the text itself when empty) and round; the rest goes to the log only. See `OneBox` too.
  void Show(std::string_view as_Text, std::string_view as_Kind = {}, BoxIcon av_Icon = BoxIcon::Information);
  /// Asks `as_Question` + " ?"; true only for Yes. Unanswered for 5 minutes, or while closing, it is No. **Yields.**
  /// `as_About`: the unit that it is about, for the title; `al_Default`: `kSecondDefault` makes No the default button.
  [[nodiscard]] bool Confirm(std::string_view as_Question, std::string_view as_About = {}, std::int32_t al_Default = 0);
  /// The same with `as_Text` as it stands. **Yields.**
  [[nodiscard]] bool Ask(std::string_view as_Text, std::string_view as_About = {}, std::int32_t al_Default = 0);
  /// Asks for `ai_Seconds` at most, with No as the default button; none when nobody has answered. **Yields.**
  [[nodiscard]] std::optional<bool> AskTimed(std::string_view as_Text, std::int16_t ai_Seconds);
  /// Shows the timed message box, which answers itself after its count-down. **Yields.**
  ///
  /// `al_Style` as `MessageStyle`; `ai_Seconds` of 0 or less means 10. Returns a `MessageAnswer`. While the program is
  /// being ended by a signal nothing is shown and the time-out answer returns at once. With a kind it is shown once for
  /// each round where `Show` is.
  std::int32_t ShowTimedMessage(std::string_view as_Message, std::int32_t al_Style, std::string_view as_Title = {},
                                std::int16_t ai_Seconds = 0, std::string_view as_Kind = {});
  /// While it lives, where `ab_On`, what goes wrong is shown in one timed box, the first; the rest goes to the log.
  class OneBox {
   public:
    explicit OneBox(Messages& av_Messages, bool ab_On = true)
        : on_(av_Messages.one_box_, ab_On || av_Messages.one_box_), shown_(av_Messages.box_shown_, false) {}

   private:
    ScopedValue<bool> on_;
    ScopedValue<bool> shown_;
  };
  /// While it lives no timed box is shown or logged: whoever holds it tells what went wrong.
  class Silence {
   public:
    explicit Silence(Messages& av_Messages) : on_(av_Messages.silent_, true) {}

   private:
    ScopedValue<bool> on_;
  };
  /// Forgets which kinds have been shown: a new round or command begins.
  void StartRound() { shown_kinds_.clear(); }

 private:
  [[nodiscard]] bool Unattended() const;
  /// Keeps in mind that a message of that kind is shown; false when one was in this round.
  bool IsFirst(std::string_view as_Kind) { return shown_kinds_.emplace(as_Kind).second; }
  [[nodiscard]] bool MustUnwind() const {
    return p_.flags.ending_silently || (p_.flags.closing && !p_.flags.releasing);
  }
  /// The position clicked; 0 after `al_Seconds` (0: no limit) or when what runs has to unwind.
  int RunBox(const BoxContents& av_Contents, std::int64_t al_Seconds, bool ab_ShowCountDown);

  Parts p_;
  std::set<std::string, std::less<>> shown_kinds_;
  bool one_box_ = false;
  bool box_shown_ = false;
  bool silent_ = false;
};

}  // namespace corvane
