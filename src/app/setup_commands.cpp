#include "app/setup_commands.h"

#include <utility>

#include "base/text.h"
#include "state/link_state.h"

namespace corvane {

namespace {

constexpr Phrase kNotTried{1601, "This was not tried: an operation is running. Wait until it ends, or cancel it."};

/// What tells one unit from another while a plan changes.
std::string AddressOf(const SetupUnit& av_Unit) {
  return ToLower(Trim(av_Unit.relay)) + "\n" + std::string(Trim(av_Unit.id));
}

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
  SetupClock clock = Run<SetupClock>([&] { return p_.tries.SetClock(av_Plan, al_Row); });
  if (clock.was_set) clocks_set_.insert(AddressOf(av_Plan.units[al_Row - 1]));
  return clock;
}

void SetupCommands::NoteClocks(const SetupPlan& av_Plan) {
  if (clocks_set_.empty()) return;
  RoundRecord counts;
  p_.history.BeginRound(RoundKind::Command, RoundStart::ByHand, false);
  for (std::size_t row = 1; row <= av_Plan.units.size(); ++row) {
    if (!clocks_set_.contains(AddressOf(av_Plan.units[row - 1]))) continue;
    ContactRecord contact;
    contact.outcome = Outcome::Answered;
    contact.command = kSetDate;
    contact.tries = 1;
    contact.clock_offset = 0;
    p_.history.NoteContact(static_cast<std::int64_t>(row), std::move(contact));
    ++counts.asked;
    ++counts.answered;
  }
  p_.history.EndRound(counts);
  clocks_set_.clear();
}

SetupAnswer SetupCommands::TryServer(const SetupPlan& av_Plan) {
  return Run<SetupAnswer>([&] { return p_.tries.TryServer(av_Plan); });
}

SetupAnswer SetupCommands::TryBackup(const SetupPlan& av_Plan) {
  return Run<SetupAnswer>([&] { return p_.tries.TryBackup(av_Plan, p_.app); });
}

bool SetupCommands::PutIn(SetupPlan& av_Plan) {
  if (p_.slot.Taken()) return false;
  bool done = false;
  p_.operations.RunCommand("Setup", [&] {
    p_.writer.PutIn(av_Plan);
    done = true;
  });
  if (!done) return false;
  const bool saved = p_.settings.SaveSettings();
  if (saved) {
    NoteClocks(av_Plan);
  } else {
    av_Plan = PlanOf();
  }
  p_.watch.Write();
  return saved;
}

std::vector<Phrase> SetupCommandPhrases() {
  return {kNotTried};
}

}  // namespace corvane
