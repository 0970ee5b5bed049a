#include "app/link_assembly.h"

namespace corvane {

LinkAssembly::LinkAssembly(const Platform& av_Platform, SharedState& av_State, ReportAssembly& av_Report)
    : writer(av_State.link, av_Platform.port, av_Report.trace),
      timer({av_State.form, av_State.link, av_Platform.loop, writer, av_Report.trace}),
      pauser(av_State.link, av_State.flags, av_Platform.loop, av_Report.trace),
      exchange(
          {av_State.form, av_State.link, av_State.flags, av_Platform.loop, writer, timer, pauser, av_Report.trace}),
      capture({av_State.form, av_State.link, av_State.download, av_State.flags, bad_lines, av_Platform.loop, writer,
               exchange, av_Report.summary, av_Report.bars, av_Report.trace}),
      replies({av_State.form, av_State.link, av_Platform.loop, exchange, capture, av_Report.summary, av_Report.trace}),
      port({av_State.form, av_State.link, av_State.flags, av_Platform.port, av_State.devices, av_State.states, writer,
            timer, av_Report.bars, av_Report.trace}),
      ports(av_State.devices, av_Platform.port),
      terminal({av_State.form, av_State.link, av_State.flags, av_Platform.loop, port, exchange, av_State.states,
                av_Report.trace}),
      schedule({av_State.form, av_State.flags, av_State.slot, av_Platform.loop, av_Report.trace}) {
  port.line_received = [this] { replies.HandleReply(); };
  port.data_received = [this] { terminal.OnData(); };
  av_Platform.port.SetEventHandler([this](int code) { port.OnPortEvent(code); });
}

}  // namespace corvane
