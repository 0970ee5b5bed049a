// The composition root: owns the Form, the state and the services of each folder, in order, and wires them.
#pragma once

#include <string>
#include <vector>

#include "app/commands_assembly.h"
#include "app/data_assembly.h"
#include "app/history_assembly.h"
#include "app/life_cycle.h"
#include "app/link_assembly.h"
#include "app/platform.h"
#include "app/report_assembly.h"
#include "app/rounds_assembly.h"
#include "app/settings_assembly.h"
#include "app/setup_assembly.h"
#include "app/shared_state.h"
#include "app/transfer_assembly.h"
#include "app/window_creation.h"
#include "app/window_release.h"
#include "registry/editors.h"

namespace corvane {

class Application {
 public:
  /// `as_Folder` is the application folder, a full path.
  Application(const Platform& av_Platform, std::string as_Folder);
  Application(const Application&) = delete;
  Application& operator=(const Application&) = delete;

  // What a front end works with.
  [[nodiscard]] Form& form() { return state_.form; }
  [[nodiscard]] RunFlags& flags() { return state_.flags; }
  [[nodiscard]] const LinkState& link() const { return state_.link; }
  [[nodiscard]] const Registry& registry() const { return state_.registry; }
  [[nodiscard]] const AppInfo& app() const { return state_.app; }
  [[nodiscard]] const FileNames& names() const { return state_.names; }
  [[nodiscard]] const FieldChecks& checks() const { return settings_.checks; }
  [[nodiscard]] SettingKeys& keys() { return settings_.keys; }
  [[nodiscard]] const PortDevices& devices() const { return state_.devices; }
  [[nodiscard]] Schedule& schedule() { return link_.schedule; }
  [[nodiscard]] PortChoices& ports() { return link_.ports; }
  [[nodiscard]] UnitEditor& units() { return editors_.units; }
  [[nodiscard]] OperationSlot& slot() { return state_.slot; }
  /// The raw files that the present or last operation has converted, in order.
  [[nodiscard]] const std::vector<ConversionResult>& conversion_results() const { return data_.conversion.Results(); }
  /// The files that the present or last operation has sent, fetched or backed up, in order.
  [[nodiscard]] const std::vector<TransferResult>& transfer_results() const { return transfer_rounds_.results.All(); }
  /// What became of the gaps that the present or last operation has asked for, in order.
  [[nodiscard]] const std::vector<RepairResult>& repair_results() const { return rounds_.repair.Results(); }
  /// What happened, as far as it is kept.
  [[nodiscard]] History& history() { return history_.history; }
  /// Whom a round tells how far it is.
  [[nodiscard]] RoundFollower& round_follower() { return history_.journal.follower; }
  [[nodiscard]] FileTransfer& file_transfer() { return transfer_rounds_.file_transfer; }
  /// What became of the recovery copy of the settings.
  [[nodiscard]] RecoveryState recovery() const { return settings_.store.recovery(); }
  [[nodiscard]] Commands& commands() { return commands_.commands; }
  /// Setting the network up, page by page.
  [[nodiscard]] SetupCommands& setup() { return setup_.commands; }
  [[nodiscard]] LifeCycle& life() { return life_; }

  /// Gives a window the captions of a language file, a full path or a name in the application folder. **Yields** for a
  /// message where it cannot be read.
  void LoadCaptions(const std::string& as_File, CaptionedWindow& av_Window);
  /// Captions the menus and the buttons, which the creation of the window does too.
  void BindCommands() { commands_.bindings.Bind(); }
  /// Waits until the program is to end. **Yields.**
  void RunUntilClosed();

 private:
  void NameFiles();
  void Wire();

  EventLoop& loop_;
  HelpFiles help_;
  SharedState state_;
  ReportAssembly report_;
  RegistryEditors editors_;
  DataAssembly data_;
  LinkAssembly link_;
  TransferAssembly transfer_;
  TransferRoundsAssembly transfer_rounds_;
  HistoryAssembly history_;
  RoundsAssembly rounds_;
  SettingsAssembly settings_;
  CommandsAssembly commands_;
  SetupAssembly setup_;
  WindowCreation creation_;
  WindowRelease release_;
  LifeCycle life_;
};

}  // namespace corvane
