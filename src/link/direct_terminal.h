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
  /// What the terminal works with; all must outlive it.
  struct Parts {
    Form& form;
    LinkState& link;
    const RunFlags& flags;
    EventLoop& loop;
    PortLink& port;
    Exchange& exchange;
    CommandStates& states;
    Trace& trace;
  };
  explicit DirectTerminal(const Parts& av_Parts) : p_(av_Parts) {}

  /// True from the opening of the port to its close.
  [[nodiscard]] bool Listening() const { return p_.link.DirectListening; }
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

  Parts p_;
  std::unique_ptr<Timer> timer_ = p_.loop.MakeTimer([this] { silent_ = true; });
  std::deque<std::string> waiting_;  ///< lines to be sent
  bool silent_ = false;
  std::int64_t last_sent_ = 0;  ///< monotonic milliseconds
};

}  // namespace corvane
