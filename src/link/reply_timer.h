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
  /// What the count-down works with; all must outlive it.
  struct Parts {
    Form& form;
    LinkState& link;
    EventLoop& loop;
    LinkWriter& writer;
    Trace& trace;
  };
  explicit ReplyTimer(const Parts& av_Parts) : p_(av_Parts) {}

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

  Parts p_;
  std::unique_ptr<Timer> timer_ = p_.loop.MakeTimer([this] { ReplyTimeoutTick(); });
};

}  // namespace corvane
