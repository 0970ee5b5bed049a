#include "ui/messages.h"

#include <array>
#include <memory>
#include <utility>

#include "state/app_info.h"

namespace corvane {
namespace {

constexpr std::int64_t kQuestionSeconds = 300;
constexpr std::int16_t kTimedBoxSeconds = 10;

/// One button set: captions, the answer of each position and the answer when the count-down ends.
struct ButtonSet {
  std::array<const char*, 3> captions;
  std::array<std::int32_t, 3> answers;
  std::int32_t at_timeout;
};

constexpr std::array<ButtonSet, 6> kButtonSets = {{
    {{"Ok"}, {kAnswerOk}, kAnswerOk},
    {{"Ok", "Cancel"}, {kAnswerOk, kAnswerCancel}, kAnswerOk},
    // Intended: Retry answers as Ignore; callers of this set know only two ways on.
    {{"Abort", "Retry", "Ignore"}, {kAnswerAbort, kAnswerIgnore, kAnswerIgnore}, kAnswerAbort},
    {{"Yes", "No", "Cancel"}, {kAnswerYes, kAnswerNo, kAnswerCancel}, kAnswerYes},
    {{"Yes", "No"}, {kAnswerYes, kAnswerNo}, kAnswerYes},
    {{"Retry", "Cancel"}, {kAnswerRetry, kAnswerCancel}, kAnswerCancel},
}};

const ButtonSet& ButtonSetOf(std::int32_t style) {
  const auto index = static_cast<std::size_t>(style & 7);
  return kButtonSets[index < kButtonSets.size() ? index : 0];
}

BoxIcon IconOf(std::int32_t style) {
  const int icon = style & 0x70;
  return icon == 16 || icon == 32 || icon == 48 || icon == 64 ? static_cast<BoxIcon>(icon) : BoxIcon::None;
}

int DefaultPosition(std::int32_t style) {
  if ((style & kThirdDefault) != 0) return 3;
  return (style & kSecondDefault) != 0 ? 2 : 1;
}

}  // namespace

bool Messages::Unattended() const {
  return one_box_ || p_.flags.automatic_run || p_.flags.releasing || p_.form.Chk_Automatic.ticked();
}

void Messages::Show(std::string_view as_Text, std::string_view as_Kind, BoxIcon av_Icon) {
  if (Unattended()) {
    if (IsFirst(as_Kind.empty() ? as_Text : as_Kind)) {
      ShowTimedMessage(as_Text, kOkOnly | static_cast<std::int32_t>(av_Icon));
    } else {
      p_.trace.LogWrite("Message: " + std::string(as_Text));
    }
    return;
  }
  p_.trace.LogWrite("Message: " + std::string(as_Text));
  if (p_.flags.ending_silently) return;
  BoxContents contents;
  contents.title = kProductName;
  contents.text = as_Text;
  contents.buttons = {"Ok"};
  contents.icon = av_Icon;
  RunBox(contents, 0, false);
}

bool Messages::Confirm(std::string_view as_Question, std::string_view as_About, std::int32_t al_Default) {
  return Ask(std::string(as_Question) + " ?", as_About, al_Default);
}

bool Messages::Ask(std::string_view as_Text, std::string_view as_About, std::int32_t al_Default) {
  BoxContents contents;
  contents.title = (as_About.empty() ? "" : std::string(as_About) + " - ") + std::string(kProductName);
  contents.text = as_Text;
  contents.buttons = {"Yes", "No"};
  contents.default_position = DefaultPosition(al_Default);
  contents.icon = BoxIcon::Question;
  const bool yes = !p_.flags.ending_silently && RunBox(contents, kQuestionSeconds, false) == 1;
  p_.trace.LogWrite("Question: " + contents.text + (yes ? " Yes" : " No"));
  return yes;
}

std::optional<bool> Messages::AskTimed(std::string_view as_Text, std::int16_t ai_Seconds) {
  BoxContents contents;
  contents.title = kProductName;
  contents.text = as_Text;
  contents.buttons = {"Yes", "No"};
  contents.default_position = 2;
  contents.icon = BoxIcon::Question;
  contents.count_down = std::to_string(ai_Seconds);
  const int position = p_.flags.ending_silently ? 0 : RunBox(contents, ai_Seconds, true);
  constexpr std::array kAnswers = {" (no answer)", " Yes", " No"};
  p_.trace.LogWrite("Question: " + contents.text + kAnswers[static_cast<std::size_t>(position)]);
  return position == 0 ? std::nullopt : std::optional(position == 1);
}

std::int32_t Messages::ShowTimedMessage(std::string_view as_Message, std::int32_t al_Style, std::string_view as_Title,
                                        std::int16_t ai_Seconds, std::string_view as_Kind) {
  const ButtonSet& set = ButtonSetOf(al_Style);
  if (silent_) return set.at_timeout;
  p_.trace.LogWrite("Message: " + std::string(as_Message));
  if (p_.flags.ending_silently) return set.at_timeout;
  if (!as_Kind.empty() && Unattended() && !IsFirst(as_Kind)) return set.at_timeout;
  if (one_box_ && std::exchange(box_shown_, true)) return set.at_timeout;
  BoxContents contents;
  contents.title = as_Title.empty() ? kProductName : as_Title;
  contents.text = as_Message;
  for (const char* caption : set.captions) {
    if (caption != nullptr) contents.buttons.emplace_back(caption);
  }
  contents.default_position = DefaultPosition(al_Style);
  contents.icon = IconOf(al_Style);
  const std::int64_t seconds = ai_Seconds <= 0 ? kTimedBoxSeconds : ai_Seconds;
  contents.count_down = std::to_string(seconds);
  const int position = RunBox(contents, seconds, true);
  return position == 0 ? set.at_timeout : set.answers[static_cast<std::size_t>(position - 1)];
}

int Messages::RunBox(const BoxContents& av_Contents, std::int64_t al_Seconds, bool ab_ShowCountDown) {
  struct Answer {
    bool given = false;
    int position = 0;
  };
  const auto answer = std::make_shared<Answer>();
  std::int64_t left = al_Seconds;
  bool out_of_time = false;
  Dialogs::BoxId box = 0;
  std::unique_ptr<Timer> timer;
  timer = p_.loop.MakeTimer([&] {
    // Whatever runs beneath the box, it closes when its time is over.
    if (--left < 1) {
      out_of_time = true;
      timer->Stop();
      return p_.dialogs.CloseBox(box);
    }
    if (ab_ShowCountDown) p_.dialogs.SetCountDown(box, std::to_string(left));
  });
  box = p_.dialogs.OpenBox(av_Contents, [answer](int position) { *answer = {true, position}; });
  if (al_Seconds > 0) timer->Start(1000);
  while (!answer->given && !out_of_time && !MustUnwind()) p_.loop.Yield();
  timer->Stop();
  if (!answer->given && !out_of_time) p_.dialogs.CloseBox(box);
  return answer->position;
}

}  // namespace corvane
