#include "rounds/port_finder.h"

#include "base/scoped_value.h"
#include "ui/mouse_pointer.h"

namespace corvane {

PortFinder::PortFinder(Form& av_Form, LinkState& av_Link, PortLink& av_Port, UnitSession& av_Session,
                       ProgressBars& av_Bars, Trace& av_Trace)
    : form_(av_Form), link_(av_Link), port_(av_Port), session_(av_Session), bars_(av_Bars), trace_(av_Trace) {}

bool PortFinder::TestBaseUnit(std::int16_t ai_Index) {
  link_.UserCancel = false;
  link_.HalvexError = false;
  link_.Timeout = false;
  const BusyPointer busy(form_.Frm_Main);
  const bool answered = Probe(ai_Index);
  port_.ClearEverything();
  return answered;
}

bool PortFinder::Probe(std::int16_t ai_Index) {
  const ScopedValue<bool> testing(link_.TestingPort, true);
  if (!port_.OpenPort(ai_Index)) return false;
  session_.ProcessUnit(kTestBaseStation);
  const bool answered = link_.ContinueOk();
  port_.ClosePort();
  return answered;
}

bool PortFinder::FindPort(std::int16_t ai_Index) {
  Selector& ports = form_.Cmb_Port[ai_Index];
  const std::int32_t remembered = ports.SelectedItemData();
  bars_.Unit.Initialise(ports.count());
  bool found = false;
  // Intended: the numbers tried are 1 to the count of entries, whatever numbers the entries carry.
  for (std::int32_t number = 1; number <= ports.count() && !found; ++number) {
    ports.SelectByItemData(number);
    found = TestBaseUnit(ai_Index);
    if (link_.UserCancel) break;
    bars_.Unit.SetValue(number);
  }
  if (found) {
    trace_.Status("Found Pelvaro unit on " + ports.shown_text());
  } else {
    ports.SelectByItemData(remembered);
    trace_.Status("Pelvaro not found");
  }
  bars_.Unit.Clear();
  bars_.Unit.Hide();
  return found;
}

}  // namespace corvane
