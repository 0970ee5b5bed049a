#pragma once

#include "app/commands_assembly.h"
#include "app/setup_commands.h"
#include "setup/setup_reader.h"
#include "setup/setup_server.h"
#include "setup/setup_tries.h"
#include "setup/setup_writer.h"

namespace corvane {

/// The set-up of a network; for the composition root.
struct SetupAssembly {
  /// What a set-up works with; all must outlive this object.
  struct Parts {
    const Platform& machine;
    SharedState& state;
    ReportAssembly& report;
    RegistryEditors& editors;
    LinkAssembly& link;
    TransferAssembly& transfer;
    HistoryAssembly& history;
    RoundsAssembly& rounds;
    SettingsAssembly& settings;
    CommandsAssembly& commands;
  };
  explicit SetupAssembly(const Parts& av_Parts)
      : reader({av_Parts.state.form, av_Parts.state.registry, av_Parts.state.app, av_Parts.state.names,
                av_Parts.state.devices, av_Parts.link.ports}),
        writer(
            {av_Parts.state.form, av_Parts.state.registry, av_Parts.editors, av_Parts.link.ports, av_Parts.state.app}),
        server({av_Parts.state.link, av_Parts.state.flags, av_Parts.state.app, av_Parts.transfer.browser,
                av_Parts.transfer.ftp, av_Parts.report.messages}),
        tries({av_Parts.state.form, av_Parts.state.registry, av_Parts.state.devices, av_Parts.state.link,
               av_Parts.link.port, av_Parts.link.exchange, av_Parts.rounds.finder, av_Parts.rounds.attempts,
               av_Parts.link.pauser, server, av_Parts.machine.loop}),
        commands({av_Parts.commands.operations, av_Parts.state.slot, av_Parts.state.app, av_Parts.state.registry,
                  reader, writer, tries, av_Parts.settings.settings, av_Parts.history.watch,
                  av_Parts.history.history}) {}

  SetupReader reader;
  SetupWriter writer;
  SetupServer server;
  SetupTries tries;
  SetupCommands commands;
};

}  // namespace corvane
