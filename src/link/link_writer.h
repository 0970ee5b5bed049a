#pragma once

#include <string_view>

#include "platform/serial_port.h"
#include "state/link_state.h"
#include "trace/trace.h"

namespace corvane {

/// What goes out on the serial line.
class LinkWriter {
 public:
  LinkWriter(LinkState& av_Link, SerialPort& av_Port, Trace& av_Trace)
      : link_(av_Link), port_(av_Port), trace_(av_Trace) {}

  /// Writes `as_Text` to the port; a failure is false, an error line, and sets `HalvexError` with result 9.
  bool Write(std::string_view as_Text);
  /// Sends the escape character, which stops whatever the unit is doing. An exchange that is awaited counts as aborted.
  void SendEscape();

  /// Sends it three times: the program ends, and one may be lost on the way.
  void SendEscapes();

 private:
  LinkState& link_;
  SerialPort& port_;
  Trace& trace_;
};

}  // namespace corvane
