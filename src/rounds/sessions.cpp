#include "rounds/sessions.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "ui/mouse_pointer.h"

namespace corvane {

bool Sessions::ProcessAllUnits(bool ab_All, std::int32_t al_ConnectionType, std::int16_t ai_Command) {
  const std::int64_t selected = p_.units.Selected();
  Run run;
  run.units = p_.registry.UnitRange(ab_All, selected);
  run.what = ab_All ? "all selected units" : "current unit";
  if (!ab_All && p_.registry.Units.Has(selected)) run.name = p_.registry.Units[selected].Name;
  return Process(run, al_ConnectionType, ai_Command);
}

bool Sessions::ProcessUnits(const std::vector<std::int64_t>& av_Units, std::int32_t al_ConnectionType,
                            std::int16_t ai_Command) {
  Run run;
  run.units = {1, p_.registry.Units.count()};
  run.chosen.emplace(av_Units.begin(), av_Units.end());
  run.what = "chosen units";
  return Process(run, al_ConnectionType, ai_Command);
}

bool Sessions::Process(Run& av_Run, std::int32_t al_ConnectionType, std::int16_t ai_Command) {
  const std::int64_t selected = p_.units.Selected();
  std::string result = "No units to download by radio";
  MarkUnits(av_Run, al_ConnectionType);
  if (av_Run.marked > 0) {
    if (!p_.questions.ConfirmCommand(ai_Command, av_Run.what, av_Run.name)) return false;
    if (on_marked) on_marked(av_Run.units, ai_Command);
    RunOverPort(av_Run, al_ConnectionType, ai_Command);
    if (on_asked) on_asked();
    result = "Finished";
  }
  p_.flags.problems += av_Run.marked - av_Run.attempts.well;
  const bool ok = Summarise(av_Run, ai_Command, result);
  if (!p_.link.UserCancel) p_.trace.Status(result + "...");
  p_.units.ReselectUnit(selected);
  p_.session.ReleasePort();
  return ok;
}

void Sessions::MarkUnits(Run& av_Run, std::int32_t al_ConnectionType) {
  const bool has_port = PortIndexForUnit(al_ConnectionType) <= 1;
  for (std::int64_t index = av_Run.units.first; index <= av_Run.units.last; ++index) {
    Unit& unit = p_.registry.Units[index];
    unit.Tries = 0;
    unit.Stored = 0;
    unit.Brought = {};
    unit.Problem = true;
    const bool chosen = !av_Run.chosen || av_Run.chosen->contains(index);
    unit.Marked = chosen && has_port && unit.Active != 0 && unit.GetFrom == al_ConnectionType;
    if (!unit.Marked) continue;
    ++av_Run.marked;
    p_.form.Lst_Units.SetMark(index - 1, RowMark::None);
  }
}

void Sessions::RunOverPort(Run& av_Run, std::int32_t al_ConnectionType, std::int16_t ai_Command) {
  const BusyPointer busy(p_.form.Frm_Main);
  p_.port.ClearEverything();
  if (p_.port.OpenPort(PortIndexForUnit(al_ConnectionType))) {
    p_.attempts.AwaitQuiet();
    p_.session.BeginRound();
    if (RunMarkedUnits(av_Run, ai_Command)) AskSilentUnitsAgain(av_Run, ai_Command);
  } else {
    ++p_.flags.problems;
  }
  p_.attempts.TraceTries();
  p_.session.CloseOutputFile("Finish 'ProcessAllUnits' - closing output file:");
}

bool Sessions::RunMarkedUnits(Run& av_Run, std::int16_t ai_Command) {
  p_.bars.Unit.Initialise(av_Run.marked);
  for (std::int64_t index = av_Run.units.first; index <= av_Run.units.last; ++index) {
    if (!p_.registry.Units.Has(index) || !p_.registry.Units[index].Marked) continue;
    if (!p_.attempts.RunUnit(av_Run.attempts, index, ai_Command)) return false;
    ++av_Run.done;
    p_.bars.Unit.SetValue(av_Run.done);
  }
  return true;
}

void Sessions::AskSilentUnitsAgain(Run& av_Run, std::int16_t ai_Command) {
  const std::vector<std::int64_t> silent = std::exchange(av_Run.attempts.silent, {});
  if (silent.empty()) return;
  p_.trace.TraceDecision(std::to_string(silent.size()) + " silent unit(s) are asked once more");
  p_.bars.Unit.Initialise(static_cast<std::int64_t>(silent.size()));
  std::int64_t done = 0;
  for (const std::int64_t index : silent) {
    if (!p_.registry.Units.Has(index) || !p_.registry.Units[index].Marked) continue;
    if (!p_.attempts.RunUnit(av_Run.attempts, index, ai_Command, true)) return;
    p_.bars.Unit.SetValue(++done);
  }
}

std::int64_t Sessions::UnitsWithProblems(const Run& av_Run) const {
  if (GoesOn(p_.form, p_.flags)) return av_Run.marked - av_Run.attempts.well;
  return std::count_if(p_.registry.Units.begin(), p_.registry.Units.end(), [](const Unit& unit) {
    return (unit.GetFrom == kFromRadio || unit.GetFrom == kFromHandHeld) && unit.Tries > 1;
  });
}

bool Sessions::Summarise(const Run& av_Run, std::int16_t ai_Command, std::string& as_Result) {
  const std::int64_t with_problems = UnitsWithProblems(av_Run);
  if (with_problems > 0) {
    const std::string text = std::to_string(with_problems) + " unit(s) with problems";
    p_.trace.TraceDecision(text);
    as_Result = "Finished (" + text + ")";
  }
  if (ai_Command == kDownload && !av_Run.chosen) p_.schedule.RecordDownload();
  return with_problems == 0 || av_Run.attempts.failed == 0;
}

}  // namespace corvane
