#pragma once

#include <memory>

#include "form/form.h"
#include "link/link_writer.h"
#include "platform/event_loop.h"
#include "state/link_state.h"
#include "trace/trace.h"

namespace corvane {

/// The count-down that ends an exchange when the line stays silent.
class ReplyTimer {
 public:
  ReplyTimer(Form& av_Form, LinkState& av_Link, EventLoop& av_Loop, LinkWriter& av_Writer, Trace& av_Trace);

  /// Restarts the count-down with the seconds that the present phase allows.
  void RestartReplyTimer();
  /// Restarts it for an event of the line, unless the exchange was aborted or no complete line came for ten time-outs.
  void RestartForEvent();
  void Stop() { timer_->Stop(); }
  /// One second has passed.
  void ReplyTimeoutTick();

 private:
  [[nodiscard]] double Seconds() const;
  [[nodiscard]] std::string UnitText() const;

  Form& form_;
  LinkState& link_;
  EventLoop& loop_;
  LinkWriter& writer_;
  Trace& trace_;
  std::unique_ptr<Timer> timer_;
};

}  // namespace corvane
