#pragma once

#include <cstdint>

#include "form/form.h"
#include "link/port_link.h"
#include "rounds/unit_session.h"
#include "state/link_state.h"
#include "trace/trace.h"
#include "ui/progress_bar.h"

namespace corvane {

/// Tests a port and looks for the one the base station answers on.
class PortFinder {
 public:
  PortFinder(Form& av_Form, LinkState& av_Link, PortLink& av_Port, UnitSession& av_Session, ProgressBars& av_Bars,
             Trace& av_Trace);

  /// Probes the port selected in `Cmb_Port[ai_Index]`: true when something answered. **Yields.**
  bool TestBaseUnit(std::int16_t ai_Index);
  /// Tries the ports of `Cmb_Port[ai_Index]` until one answers, which stays selected; false when none did. **Yields.**
  bool FindPort(std::int16_t ai_Index);

 private:
  bool Probe(std::int16_t ai_Index);

  Form& form_;
  LinkState& link_;
  PortLink& port_;
  UnitSession& session_;
  ProgressBars& bars_;
  Trace& trace_;
};

}  // namespace corvane
