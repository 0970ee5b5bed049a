#include "app/commands_assembly.h"

namespace corvane {

CommandsAssembly::CommandsAssembly(const Parts& av_Parts)
    : operations({av_Parts.state.flags, av_Parts.state.slot, av_Parts.editors, av_Parts.report.messages,
                  av_Parts.report.trace}),
      units({av_Parts.state.form, av_Parts.state.registry, av_Parts.state.flags, av_Parts.editors.units, operations,
             av_Parts.rounds.sessions, av_Parts.rounds.round, av_Parts.rounds.repair, av_Parts.rounds.finder,
             av_Parts.history.journal, av_Parts.link.terminal, av_Parts.machine.dialogs}),
      conversion({av_Parts.state.flags, av_Parts.state.names, operations, av_Parts.rounds.units_conversion,
                  av_Parts.rounds.selected_conversion, av_Parts.data.hex, av_Parts.machine.dialogs,
                  av_Parts.report.trace}),
      transfer({av_Parts.state.form, av_Parts.state.link, av_Parts.state.flags, operations,
                av_Parts.rounds.units_conversion, av_Parts.rounds.round, av_Parts.transfer_rounds.round,
                av_Parts.transfer_rounds.backup, av_Parts.transfer_rounds.results, av_Parts.report.trace}),
      remote({av_Parts.state.form, av_Parts.state.names, operations, av_Parts.transfer.browser,
              av_Parts.machine.dialogs, av_Parts.report.trace}),
      registry({av_Parts.state.registry, av_Parts.editors, av_Parts.state.names, operations, av_Parts.report.messages,
                av_Parts.history.history, av_Parts.state.slot}),
      files({av_Parts.data.files, operations, av_Parts.help, av_Parts.settings.language, av_Parts.machine.shell,
             av_Parts.report.messages}),
      commands({units, conversion, transfer, registry, av_Parts.state.link, av_Parts.state.flags, av_Parts.state.slot,
                av_Parts.transfer_rounds.file_transfer, av_Parts.link.port, av_Parts.link.writer,
                av_Parts.report.trace}),
      bindings({av_Parts.state.form, units, conversion, transfer, remote, registry, files, commands}),
      fields({av_Parts.state.form, av_Parts.state.slot, av_Parts.state.states, av_Parts.data.files,
              av_Parts.link.schedule, av_Parts.settings.run_at_startup, operations, av_Parts.machine.loop,
              av_Parts.report.trace}) {}

}  // namespace corvane
