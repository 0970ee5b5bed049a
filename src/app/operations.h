#pragma once

#include <functional>
#include <string_view>

#include "registry/editors.h"
#include "state/operation_slot.h"
#include "state/run_flags.h"
#include "trace/trace.h"
#include "ui/messages.h"

namespace corvane {

/// How every command runs: the registry editors are stored first, and an error is reported once.
class Operations {
 public:
  /// What the commands run with; all must outlive this object.
  struct Parts {
    RunFlags& flags;
    OperationSlot& slot;
    RegistryEditors& editors;
    Messages& messages;
    Trace& trace;
  };
  explicit Operations(const Parts& av_Parts) : p_(av_Parts) {}

  /// Runs `av_Operation` in the operation slot; false, without running it, while another one runs or the program
  /// closes. **Yields** as the operation does.
  bool RunOperation(std::string_view as_Name, const std::function<void()>& av_Operation);
  /// Runs what needs no slot. **Yields** as the command does.
  void RunCommand(std::string_view as_Name, const std::function<void()>& av_Command);
  /// Stores the editors; while no operation runs, messages are shown anew. **Yields** as `TakeRelayIDs` does.
  void BeginCommand();
  /// Stores the editors; units may follow a relay that has another ID by now. **Yields** when it asks.
  void TakeRelayIDs();

 private:
  void StoreEditors();

  Parts p_;
};

}  // namespace corvane
