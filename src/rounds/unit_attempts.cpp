#include "rounds/unit_attempts.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "base/numbers.h"
#include "base/scoped_value.h"

namespace corvane {
namespace {

constexpr std::int64_t kReopening = 10000;  ///< milliseconds for a device that has gone to come back
constexpr std::int64_t kReopenStep = 500;
constexpr std::int64_t kListening = 300;  ///< milliseconds after the opening
constexpr std::int64_t kShortestQuiet = 500;
constexpr std::int64_t kLongestUnrest = 5000;
constexpr std::int64_t kQuietStep = 100;
constexpr std::int64_t kSilentUnits = 3;  ///< in a row, before the base station is probed
constexpr int kProbes = 2;

}  // namespace

std::int64_t UnitAttempts::UnitWait() const {
  return std::llround(LeadingNumber(p_.form.Txt_Timeout[2].text()) * 1000);
}

bool UnitAttempts::RunUnit(AttemptCounts& av_Counts, std::int64_t al_Index, std::int16_t ai_Command, bool ab_Once) {
  if (on_turn) on_turn(al_Index);
  const bool goes_on = TryUnit(av_Counts, al_Index, ai_Command, ab_Once);
  if (on_turn_over) on_turn_over(al_Index);
  return goes_on;
}

bool UnitAttempts::TryUnit(AttemptCounts& av_Counts, std::int64_t al_Index, std::int16_t ai_Command, bool ab_Once) {
  p_.form.Lbl_Try.SetText("1");
  for (std::int64_t attempt = 1;;) {
    if (!PortIsThere(av_Counts)) return false;
    const TryEnd outcome = Attempt(av_Counts, al_Index, ai_Command);
    if (on_try) on_try(al_Index, outcome);
    ShowHowItEnded(al_Index, outcome != TryEnd::Well);
    if (EndsSession(av_Counts)) return false;
    const DownloadTally& brought = p_.registry.Units[al_Index].Brought;
    if (outcome == TryEnd::Well && brought.problem.empty()) ++av_Counts.well;
    const bool last_try = outcome == TryEnd::Well || ab_Once || brought.one_try_only;
    LetUnitRest();
    p_.bars.Unit.Increment();
    p_.files.RefreshFileListBox();
    if (EndsSession(av_Counts)) return false;
    if (outcome == TryEnd::Silent) return BaseStationIsThere(av_Counts, al_Index);
    if (last_try) return true;
    p_.form.Lbl_Try.SetText(std::to_string(++attempt));
    if (static_cast<double>(attempt) > LeadingNumber(p_.form.Txt_MaxRetries.text())) return true;
  }
}

void UnitAttempts::LetUnitRest() {
  p_.writer.SendEscape();
  p_.pauser.Pause(UnitWait());
}

TryEnd UnitAttempts::Attempt(AttemptCounts& av_Counts, std::int64_t al_Index, std::int16_t ai_Command) {
  p_.units.ReselectUnit(al_Index);
  Unit& unit = p_.registry.Units[al_Index];
  if (unit.Tries < INT16_MAX) ++unit.Tries;
  p_.session.ProcessUnit(ai_Command);
  const bool goes_on = GoesOn(p_.form, p_.flags);
  p_.registry.Units[al_Index].Problem = goes_on && p_.link.UserCancel;
  p_.registry.Units[al_Index].Stored += p_.session.Tally().stored;
  KeepTally(p_.registry.Units[al_Index].Brought);
  if (p_.link.UserCancel) return TryEnd::Well;
  if (goes_on) TakeBrokenOffReply();
  if (p_.link.Timeout) return goes_on ? PassOver(av_Counts, al_Index) : TryEnd::Well;
  if (p_.link.HalvexError) return TakeError(av_Counts, al_Index);
  av_Counts.silent_in_a_row = 0;
  return TryEnd::Well;
}

void UnitAttempts::KeepTally(DownloadTally& av_Brought) const {
  const std::string earlier = av_Brought.problem;
  av_Brought = p_.session.Tally();
  // What an earlier try has kept aside is told once, also when a later one goes well.
  if (av_Brought.problem.find(earlier) == std::string::npos) av_Brought.AddProblem(earlier);
}

void UnitAttempts::TakeBrokenOffReply() {
  if (!p_.link.Timeout || !p_.link.AbortTimedOut) return;
  // The unit did answer; it fell silent because it was told to.
  p_.link.Timeout = false;
  p_.link.HalvexError = true;
  p_.link.ResultCode = kCancelledResult;
  p_.trace.Status(p_.link.ResultTextOf(kCancelledResult), StatusKind::Error);
}

TryEnd UnitAttempts::PassOver(AttemptCounts& av_Counts, std::int64_t al_Index) {
  ++av_Counts.failed;
  p_.trace.TraceDecision("Timeout, so next unit");
  p_.registry.Units[al_Index].Problem = true;
  p_.link.Timeout = false;
  p_.link.HalvexError = false;
  av_Counts.silent_in_a_row = p_.link.DataPhase ? 0 : av_Counts.silent_in_a_row + 1;
  av_Counts.silent.push_back(al_Index);
  return TryEnd::Silent;
}

TryEnd UnitAttempts::TakeError(AttemptCounts& av_Counts, std::int64_t al_Index) {
  ++av_Counts.failed;
  p_.trace.TraceDecision("HVError: " + p_.link.ResultTextOf(p_.link.ResultCode));
  p_.registry.Units[al_Index].Problem = true;
  p_.trace.TraceDecision("  -so TryAgain: True");
  p_.link.HalvexError = false;
  // A failure on this side of the line is no answer, but one may have come before it.
  if (p_.link.ResultCode != kCommsErrorResult || p_.link.DataPhase) av_Counts.silent_in_a_row = 0;
  return TryEnd::Failed;
}

bool UnitAttempts::PortIsThere(AttemptCounts& av_Counts) {
  if (p_.port.IsOpen()) return true;
  for (std::int64_t waited = 0;; waited += kReopenStep) {
    const Status opened = p_.port.Reopen();
    if (opened.ok()) {
      p_.trace.LogWrite("The port had gone and is open again");
      AwaitQuiet();
      return !EndsSession(av_Counts);
    }
    if (waited >= kReopening) {
      ++p_.flags.problems;
      p_.port.ReportGone(opened.text());
      return false;
    }
    p_.pauser.Wait(kReopenStep);
    if (EndsSession(av_Counts)) return false;
  }
}

void UnitAttempts::AwaitQuiet() {
  p_.port.BeginDiscarding();
  p_.pauser.Wait(kListening);
  if (p_.port.Discarded() > 0 && !p_.link.UserCancel) {
    p_.writer.SendEscape();
    const std::int64_t wanted = std::max(UnitWait(), kShortestQuiet);
    std::int64_t quiet = 0;
    for (std::int64_t waited = 0; quiet < wanted && waited < kLongestUnrest && !p_.link.UserCancel;
         waited += kQuietStep) {
      const std::size_t before = p_.port.Discarded();
      p_.pauser.Wait(kQuietStep);
      quiet = p_.port.Discarded() == before ? quiet + kQuietStep : 0;
    }
    p_.trace.LogWrite("Thrown away, sent for a former command: " + std::to_string(p_.port.Discarded()) + " characters");
  }
  p_.port.EndDiscarding();
}

bool UnitAttempts::BaseStationIsThere(AttemptCounts& av_Counts, std::int64_t al_Index) {
  const bool by_radio = p_.registry.Units[al_Index].GetFrom == kFromRadio;
  if (!by_radio || av_Counts.silent_in_a_row < kSilentUnits || !p_.port.IsOpen()) return true;
  av_Counts.silent_in_a_row = 0;
  const bool answered = ProbeBaseStation();
  if (EndsSession(av_Counts)) return false;
  if (answered) return true;
  ++p_.flags.problems;
  const std::string report = "The base station does not answer: the units that are left are not asked";
  p_.trace.AErrorReport(report);
  p_.trace.Status(report);
  return false;
}

bool UnitAttempts::ProbeBaseStation() {
  const ScopedValue<bool> testing(p_.link.TestingPort, true);
  bool answered = false;
  for (int probe = 0; probe < kProbes && !answered && !p_.link.UserCancel; ++probe) {
    p_.session.ProcessUnit(kTestBaseStation);
    answered = !p_.link.Timeout;
    p_.link.Timeout = false;
    p_.link.HalvexError = false;
  }
  return answered;
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
