#include "rounds/sessions.h"

#include <cmath>

#include "base/format.h"
#include "base/numbers.h"
#include "ui/mouse_pointer.h"

namespace corvane {

std::pair<std::int64_t, std::int64_t> Sessions::UnitRange(bool ab_All) const {
  if (ab_All) return {1, p_.registry.Units.count()};
  const std::int64_t selected = p_.units.Selected();
  return {selected, selected};
}

bool Sessions::ProcessAllUnits(bool ab_All, std::int32_t al_ConnectionType, std::int16_t ai_Command) {
  std::string result = ab_All ? "all selected units" : "current unit";
  const std::int64_t selected = p_.units.Selected();
  Run run;
  std::tie(run.first, run.last) = UnitRange(ab_All);
  MarkUnits(run, al_ConnectionType);
  if (run.marked == 0) {
    result = "No units to download by radio";
  } else {
    if (!ConfirmCommand(ai_Command, result)) return false;
    const BusyPointer busy(p_.form.Frm_Main);
    p_.port.ClearEverything();
    if (p_.port.OpenPort(PortIndexForUnit(al_ConnectionType))) {
      RunMarkedUnits(run, ai_Command);
    } else {
      ++p_.flags.problems;
    }
    FinishRun();
    result = "Finished";
  }
  p_.flags.problems += run.marked - run.well;
  const bool ok = Summarise(run, ai_Command, result);
  if (!p_.link.UserCancel) p_.trace.Status(result + "...");
  ReselectUnit(selected);
  p_.capture.CloseOutputFile();
  p_.port.ClearEverything();
  p_.exchange.SetStateFinished();
  p_.port.ClosePort();
  return ok;
}

void Sessions::MarkUnits(Run& av_Run, std::int32_t al_ConnectionType) {
  const bool has_port = PortIndexForUnit(al_ConnectionType) <= 1;
  for (std::int64_t index = av_Run.first; index <= av_Run.last; ++index) {
    if (!p_.registry.Units.Has(index)) continue;
    Unit& unit = p_.registry.Units[index];
    unit.Tries = 0;
    unit.Stored = 0;
    unit.Problem = true;
    unit.Marked = has_port && unit.Active != 0 && unit.GetFrom == al_ConnectionType;
    if (!unit.Marked) continue;
    ++av_Run.marked;
    p_.form.Lst_Units.SetMark(index - 1, RowMark::None);
  }
}

void Sessions::RunMarkedUnits(Run& av_Run, std::int16_t ai_Command) {
  p_.bars.Unit.Initialise(av_Run.marked);
  for (std::int64_t index = av_Run.first; index <= av_Run.last; ++index) {
    if (!p_.registry.Units.Has(index) || !p_.registry.Units[index].Marked) continue;
    if (!RunOneUnit(av_Run, index, ai_Command)) return;
    ++av_Run.done;
    p_.bars.Unit.SetValue(av_Run.done);
  }
}

bool Sessions::RunOneUnit(Run& av_Run, std::int64_t al_Index, std::int16_t ai_Command) {
  p_.form.Lbl_Try.SetText("1");
  for (std::int64_t attempt = 1;;) {
    const bool failed = !Attempt(av_Run, al_Index, ai_Command);
    ShowHowItEnded(al_Index, failed);
    if (EndsSession(av_Run)) return false;
    if (!failed) ++av_Run.well;
    p_.writer.SendEscape();
    p_.pauser.Pause(std::llround(LeadingNumber(p_.form.Txt_Timeout[2].text()) * 1000));
    p_.bars.Unit.Increment();
    p_.files.RefreshFileListBox();
    if (EndsSession(av_Run)) return false;
    if (!failed) return true;
    p_.form.Lbl_Try.SetText(std::to_string(++attempt));
    if (static_cast<double>(attempt) > LeadingNumber(p_.form.Txt_MaxRetries.text())) return true;
  }
}

void Sessions::ShowHowItEnded(std::int64_t al_Index, bool ab_Failed) {
  if (p_.link.UserCancel || al_Index > p_.form.Lst_Units.count()) return;
  p_.form.Lst_Units.SetMark(al_Index - 1, ab_Failed || p_.link.Timeout ? RowMark::Problem : RowMark::Well);
}

bool Sessions::Attempt(Run& av_Run, std::int64_t al_Index, std::int16_t ai_Command) {
  ReselectUnit(al_Index);
  Unit& unit = p_.registry.Units[al_Index];
  if (unit.Tries < INT16_MAX) ++unit.Tries;
  p_.session.ProcessUnit(ai_Command);
  p_.registry.Units[al_Index].Problem = false;
  p_.registry.Units[al_Index].Stored += p_.session.Stored();
  if (!p_.link.HalvexError || !p_.link.ContinueOk()) return true;
  ++av_Run.failed;
  p_.trace.TraceDecision("HVError: " + p_.link.ResultTextOf(p_.link.ResultCode));
  p_.registry.Units[al_Index].Problem = true;
  p_.trace.TraceDecision("  -so TryAgain: True");
  p_.link.HalvexError = false;
  return false;
}

bool Sessions::EndsSession(Run& av_Run) {
  if (p_.link.ContinueOk()) return false;
  ++av_Run.failed;
  p_.trace.TraceDecision(p_.link.UserCancel ? "UserCancel, so quit all units" : "Timeout, so quit all units");
  return true;
}

void Sessions::FinishRun() {
  const double tries = LeadingNumber(p_.form.Lbl_Try.text());
  if (LeadingNumber(p_.form.Txt_MaxRetries.text()) <= tries) {
    p_.trace.TraceDecision(p_.form.Lbl_Try.text() + " tries - do next unit....");
  }
  p_.trace.TraceDecision("Finish 'ProcessAllUnits' - closing output file:" +
                         std::to_string(p_.capture.OutputFileNumber()) + " just in case");
  p_.capture.CloseOutputFile();
}

bool Sessions::Summarise(const Run& av_Run, std::int16_t ai_Command, std::string& as_Result) {
  std::int64_t with_problems = 0;
  for (const Unit& unit : p_.registry.Units) {
    if ((unit.GetFrom == kFromRadio || unit.GetFrom == kFromHandHeld) && unit.Tries > 1) ++with_problems;
  }
  if (with_problems > 0) {
    const std::string text = std::to_string(with_problems) + " unit(s) with problems";
    p_.trace.TraceDecision(text);
    as_Result = "Finished (" + text + ")";
  }
  if (ai_Command == kDownload) RecordDownloadTime();
  return with_problems == 0 || av_Run.failed == 0;
}

void Sessions::RecordDownloadTime() {
  p_.form.Lbl_LastDownload.SetText(FormatDate(p_.loop.Now(), kShownDatePattern));
  p_.schedule.CalculateNextDownload();
}

bool Sessions::ConfirmCommand(std::int16_t ai_Command, const std::string& as_What) {
  std::string question;
  switch (ai_Command) {
    case kSetDate:
      question = "Set date in " + as_What + " to: " + GeneralDate(p_.loop.Now());
      break;
    case kSetLogPeriod: {
      const std::string& period = p_.form.Cmb_LogPeriod.shown_text();
      const auto seconds = ParseTimeOfDay(period);
      question = "Set log period in " + as_What + " to: " + (seconds ? DurationText(*seconds, false) : period);
      break;
    }
    case kSetMode:
    case kSetDelays:
      question = std::string(CommandOf(ai_Command).name) + " in " + as_What +
                 " to: " + (ai_Command == kSetMode ? p_.form.Lbl_Mode.text() : p_.form.Txt_Delays.text());
      break;
    default:
      return true;
  }
  return p_.messages.Confirm(question) && p_.messages.Confirm(question + "\r\nAre you really sure");
}

}  // namespace corvane
