#pragma once

#include <string_view>

#include "app/commands.h"
#include "app/run_at_startup.h"
#include "app/settings.h"
#include "app/settings_store.h"
#include "data/local_files.h"
#include "form/form.h"
#include "lang/captioned_window.h"
#include "lang/language.h"
#include "link/capture.h"
#include "link/port_link.h"
#include "link/schedule.h"
#include "registry/client_editor.h"
#include "registry/relay_editor.h"
#include "registry/unit_editor.h"
#include "state/app_info.h"
#include "state/operation_slot.h"
#include "state/run_flags.h"
#include "trace/summary.h"
#include "trace/trace.h"
#include "ui/progress_bar.h"

namespace corvane {

/// The life of the main window: creation, activation and close.
class LifeCycle {
 public:
  /// What the steps work with; all must outlive this object.
  struct Parts {
    Form& form;
    LinkState& link;
    DownloadState& download;
    RunFlags& flags;
    const OperationSlot& slot;
    const AppInfo& app;
    CommandStates& states;
    SettingsStore& store;
    Settings& settings;
    UnitEditor& units;
    RelayEditor& relays;
    ClientEditor& clients;
    LocalFiles& files;
    PortLink& port;
    LinkWriter& writer;
    DownloadCapture& capture;
    Schedule& schedule;
    CLanguage& language;
    RunAtStartup& run_at_startup;
    Commands& commands;
    ProgressBars& bars;
    DownloadSummary& summary;
    Trace& trace;
  };
  explicit LifeCycle(const Parts& av_Parts) : p_(av_Parts) {}

  /// The window whose captions the language file replaces at its creation; without one no language file is read.
  ///
  /// Must live until `OnWindowCreate` has returned.
  void SetCaptions(CaptionedWindow* av_Window) { captions_ = av_Window; }
  /// Builds the window's fixed lists, loads the settings and the captions and fills the selectors. Called once.
  /// **Yields** for messages.
  ///
  /// When `as_Switches` start a download nobody may be there: messages answer themselves.
  void OnWindowCreate(std::string_view as_Switches = {});
  /// Shows the first records, acts on the switches and starts the heartbeat. **Yields** when a switch downloads.
  ///
  /// Runs again at every activation; one that arises while an operation runs is dropped.
  void OnWindowActivate(std::string_view as_Switches);
  /// Saves the settings and releases the radio link. Called once, when nothing waits any more. **Yields** for messages.
  void OnWindowClose();

 private:
  void FillFixedSelectors();
  void LoadCaptions();
  void BindProgressBars();
  void ShowFirstRecords();
  void ActOnSwitches(std::string_view as_Switches);

  Parts p_;
  CaptionedWindow* captions_ = nullptr;
};

}  // namespace corvane
