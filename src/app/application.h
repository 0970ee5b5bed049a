// The composition root: owns the Form, the state and the classes, in order, and wires them.
#pragma once

#include <string>
#include <string_view>

#include "app/commands.h"
#include "app/field_checks.h"
#include "app/life_cycle.h"
#include "app/run_at_startup.h"
#include "app/settings.h"
#include "app/settings_store.h"
#include "data/calibrated_converter.h"
#include "data/file_listbox.h"
#include "data/hex_conversion.h"
#include "data/local_files.h"
#include "data/lookup.h"
#include "form/form.h"
#include "lang/language.h"
#include "link/capture.h"
#include "link/direct_terminal.h"
#include "link/exchange.h"
#include "link/link_writer.h"
#include "link/pause.h"
#include "link/port_choices.h"
#include "link/port_link.h"
#include "link/reply_handler.h"
#include "link/reply_timer.h"
#include "link/schedule.h"
#include "platform/dialogs.h"
#include "platform/event_loop.h"
#include "platform/internet_client.h"
#include "platform/serial_port.h"
#include "platform/shell.h"
#include "platform/zip_component.h"
#include "registry/editors.h"
#include "rounds/batch_conversion.h"
#include "rounds/download_round.h"
#include "rounds/port_finder.h"
#include "rounds/sessions.h"
#include "rounds/transfer_flows.h"
#include "rounds/unit_session.h"
#include "state/app_info.h"
#include "state/command_states.h"
#include "state/file_names.h"
#include "state/link_state.h"
#include "state/operation_slot.h"
#include "state/port_devices.h"
#include "state/records.h"
#include "state/run_flags.h"
#include "trace/summary.h"
#include "trace/trace.h"
#include "transfer/my_ftp.h"
#include "transfer/remote_browser.h"
#include "ui/messages.h"
#include "ui/progress_bar.h"

namespace corvane {

/// The machine that the application runs on; all must outlive it.
struct Platform {
  EventLoop& loop;
  SerialPort& port;
  Shell& shell;
  Dialogs& dialogs;
  InternetClient& internet;
  ZipComponent& zip;
  HelpFiles help = {};  ///< what the help menu opens
};

class Application {
 public:
  /// `as_Folder` is the application folder, a full path.
  Application(const Platform& av_Platform, std::string as_Folder);
  Application(const Application&) = delete;
  Application& operator=(const Application&) = delete;

  // What a front end works with.
  [[nodiscard]] Form& form() { return form_; }
  [[nodiscard]] RunFlags& flags() { return flags_; }
  [[nodiscard]] const LinkState& link() const { return link_; }
  [[nodiscard]] const Registry& registry() const { return registry_; }
  [[nodiscard]] const AppInfo& app() const { return app_; }
  [[nodiscard]] const FileNames& names() const { return names_; }
  [[nodiscard]] const FieldChecks& checks() const { return checks_; }
  [[nodiscard]] const PortDevices& devices() const { return devices_; }
  [[nodiscard]] PortChoices& ports() { return ports_; }
  [[nodiscard]] UnitEditor& units() { return editors_.units; }
  [[nodiscard]] OperationSlot& slot() { return slot_; }
  [[nodiscard]] const BatchConversion& conversion() const { return conversion_; }
  [[nodiscard]] TransferFlows& flows() { return flows_; }
  [[nodiscard]] const TransferFlows& flows() const { return flows_; }
  [[nodiscard]] Commands& commands() { return commands_; }
  [[nodiscard]] LifeCycle& life() { return life_; }

  /// Waits until the program is to end. **Yields.**
  void RunUntilClosed();

 private:
  void Wire();

  EventLoop& loop_;
  Form form_;
  LinkState link_;
  DownloadState download_;
  Registry registry_;
  RunFlags flags_;
  HelpFiles help_;
  AppInfo app_;
  PortDevices devices_;
  PortChoices ports_;
  ProgressBars bars_;
  CommandStates states_;
  OperationSlot slot_;
  Trace trace_;
  Messages messages_;
  CLanguage language_;
  DownloadSummary summary_;
  FileNames names_;
  FieldChecks checks_;
  CFileListbox file_list_;
  LocalFiles files_;
  RegistryEditors editors_;
  SettingsStore store_;
  Settings settings_;
  RunAtStartup run_at_startup_;
  LinkWriter writer_;
  ReplyTimer reply_timer_;
  Pauser pauser_;
  Exchange exchange_;
  DownloadCapture capture_;
  ReplyHandler replies_;
  PortLink port_link_;
  DirectTerminal terminal_;
  Schedule schedule_;
  Lookups lookups_;
  CalibratedConverter converter_;
  BatchConversion conversion_;
  HexConversion hex_;
  MyFTP ftp_;
  RemoteBrowser browser_;
  TransferFlows flows_;
  UnitSession session_;
  Sessions sessions_;
  DownloadRound round_;
  PortFinder finder_;
  Commands commands_;
  LifeCycle life_;
};

}  // namespace corvane
