#pragma once

#include "app/command_bindings.h"
#include "app/commands.h"
#include "app/conversion_commands.h"
#include "app/field_bindings.h"
#include "app/file_commands.h"
#include "app/history_assembly.h"
#include "app/operations.h"
#include "app/registry_commands.h"
#include "app/remote_commands.h"
#include "app/rounds_assembly.h"
#include "app/settings_assembly.h"
#include "app/transfer_commands.h"
#include "app/unit_commands.h"

namespace corvane {

/// The commands and what starts them; for the composition root.
struct CommandsAssembly {
  /// What the commands reach; all must outlive this object.
  struct Parts {
    const Platform& machine;
    const HelpFiles& help;
    SharedState& state;
    ReportAssembly& report;
    RegistryEditors& editors;
    DataAssembly& data;
    LinkAssembly& link;
    TransferAssembly& transfer;
    TransferRoundsAssembly& transfer_rounds;
    HistoryAssembly& history;
    RoundsAssembly& rounds;
    SettingsAssembly& settings;
  };
  explicit CommandsAssembly(const Parts& av_Parts);

  Operations operations;
  UnitCommands units;
  ConversionCommands conversion;
  TransferCommands transfer;
  RemoteCommands remote;
  RegistryCommands registry;
  FileCommands files;
  Commands commands;
  CommandBindings bindings;
  FieldBindings fields;
};

}  // namespace corvane
