#pragma once

#include "app/commands.h"
#include "app/conversion_commands.h"
#include "app/file_commands.h"
#include "app/registry_commands.h"
#include "app/remote_commands.h"
#include "app/transfer_commands.h"
#include "app/unit_commands.h"
#include "form/form.h"

namespace corvane {

/// Which menu entry, button and row starts which command.
class CommandBindings {
 public:
  /// The controls and what they start; all must outlive this object.
  struct Parts {
    Form& form;
    UnitCommands& units;
    ConversionCommands& conversion;
    TransferCommands& transfer;
    RemoteCommands& remote;
    RegistryCommands& registry;
    FileCommands& files;
    Commands& commands;
  };
  explicit CommandBindings(const Parts& av_Parts) : p_(av_Parts) {}

  /// Fills the menus, captions the buttons and binds both.
  void Bind();

 private:
  void BindMenus();
  void BindButtons();

  Parts p_;
};

}  // namespace corvane
