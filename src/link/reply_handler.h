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
  ReplyHandler(Form& av_Form, LinkState& av_Link, EventLoop& av_Loop, Exchange& av_Exchange,
               DownloadCapture& av_Capture, DownloadSummary& av_Summary, Trace& av_Trace);

  /// Handles `ReplyLine` and empties it.
  void HandleReply();

 private:
  void TakeLine();
  void TakeErrorReply();
  void TakeReply();
  void TakeAnswer();

  Form& form_;
  LinkState& link_;
  EventLoop& loop_;
  Exchange& exchange_;
  DownloadCapture& capture_;
  DownloadSummary& summary_;
  Trace& trace_;
};

}  // namespace corvane
