#include "rounds/port_finder.h"

#include "base/scoped_value.h"
#include "ui/mouse_pointer.h"

namespace corvane {

bool PortFinder::TestBaseUnit(std::int16_t ai_Index) {
  p_.link.UserCancel = false;
  p_.link.HalvexError = false;
  p_.link.Timeout = false;
  const BusyPointer busy(p_.form.Frm_Main);
  const bool answered = Probe(ai_Index);
  p_.port.ClearEverything();
  return answered;
}

bool PortFinder::Probe(std::int16_t ai_Index) {
  const ScopedValue<bool> testing(p_.link.TestingPort, true);
  ShowSilence(ai_Index, false);
  error_.clear();
  if (!p_.port.OpenPort(ai_Index)) return false;
  p_.session.ProcessUnit(kTestBaseStation);
  const bool answered = p_.link.ContinueOk();
  if (p_.link.HalvexError) error_ = p_.link.ResultTextOf(p_.link.ResultCode);
  failed_here_ = p_.link.HalvexError && p_.link.ResultCode == kCommsErrorResult;
  if (!answered && !p_.link.UserCancel) ShowSilence(ai_Index, true);
  p_.port.ClosePort();
  return answered;
}

void PortFinder::ShowSilence(std::int16_t ai_Index, bool ab_Silent) {
  p_.form.Lbl_PortAnswer[ai_Index].SetText(ab_Silent ? p_.form.Cmb_Port[ai_Index].shown_text() + ":" : "");
  p_.form.Lbl_NoAnswer[ai_Index].SetVisible(ab_Silent);
}

bool PortFinder::FindPort(std::int16_t ai_Index) {
  Selector& ports = p_.form.Cmb_Port[ai_Index];
  const std::int32_t remembered = ports.SelectedItemData();
  p_.bars.Unit.Initialise(ports.count());
  bool found = false;
  // Intended: the numbers tried are 1 to the count of entries, whatever numbers the entries carry.
  for (std::int32_t number = 1; number <= ports.count() && !found; ++number) {
    ports.SelectByItemData(number);
    found = TestBaseUnit(ai_Index);
    if (p_.link.UserCancel) break;
    p_.bars.Unit.SetValue(number);
  }
  if (found) {
    p_.trace.Status("Found Pelvaro unit on " + ports.shown_text());
  } else {
    ports.SelectByItemData(remembered);
    ShowSilence(ai_Index, false);
    // That of the last number, which nobody chose.
    p_.port.ForgetProblem();
    p_.trace.Status("Pelvaro not found");
  }
  p_.bars.Unit.Clear();
  p_.bars.Unit.Hide();
  return found;
}

}  // namespace corvane
