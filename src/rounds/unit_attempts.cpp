#include "rounds/unit_attempts.h"

#include <cmath>
#include <string>

#include "base/numbers.h"

namespace corvane {

bool UnitAttempts::RunUnit(AttemptCounts& av_Counts, std::int64_t al_Index, std::int16_t ai_Command) {
  p_.form.Lbl_Try.SetText("1");
  for (std::int64_t attempt = 1;;) {
    const bool failed = !Attempt(av_Counts, al_Index, ai_Command);
    ShowHowItEnded(al_Index, failed);
    if (EndsSession(av_Counts)) return false;
    const DownloadTally& brought = p_.registry.Units[al_Index].Brought;
    if (!failed && brought.problem.empty()) ++av_Counts.well;
    const bool last_try = !failed || brought.one_try_only;
    p_.writer.SendEscape();
    p_.pauser.Pause(std::llround(LeadingNumber(p_.form.Txt_Timeout[2].text()) * 1000));
    p_.bars.Unit.Increment();
    p_.files.RefreshFileListBox();
    if (EndsSession(av_Counts)) return false;
    if (last_try) return true;
    p_.form.Lbl_Try.SetText(std::to_string(++attempt));
    if (static_cast<double>(attempt) > LeadingNumber(p_.form.Txt_MaxRetries.text())) return true;
  }
}

bool UnitAttempts::Attempt(AttemptCounts& av_Counts, std::int64_t al_Index, std::int16_t ai_Command) {
  p_.units.ReselectUnit(al_Index);
  Unit& unit = p_.registry.Units[al_Index];
  if (unit.Tries < INT16_MAX) ++unit.Tries;
  p_.session.ProcessUnit(ai_Command);
  p_.registry.Units[al_Index].Problem = false;
  p_.registry.Units[al_Index].Stored += p_.session.Tally().stored;
  p_.registry.Units[al_Index].Brought = p_.session.Tally();
  if (!p_.link.HalvexError || !p_.link.ContinueOk()) return true;
  ++av_Counts.failed;
  p_.trace.TraceDecision("HVError: " + p_.link.ResultTextOf(p_.link.ResultCode));
  p_.registry.Units[al_Index].Problem = true;
  p_.trace.TraceDecision("  -so TryAgain: True");
  p_.link.HalvexError = false;
  return false;
}

void UnitAttempts::ShowHowItEnded(std::int64_t al_Index, bool ab_Failed) {
  if (p_.link.UserCancel || al_Index > p_.form.Lst_Units.count()) return;
  const bool well = !ab_Failed && !p_.link.Timeout && p_.registry.Units[al_Index].Brought.problem.empty();
  p_.form.Lst_Units.SetMark(al_Index - 1, well ? RowMark::Well : RowMark::Problem);
}

bool UnitAttempts::EndsSession(AttemptCounts& av_Counts) {
  if (p_.link.ContinueOk()) return false;
  ++av_Counts.failed;
  p_.trace.TraceDecision(p_.link.UserCancel ? "UserCancel, so quit all units" : "Timeout, so quit all units");
  return true;
}

void UnitAttempts::TraceTries() {
  const std::string& tries = p_.form.Lbl_Try.text();
  if (LeadingNumber(p_.form.Txt_MaxRetries.text()) > LeadingNumber(tries)) return;
  p_.trace.TraceDecision(tries + " tries - do next unit....");
}

}  // namespace corvane
