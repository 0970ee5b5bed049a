#pragma once

#include <string_view>

#include "app/command_bindings.h"
#include "app/field_bindings.h"
#include "app/run_at_startup.h"
#include "app/settings.h"
#include "data/local_files.h"
#include "form/form.h"
#include "lang/captioned_window.h"
#include "lang/language.h"
#include "registry/editors.h"
#include "rounds/network_watch.h"
#include "state/command_states.h"
#include "state/run_flags.h"
#include "ui/progress_bar.h"

namespace corvane {

/// The creation of the main window: its fixed lists, its commands, the settings and the captions.
class WindowCreation {
 public:
  /// What the steps work with; all must outlive this object.
  struct Parts {
    Form& form;
    RunFlags& flags;
    CommandStates& states;
    CommandBindings& commands;
    FieldBindings& fields;
    Settings& settings;
    RegistryEditors& editors;
    LocalFiles& files;
    CLanguage& language;
    RunAtStartup& run_at_startup;
    NetworkWatch& watch;
    ProgressBars& bars;
  };
  explicit WindowCreation(const Parts& av_Parts) : p_(av_Parts) {}

  /// The window whose captions the language file replaces; without one no language file is read.
  void SetCaptions(CaptionedWindow* av_Window) { captions_ = av_Window; }
  /// Runs the steps. Called once. False, with the steps ended there, when the settings cannot be read. **Yields** for
  /// messages.
  [[nodiscard]] bool Run();

 private:
  void FillFixedSelectors();
  void LoadCaptions();
  void BindProgressBars();

  Parts p_;
  CaptionedWindow* captions_ = nullptr;
};

}  // namespace corvane
