#include "app/window_release.h"

namespace corvane {

bool WindowRelease::Run() {
  p_.schedule.StopHeartbeat();
  p_.flags.releasing = true;
  p_.recovery.End();
  p_.editors.StoreRecords();
  const bool saved = p_.flags.saves_nothing || p_.settings.SaveSettings();
  p_.link.UserCancel = true;
  if (p_.port.IsOpen()) p_.writer.SendEscapes();
  if (p_.capture.OutputFileNumber() != 0) {
    p_.capture.CloseOutputFile();
    p_.summary.WriteSummary();
  }
  p_.port.ClosePort();
  p_.watch.Close();
  p_.trace.CloseLog();
  return saved;
}

}  // namespace corvane
