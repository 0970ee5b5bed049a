#include "setup/setup_writer.h"

#include <string>
#include <string_view>
#include <utility>

#include "base/paths.h"
#include "base/status.h"
#include "base/text.h"
#include "setup/setup_records.h"
#include "setup/stations_question.h"

namespace corvane {
namespace {

constexpr int kLanguageFile = 3;

/// Enters a text as a person does, who then leaves the field.
void Enter(TextField& av_Field, std::string_view as_Text) {
  if (av_Field.text() == as_Text) return;
  av_Field.SetText(as_Text);
  av_Field.Leave();
}

}  // namespace

void SetupWriter::PutIn(const SetupPlan& av_Plan) {
  if (!av_Plan.language_file.empty()) Enter(p_.form.Txt_File[kLanguageFile], av_Plan.language_file);
  if (!av_Plan.device.empty()) {
    // A number keeps its built-in device where that is the one.
    if (p_.ports.Look(av_Plan.port).device != av_Plan.device) Require(p_.ports.Assign(av_Plan.port, av_Plan.device));
    p_.form.Cmb_Port[0].SelectByItemData(av_Plan.port);
  }
  PutInStations(av_Plan);
  Enter(p_.form.Txt_Folder, Trim(av_Plan.data_folder));
  PutInTables(av_Plan);
  PutInSchedule(av_Plan);
  PutInDelivery(av_Plan);
}

void SetupWriter::PutInStations(const SetupPlan& av_Plan) {
  SetupRecords records = RecordsOf(av_Plan, p_.registry);
  StationsPlan lists;
  lists.units = std::move(records.units);
  lists.relays = std::move(records.relays);
  lists.clients = std::move(records.clients);
  if (!corvane::PutInStations(std::move(lists), p_.registry, p_.editors)) {
    throw RunTimeError("the lists of units, relays and clients could not be put in");
  }
}

void SetupWriter::PutInTables(const SetupPlan& av_Plan) {
  const std::string_view folder = Trim(av_Plan.tables_folder);
  if (folder.empty()) return;
  const auto files = TablesIn(p_.app.AppPath(WithSlashes(folder)));
  for (std::size_t table = 0; table < files.size(); ++table) {
    if (!files[table].empty()) Enter(p_.form.Txt_File[static_cast<int>(table)], files[table]);
  }
}

void SetupWriter::PutInSchedule(const SetupPlan& av_Plan) {
  p_.form.Chk_GoOn.SetTicked(av_Plan.goes_on);
  p_.form.LogSize = av_Plan.log_size;
  p_.form.Chk_RunAtStartup.SetTicked(av_Plan.at_log_on);
  p_.form.Chk_Automatic.SetTicked(av_Plan.automatic);
  if (av_Plan.automatic) p_.form.Txt_AutomaticInterval.SetText(Trim(av_Plan.interval));
  // Leaving the field works out the next download, by whatever was changed.
  p_.form.Txt_AutomaticInterval.Leave();
}

void SetupWriter::PutInDelivery(const SetupPlan& av_Plan) {
  Form& form = p_.form;
  Enter(form.Txt_FTPServer, Trim(av_Plan.server));
  if (!Trim(av_Plan.server).empty()) {
    Enter(form.Txt_FTPFolder, Trim(av_Plan.server_folder));
    Enter(form.Txt_FTPUserName, Trim(av_Plan.user));
    Enter(form.Txt_FTPPassword, av_Plan.password);
    Enter(form.Txt_FTPCertificate, av_Plan.certificate);
    form.Chk_Anonymous.SetTicked(av_Plan.anonymous);
    form.Opt_FTPSecurity.SetOptionIndex(av_Plan.encrypted ? 1 : 0);
  }
  const bool delivers = !Trim(av_Plan.server).empty() || !Trim(av_Plan.backup_folder).empty();
  if (delivers) form.Opt_WebFileType.SetOptionIndex(av_Plan.sends_calibrated ? 1 : 0);
  const std::string backup(Trim(av_Plan.backup_folder));
  if (!backup.empty()) form.Lbl_BackupDestination.SetText(p_.app.AppPath(WithSlashes(backup)));
  form.Chk_Backup.SetTicked(!backup.empty());
}

}  // namespace corvane
