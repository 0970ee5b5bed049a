#include "app/transfer_commands.h"

namespace corvane {

bool TransferCommands::Send(bool ab_All) {
  return p_.operations.RunOperation("Send", [&] {
    p_.transfers.ftpAllUnits(ab_All, kAny, kToFtp);
    if (!ab_All && !p_.link.UserCancel) p_.transfers.ftpAllUnits(false, kAny, kToWebData);
  });
}

bool TransferCommands::SendWebData() {
  return p_.operations.RunOperation("Send", [&] { p_.transfers.ftpAllUnits(true, kAny, kToWebData); });
}

bool TransferCommands::Fetch(bool ab_All, std::int32_t al_Source) {
  return p_.operations.RunOperation("Fetch", [&] {
    p_.conversion.ResetCounters();
    p_.round.FetchAndConvert(ab_All, al_Source);
    const bool nothing_tried = p_.results.All().empty() && p_.flags.problems == 0;
    if (nothing_tried) p_.trace.Status("No units to fetch files for");
  });
}

bool TransferCommands::BackUp() {
  return p_.operations.RunOperation("Backup", [&] {
    p_.backup.DoBackup();
    if (!p_.form.Chk_Backup.ticked()) p_.trace.Status("Backup is switched off on the tab Settings");
  });
}

}  // namespace corvane
