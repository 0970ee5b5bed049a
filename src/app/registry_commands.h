#pragma once

#include <cstdint>
#include <vector>

#include "app/operations.h"
#include "history/history.h"
#include "registry/editors.h"
#include "setup/stations_question.h"
#include "state/file_names.h"
#include "state/operation_slot.h"
#include "state/records.h"
#include "ui/messages.h"

namespace corvane {

/// The commands New, Delete and Move of the three lists, and the clients' local folders. All **yield**.
class RegistryCommands {
 public:
  /// All must outlive this object.
  struct Parts {
    const Registry& registry;
    RegistryEditors& editors;
    const FileNames& names;
    Operations& operations;
    Messages& messages;
    History& history;
    const OperationSlot& slot;
  };
  explicit RegistryCommands(const Parts& av_Parts) : p_(av_Parts) {}

  // `ai_Command` as `RegistryCommand`.
  /// Makes these units (positions from 1) active, or no longer so; does nothing while an operation runs.
  void SetActive(const std::vector<std::int64_t>& av_Units, bool ab_Active);
  void RunOnUnits(std::int16_t ai_Command);
  void RunOnRelays(std::int16_t ai_Command);
  void RunOnClients(std::int16_t ai_Command);
  void CreateFolders();
  /// The lists as they are, with what the editors show, to be written as a table or asked what one would change.
  [[nodiscard]] StationsQuestion AskStations();
  /// Puts in what an answer without faults says; false, without doing anything, while an operation runs and when the
  /// lists are not as they were when it was asked.
  bool PutInStations(const StationsQuestion& av_Question, StationsPlan av_Answer);

 private:
  Parts p_;
};

}  // namespace corvane
