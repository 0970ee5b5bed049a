#pragma once

#include <string>

#include "form/form.h"
#include "link/capture.h"
#include "link/exchange.h"
#include "platform/event_loop.h"
#include "state/link_state.h"
#include "trace/summary.h"
#include "trace/trace.h"

namespace corvane {

/// Decides what each complete reply line means.
class ReplyHandler {
 public:
  /// What the handling of a line works with; all must outlive it.
  struct Parts {
    Form& form;
    LinkState& link;
    EventLoop& loop;
    Exchange& exchange;
    DownloadCapture& capture;
    DownloadSummary& summary;
    Trace& trace;
  };
  explicit ReplyHandler(const Parts& av_Parts) : p_(av_Parts) {}

  /// Handles `ReplyLine` and empties it.
  void HandleReply();

 private:
  void TakeLine();
  void TakeErrorReply();
  void TakeReply();
  void TakeAnswer();

  Parts p_;
};

}  // namespace corvane
