#include "app/setup_commands.h"

#include <utility>

namespace corvane {

namespace {

constexpr Phrase kNotTried{1601, "This was not tried: an operation is running. Wait until it ends, or cancel it."};

}  // namespace

void SetupCommands::SetPhrases(const Phrases& av_Phrases) {
  say_ = av_Phrases;
  p_.tries.SetPhrases(av_Phrases);
}

template <class Answer, class Try>
Answer SetupCommands::Run(const Try& av_Try) {
  Answer answer;
  answer.text = say_.Text(kNotTried);
  p_.operations.RunOperation("Setup", [&] { answer = av_Try(); });
  return answer;
}

SetupAnswer SetupCommands::TryPort(const SetupPlan& av_Plan) {
  return Run<SetupAnswer>([&] { return p_.tries.TryPort(av_Plan); });
}

SetupClock SetupCommands::AskClock(const SetupPlan& av_Plan, std::size_t al_Row) {
  return Run<SetupClock>([&] { return p_.tries.AskClock(av_Plan, al_Row); });
}

SetupClock SetupCommands::SetClock(const SetupPlan& av_Plan, std::size_t al_Row) {
  return Run<SetupClock>([&] { return p_.tries.SetClock(av_Plan, al_Row); });
}

SetupAnswer SetupCommands::TryServer(const SetupPlan& av_Plan) {
  return Run<SetupAnswer>([&] { return p_.tries.TryServer(av_Plan); });
}

SetupAnswer SetupCommands::TryBackup(const SetupPlan& av_Plan) {
  return Run<SetupAnswer>([&] { return p_.tries.TryBackup(av_Plan, p_.app); });
}

bool SetupCommands::PutIn(const SetupPlan& av_Plan) {
  if (p_.slot.Taken()) return false;
  bool done = false;
  p_.operations.RunCommand("Setup", [&] {
    p_.writer.PutIn(av_Plan);
    done = true;
  });
  if (!done) return false;
  const bool saved = p_.settings.SaveSettings();
  p_.watch.Write();
  return saved;
}

std::vector<Phrase> SetupCommandPhrases() {
  return {kNotTried};
}

}  // namespace corvane
