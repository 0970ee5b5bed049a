#include "rounds/batch_conversion.h"

#include "ui/mouse_pointer.h"

namespace corvane {

void BatchConversion::ConvertAllUnits(bool ab_All, std::int32_t al_GetFrom, std::int32_t al_Client) {
  ResetCounters();
  const Messages::OneBox one_box(p_.messages, GoesOn(p_.form, p_.flags));
  if (!p_.conversion.InitialiseLookups()) return;
  p_.units.StoreUnitRecord();
  const std::int64_t selected = p_.units.Selected();
  const auto in_run = [=, this](std::int64_t unit) {
    const Unit& record = p_.registry.Units[unit];
    return (ab_All ? record.Active != 0 : unit == selected) && (al_GetFrom == kAny || record.GetFrom == al_GetFrom) &&
           (al_Client == kAny || record.ClientID == al_Client);
  };
  std::int64_t count = 0;
  for (std::int64_t i = 1; i <= p_.registry.Units.count(); ++i) count += in_run(i) ? 1 : 0;
  if (count > 0) ConvertUnits(in_run, count, selected);
}

void BatchConversion::ConvertUnits(const std::function<bool(std::int64_t)>& av_InRun, std::int64_t al_Count,
                                   std::int64_t al_Selected) {
  const BusyPointer busy(p_.form.Frm_Main);
  p_.port.ClearEverything();
  p_.bars.Unit.SetProcessText("Converting...");
  p_.bars.Unit.Initialise(al_Count);
  for (std::int64_t i = 1; i <= p_.registry.Units.count() && !Cancelled(p_.link, p_.flags); ++i) {
    if (!av_InRun(i)) continue;
    p_.units.Select(i);
    p_.conversion.Convert(i, p_.names.DataFileName(static_cast<std::int32_t>(i), false));
    p_.bars.Unit.Increment();
    p_.loop.Poll();
  }
  if (!Cancelled(p_.link, p_.flags)) p_.trace.Status("Finished...");
  p_.units.Select(al_Selected);
  p_.port.ClearEverything();
  const std::int64_t errors = p_.flags.error_counter;
  if (errors < 1) return;
  p_.messages.ShowTimedMessage("Convert error(s): " + std::to_string(errors), kOkOnly | kExclamationIcon);
}

}  // namespace corvane
