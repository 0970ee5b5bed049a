#include "app/commands.h"

namespace corvane {

void Commands::Cancel() {
  p_.trace.LogWrite("User clicked 'cancel'");
  p_.link.UserCancel = true;
  if (p_.slot.Taken()) {
    p_.files.Cancel();
    if (p_.port.IsOpen()) p_.writer.SendEscape();
    p_.trace.Status("Cancel...");
    return;
  }
  p_.port.ForgetProblem();
  if (p_.port.OpenPort(p_.port.LastIndex())) {
    p_.writer.SendEscape();
    p_.port.ClosePort();
  }
  p_.trace.Status("Pelvaro clear");
}

void Commands::Close(bool ab_Silently) {
  p_.flags.ending_silently = p_.flags.ending_silently || ab_Silently;
  if (p_.flags.closing) return;
  p_.flags.closing = true;
  if (on_close) on_close();
  if (!p_.slot.Taken()) return;
  p_.link.UserCancel = true;
  p_.files.Cancel();
  if (p_.port.IsOpen()) p_.writer.SendEscapes();
}

}  // namespace corvane
