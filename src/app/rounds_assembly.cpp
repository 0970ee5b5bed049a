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
             av_Parts.transfers.backup, av_Parts.link.schedule, av_Parts.state.names, av_Parts.history.journal,
             av_Parts.report.trace}),
      gap_exchange({av_Parts.state.form, av_Parts.state.link, av_Parts.state.download, av_Parts.state.flags,
                    av_Parts.machine.loop, av_Parts.state.names, av_Parts.editors.units, session, attempts,
                    av_Parts.report.trace}),
      gaps(av_Parts.state.registry, av_Parts.state.names, av_Parts.machine.loop, av_Parts.history.history),
      repair({av_Parts.state.form, av_Parts.state.registry, av_Parts.state.link, av_Parts.state.flags,
              av_Parts.state.names, av_Parts.editors.units, av_Parts.link.port, gap_exchange, gaps, round,
              av_Parts.history.journal, av_Parts.report.trace}),
      finder({av_Parts.state.form, av_Parts.state.link, av_Parts.link.port, session, av_Parts.report.bars,
              av_Parts.report.trace}) {
  RoundJournal& journal = av_Parts.history.journal;
  sessions.on_marked = [&journal](UnitSpan units, std::int16_t command) { journal.BeginContacts(units, command); };
  sessions.on_asked = [&journal] { journal.EndContacts(); };
  attempts.on_turn = [&journal](std::int64_t unit) { journal.BeginTurn(unit); };
  attempts.on_try = [&journal](std::int64_t unit, TryEnd end) { journal.NoteTry(unit, end); };
  attempts.on_turn_over = [&journal](std::int64_t unit) { journal.EndTurn(unit); };
}

}  // namespace corvane
