#include "app/rounds_assembly.h"

namespace corvane {

RoundsAssembly::RoundsAssembly(const Parts& av_Parts)
    : units_conversion({av_Parts.state.form, av_Parts.state.link, av_Parts.state.flags, av_Parts.state.registry,
                        av_Parts.state.names, av_Parts.editors.units, av_Parts.data.conversion, av_Parts.link.port,
                        av_Parts.machine.loop, av_Parts.report.bars, av_Parts.report.messages, av_Parts.report.trace}),
      selected_conversion({av_Parts.state.link, av_Parts.state.flags, av_Parts.state.registry, av_Parts.state.names,
                           av_Parts.data.file_list, av_Parts.editors.units, av_Parts.data.conversion,
                           av_Parts.machine.loop, av_Parts.report.messages}),
      keeper({av_Parts.state.form, av_Parts.state.registry, av_Parts.state.link, av_Parts.state.download,
              av_Parts.state.flags, av_Parts.link.bad_lines, av_Parts.machine.loop, av_Parts.state.names,
              av_Parts.report.messages, av_Parts.report.trace}),
      session({av_Parts.state.form, av_Parts.state.registry, av_Parts.state.link, av_Parts.state.download,
               av_Parts.machine.loop, av_Parts.link.port, av_Parts.link.exchange, av_Parts.link.capture, keeper,
               av_Parts.report.bars, av_Parts.report.trace}),
      attempts({av_Parts.state.form, av_Parts.state.registry, av_Parts.state.link, av_Parts.state.flags,
                av_Parts.editors.units, av_Parts.link.port, session, av_Parts.link.writer, av_Parts.link.pauser,
                av_Parts.data.files, av_Parts.report.bars, av_Parts.report.trace}),
      questions(av_Parts.state.form, av_Parts.machine.loop, av_Parts.report.messages),
      sessions({av_Parts.state.form, av_Parts.state.registry, av_Parts.state.link, av_Parts.state.flags,
                av_Parts.editors.units, av_Parts.link.port, av_Parts.link.schedule, questions, session, attempts,
                av_Parts.report.bars, av_Parts.report.trace}),
      round({av_Parts.state.form, av_Parts.state.link, sessions, units_conversion, av_Parts.transfers.round,
             av_Parts.transfers.backup, av_Parts.link.schedule, av_Parts.state.names, av_Parts.report.trace}),
      history({av_Parts.machine.history, av_Parts.state.registry, av_Parts.state.names, av_Parts.machine.loop,
               av_Parts.report.trace}),
      gap_exchange({av_Parts.state.form, av_Parts.state.link, av_Parts.state.download, av_Parts.state.flags,
                    av_Parts.machine.loop, av_Parts.state.names, av_Parts.editors.units, session, attempts,
                    av_Parts.report.trace}),
      gaps(av_Parts.state.registry, av_Parts.state.names, av_Parts.machine.loop, history),
      repair({av_Parts.state.form, av_Parts.state.registry, av_Parts.state.link, av_Parts.state.flags,
              av_Parts.state.names, av_Parts.editors.units, av_Parts.link.port, gap_exchange, gaps, round, history,
              av_Parts.report.trace}),
      finder({av_Parts.state.form, av_Parts.state.link, av_Parts.link.port, session, av_Parts.report.bars,
              av_Parts.report.trace}) {}

}  // namespace corvane
