#pragma once

#include <cstdint>
#include <string>

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
  /// What a probe works with; all must outlive it.
  struct Parts {
    Form& form;
    LinkState& link;
    PortLink& port;
    UnitSession& session;
    ProgressBars& bars;
    Trace& trace;
  };
  explicit PortFinder(const Parts& av_Parts) : p_(av_Parts) {}

  /// Probes the port selected in `Cmb_Port[ai_Index]`: true when something answered. **Yields.**
  bool TestBaseUnit(std::int16_t ai_Index);
  /// The error that the last probe ended with, which counts as an answer; empty where there was none.
  [[nodiscard]] const std::string& Error() const { return error_; }
  /// Whether that error was of this side of the line.
  [[nodiscard]] bool FailedHere() const { return failed_here_; }
  /// Tries the ports of `Cmb_Port[ai_Index]` until one answers, which stays selected; false when none did. **Yields.**
  bool FindPort(std::int16_t ai_Index);

 private:
  bool Probe(std::int16_t ai_Index);
  /// Says, or no longer says, that nothing came from the port.
  void ShowSilence(std::int16_t ai_Index, bool ab_Silent);

  Parts p_;
  std::string error_;
  bool failed_here_ = false;
};

}  // namespace corvane
