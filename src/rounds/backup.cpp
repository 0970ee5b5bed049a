#include "rounds/backup.h"

#include "base/paths.h"
#include "rounds/client_folders.h"
#include "ui/mouse_pointer.h"

namespace corvane {

void Backup::DoBackup() {
  if (!p_.form.Chk_Backup.ticked()) return;
  if (p_.form.Lbl_BackupDestination.text().empty()) p_.form.Lbl_BackupDestination.SetText(p_.app.Folder());
  const BusyPointer busy(p_.form.Frm_Main);
  p_.bars.Unit.SetProcessText("Backup");
  p_.bars.Unit.Initialise(p_.registry.Units.count());
  const bool goes_on = GoesOn(p_.form, p_.flags);
  const Messages::OneBox one_box(p_.messages, goes_on);
  const std::size_t first = p_.results.All().size();
  for (std::int64_t i = 1; i <= p_.registry.Units.count() && !Cancelled(p_.link, p_.flags); ++i) {
    if (p_.registry.Units[i].Active == 0) continue;
    if (!BackUpUnit(i) && !goes_on) break;
    p_.bars.Unit.Increment();
    p_.loop.Poll();
  }
  p_.results.LogMoved("Files backed up: ", first);
  p_.bars.Unit.Hide();
  p_.trace.Status("Finished...");
}

void Backup::LeaveOut() {
  if (p_.form.Chk_Backup.ticked()) p_.trace.LogWrite("Backup left out, the round ended before it");
}

std::string Backup::FolderFor(std::int64_t al_Unit) const {
  const std::string destination = p_.app.AppPath(p_.form.Lbl_BackupDestination.text());
  const std::string client = p_.names.ClientFolderName(static_cast<std::int32_t>(al_Unit));
  return AddBackslash(AddBackslash(destination) + WithSlashes(client));
}

bool Backup::BackUpUnit(std::int64_t al_Unit) {
  const std::string folder = FolderFor(al_Unit);
  if (!EnsureFolder(folder, p_.messages)) {
    p_.results.Keep({al_Unit, Target::Backup, "", folder, "the folder cannot be created"});
    return false;
  }
  const auto unit = static_cast<std::int32_t>(al_Unit);
  const bool calibrated = p_.names.TransfersCalibrated();
  const std::string archive =
      folder + WithExtension(p_.names.DataFileShortName(unit, calibrated), Archiver::kExtension);
  const std::int16_t result = p_.archiver.Zip(p_.names.DataFileName(unit, calibrated), archive, "Zip: " + archive);
  // A unit that has no file yet is nobody's fault.
  const bool nothing = result == kZipFilesSkipped;
  const std::string problem = nothing ? "" : p_.archiver.WhyNotPacked(result);
  p_.results.Keep({al_Unit, Target::Backup, archive, archive, problem, nothing});
  return true;
}

}  // namespace corvane
