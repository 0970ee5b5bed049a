#pragma once

#include <string_view>

#include "app/commands.h"
#include "app/recovery_copy.h"
#include "app/run_at_startup.h"
#include "app/window_creation.h"
#include "app/window_release.h"
#include "data/local_files.h"
#include "form/form.h"
#include "link/schedule.h"
#include "registry/editors.h"
#include "state/command_states.h"
#include "state/operation_slot.h"
#include "state/run_flags.h"

namespace corvane {

/// True when the switches of the command line start a download, so that nobody may be there.
[[nodiscard]] bool StartsDownload(std::string_view as_Switches);

/// The life of the main window: creation, activation and close.
class LifeCycle {
 public:
  /// What the steps work with; all must outlive this object.
  struct Parts {
    Form& form;
    RunFlags& flags;
    const OperationSlot& slot;
    CommandStates& states;
    RegistryEditors& editors;
    LocalFiles& files;
    RunAtStartup& run_at_startup;
    Schedule& schedule;
    Commands& commands;
    WindowCreation& creation;
    WindowRelease& release;
    RecoveryCopy& recovery;
  };
  explicit LifeCycle(const Parts& av_Parts) : p_(av_Parts) {}

  /// The window whose captions the language file replaces at its creation; without one no language file is read.
  ///
  /// Must live until `OnWindowCreate` has returned.
  void SetCaptions(CaptionedWindow* av_Window) { p_.creation.SetCaptions(av_Window); }
  /// Builds the window's fixed lists, loads the settings and the captions and fills the selectors. Called once.
  /// **Yields** for messages.
  ///
  /// When `as_Switches` start a download nobody may be there: messages answer themselves. False, after telling why,
  /// when the settings cannot be read: the program is to end at once, without `OnWindowClose`.
  bool OnWindowCreate(std::string_view as_Switches = {});
  /// Shows the first records, acts on the switches and starts the heartbeat. **Yields** when a switch downloads.
  ///
  /// Runs again at every activation; one that arises while an operation runs is dropped.
  void OnWindowActivate(std::string_view as_Switches);
  /// Saves the settings and releases the radio link; false when the settings could not be saved. Called once, when
  /// nothing waits any more. **Yields** for messages.
  bool OnWindowClose() { return p_.release.Run(); }

 private:
  void ShowFirstRecords();
  void ActOnSwitches(std::string_view as_Switches);

  Parts p_;
};

}  // namespace corvane
