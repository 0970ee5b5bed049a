#pragma once

#include "form/form.h"

namespace corvane {

/// Which commands can be given now.
class CommandStates {
 public:
  explicit CommandStates(Form& av_Form) : form_(av_Form) {}

  /// Enables or disables the operation commands as one group.
  void SetIdle(bool ab_Enabled);
  /// True when no operation holds the commands (`Cmd_Close` is enabled).
  [[nodiscard]] bool Idle() const { return form_.Cmd_Close.enabled(); }
  /// The direct terminal listens, or does so no longer: it takes the next line while an operation, itself, runs.
  void SetListening(bool ab_Listening);
  /// The FTP session is connected, or is so no longer.
  void SetConnected(bool ab_Connected);
  /// Recomputes the field and the button of the direct terminal.
  void UpdateDirect();
  /// Recomputes the New, Delete and Move commands of the three lists.
  void UpdateListCommands();
  /// Recomputes every command; called after registry changes, at activation and when an operation ends.
  void UpdateCommandStates();

 private:
  void EnableEditors(bool ab_Enabled);
  void UpdateTransfer();

  Form& form_;
  bool listening_ = false;
  bool connected_ = false;
};

}  // namespace corvane
