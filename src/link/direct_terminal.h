#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <string>

#include "form/form.h"
#include "link/exchange.h"
#include "link/port_link.h"
#include "platform/event_loop.h"
#include "state/command_states.h"
#include "state/link_state.h"
#include "state/run_flags.h"
#include "trace/trace.h"

namespace corvane {

/// The direct terminal: a person types raw commands to the base station and reads what comes back.
class DirectTerminal {
 public:
  DirectTerminal(Form& av_Form, LinkState& av_Link, const RunFlags& av_Flags, EventLoop& av_Loop, PortLink& av_Port,
                 Exchange& av_Exchange, CommandStates& av_States, Trace& av_Trace);

  /// True from the opening of the port to its close.
  [[nodiscard]] bool Listening() const { return link_.DirectListening; }
  /// Opens the radio port, sends the text of `Txt_Direct` and listens until the line is silent for the data time-out (1
  /// to 600 seconds), an hour after the last line sent, the user cancels, unticks `Chk_Direct` or the port fails.
  ///
  /// The caller holds the operation slot. False when the port did not open or failed. **Yields.**
  bool Run();
  /// Sends the text of `Txt_Direct` in the session that is listening.
  void SendNext();
  /// Something arrived: the wait begins anew.
  void OnData();

 private:
  void SendWaiting();
  void RestartWait();
  [[nodiscard]] bool Ended() const;
  void Finish();

  Form& form_;
  LinkState& link_;
  const RunFlags& flags_;
  EventLoop& loop_;
  PortLink& port_;
  Exchange& exchange_;
  CommandStates& states_;
  Trace& trace_;
  std::unique_ptr<Timer> timer_;
  std::deque<std::string> waiting_;  ///< lines to be sent
  bool silent_ = false;
  std::int64_t last_sent_ = 0;  ///< monotonic milliseconds
};

}  // namespace corvane
