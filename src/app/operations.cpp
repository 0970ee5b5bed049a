#include "app/operations.h"

#include <exception>

#include "base/status.h"

namespace corvane {

bool Operations::RunOperation(std::string_view as_Name, const std::function<void()>& av_Operation) {
  if (p_.slot.Taken() || p_.flags.closing) return false;
  p_.editors.StoreRecords();
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
  p_.editors.StoreRecords();
  if (!p_.slot.Taken()) p_.messages.StartRound();
}

}  // namespace corvane
