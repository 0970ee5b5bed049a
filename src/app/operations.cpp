#include "app/operations.h"

#include <exception>

#include "base/status.h"

namespace corvane {

bool Operations::RunOperation(std::string_view as_Name, const std::function<void()>& av_Operation) {
  if (p_.slot.Taken() || p_.flags.closing) return false;
  StoreEditors();
  if (!p_.flags.automatic_run) p_.editors.relays.LetUnitsFollow();
  if (p_.slot.Taken() || p_.flags.closing) return false;
  return p_.slot.Run([&] {
    try {
      av_Operation();
    } catch (const std::exception& error) {
      ++p_.flags.problems;
      p_.trace.ErrorReport(as_Name, error.what());
    }
  });
}

void Operations::RunCommand(std::string_view as_Name, const std::function<void()>& av_Command) {
  BeginCommand();
  try {
    av_Command();
  } catch (const RunTimeError& error) {
    p_.trace.ErrorReport(as_Name, error.what());
  }
}

void Operations::BeginCommand() {
  TakeRelayIDs();
  if (!p_.slot.Taken()) p_.messages.StartRound();
}

void Operations::TakeRelayIDs() {
  StoreEditors();
  if (!p_.slot.Taken()) p_.editors.relays.LetUnitsFollow();
}

void Operations::StoreEditors() {
  // A round that starts by itself does not take half of an ID.
  p_.editors.StoreRecords(!p_.flags.automatic_run);
}

}  // namespace corvane
