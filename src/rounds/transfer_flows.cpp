#include "rounds/transfer_flows.h"

#include <algorithm>

#include "base/files.h"
#include "base/numbers.h"
#include "base/paths.h"
#include "base/status.h"
#include "base/text.h"
#include "transfer/mxceed.h"
#include "transfer/shrink_guard.h"
#include "ui/mouse_pointer.h"

namespace corvane {
namespace {

constexpr std::int32_t kReplaceExisting = 2;
constexpr std::string_view kArchiveExtension = "zip";

}  // namespace

TransferFlows::TransferFlows(const Parts& av_Parts) : p_(av_Parts) {
  p_.zip.SetProgressHandlers([this](std::int64_t total) { p_.bars.Download.Initialise(total); },
                             [this](std::int64_t done) { p_.bars.Download.SetValue(done); });
}

void TransferFlows::Cancel() {
  p_.ftp.SetCancel(true);
  p_.zip.Abort();
}

std::pair<std::int64_t, std::int64_t> TransferFlows::UnitRange(bool ab_All) const {
  if (ab_All) return {1, p_.registry.Units.count()};
  const std::int64_t selected = p_.units.Selected();
  return p_.registry.Units.Has(selected) ? std::pair(selected, selected) : std::pair(std::int64_t{1}, std::int64_t{0});
}

bool TransferFlows::Calibrated() const {
  return p_.form.Opt_WebFileType.GetOptionIndex() != 0;
}

TransferFlows::FilePair TransferFlows::NamesOf(std::int64_t al_Unit) const {
  const auto unit = static_cast<std::int32_t>(al_Unit);
  return {p_.names.DataFileName(unit, Calibrated()), p_.names.RemoteDataFileName(unit, Calibrated())};
}

TransferFlows::FilePair TransferFlows::ArchivesOf(const FilePair& av_Files) const {
  if (!p_.form.Chk_ZIPFiles.ticked()) return av_Files;
  return {WithExtension(av_Files.local, kArchiveExtension), WithExtension(av_Files.remote, kArchiveExtension)};
}

void TransferFlows::BeginRun(std::string_view as_Status, std::int64_t al_Count) {
  p_.trace.Status(as_Status);
  p_.port.ClearBeforeCommand(as_Status);
  p_.bars.Unit.SetProcessText(as_Status);
  p_.bars.Unit.Initialise(al_Count);
}

void TransferFlows::EndRun(std::int64_t al_Selected) {
  p_.units.Select(al_Selected);
  p_.port.ClearEverything();
}

void TransferFlows::ftpAllUnits(bool ab_All, std::int32_t al_GetFrom, std::int16_t ai_Destination) {
  const auto range = UnitRange(ab_All);
  const std::int64_t selected = p_.units.Selected();
  std::int64_t by_ftp = 0;
  std::int64_t by_other = 0;
  for (std::int64_t i = range.first; i <= range.second; ++i) {
    Unit& unit = p_.registry.Units[i];
    unit.ToSend =
        unit.Active != 0 && unit.ftpFile == ai_Destination && (al_GetFrom == kAny || unit.GetFrom == al_GetFrom);
    if (unit.ToSend) ++(unit.ftpFile == kToFtp ? by_ftp : by_other);
  }
  if (by_ftp > 0 && !p_.browser.ConfigureFTP()) return;
  if (by_ftp + by_other > 0) {
    const BusyPointer busy(p_.form.Frm_Main);
    // A close that was asked for stays asked for.
    p_.link.UserCancel = p_.flags.closing;
    BeginRun("Send files...", by_ftp + by_other);
    const std::size_t first = results_.size();
    const bool went_on = SendMarkedUnits(range, ai_Destination);
    if (!Cancelled()) p_.trace.Status("Finished...");
    // A server that is out of reach, or a person in a hurry, is not asked once more.
    if (went_on && by_ftp > 0 && p_.ftp.IsConnected()) p_.browser.RefreshRemoteList();
    LogCount("Files sent: ", first);
    // What the listing wiped off.
    if (!Cancelled()) p_.form.Lbl_Status.SetText("Finished...");
    if (went_on && p_.link.UserCancel) ShowLastProblem();
  } else if (!Cancelled()) {
    p_.trace.Status("Finished...");
  }
  EndRun(selected);
}

bool TransferFlows::SendMarkedUnits(std::pair<std::int64_t, std::int64_t> av_Range, std::int16_t ai_Destination) {
  for (std::int64_t i = av_Range.first; i <= av_Range.second && p_.registry.Units.Has(i); ++i) {
    p_.units.Select(i);
    if (p_.registry.Units[i].ToSend) {
      if (!ZipAndSend(i, ai_Destination)) {
        if (Cancelled()) return false;
        // Intended: the first failed send ends the batch, and what follows it, as if Cancel had been pressed.
        p_.link.UserCancel = true;
        return true;
      }
      p_.bars.Unit.Increment();
    }
    if (Cancelled()) return false;
    p_.loop.Poll();
  }
  return true;
}

bool TransferFlows::ZipAndSend(std::int64_t al_Unit, std::int16_t ai_Destination) {
  const FilePair files = NamesOf(al_Unit);
  const FilePair sent = ArchivesOf(files);
  if (ai_Destination != kToFtp) {
    KeepResult(al_Unit, sent.remote, "web data takes no files");
    return false;
  }
  std::int16_t zipped = kZipOk;
  if (p_.form.Chk_ZIPFiles.ticked()) zipped = Zip(files.local, sent.local, "Zip: " + files.local);
  bool well = false;
  if (!Cancelled()) {
    p_.trace.Status("Send: " + sent.local + " ->" + p_.ftp.Server() + ":" + sent.remote);
    well = p_.ftp.PutFile(sent.local, sent.remote);
  }
  const bool missing = !well && !ExamineFile(sent.local);
  const std::string missing_file = ExamineFile(files.local) ? sent.local : files.local;
  if (missing) p_.trace.Status("Not sent, there is no file " + missing_file);
  // An archive that could not be made anew goes out as it was; that is no success either.
  KeepResult(al_Unit, sent.remote,
             well      ? WhyNotPacked(zipped)
             : missing ? "there is no file " + missing_file
                       : WhyFailed());
  return well;
}

std::string TransferFlows::WhyFailed() const {
  if (Cancelled()) return "cancelled";
  const std::string text = p_.ftp.LastErrorText();
  return text.substr(0, text.find(kLineBreak));
}

std::string TransferFlows::WhyNotPacked(std::int16_t ai_Result) const {
  if (ai_Result == kZipOk) return {};
  const std::string words = p_.zip.LastErrorText();
  return words.empty() ? "result " + std::to_string(ai_Result) + " of the archiver" : words;
}

void TransferFlows::KeepResult(std::int64_t al_Unit, const std::string& as_File, const std::string& as_Problem) {
  results_.push_back({al_Unit, as_File, as_Problem});
  if (as_Problem.empty()) {
    // The sign of a radio exchange stays; one that a transfer has set is over with the next that goes well.
    if (marked_.erase(al_Unit) > 0) p_.form.Lst_Units.SetMark(al_Unit - 1, RowMark::Well);
    return;
  }
  ++p_.flags.problems;
  p_.trace.LogWrite("Not done: " + as_File + ": " + as_Problem);
  if (Cancelled()) return;
  p_.form.Lst_Units.SetMark(al_Unit - 1, RowMark::Problem);
  marked_.insert(al_Unit);
}

void TransferFlows::LogCount(std::string_view as_What, std::size_t al_First) {
  const auto moved = std::count_if(results_.begin() + static_cast<std::ptrdiff_t>(al_First), results_.end(),
                                   [](const TransferResult& each) { return each.problem.empty() && !each.nothing; });
  p_.trace.LogWrite(std::string(as_What) + std::to_string(moved));
}

void TransferFlows::LeaveBackupOut() {
  if (p_.form.Chk_Backup.ticked()) p_.trace.LogWrite("Backup left out, the round ended before it");
}

bool TransferFlows::FetchAllUnits(bool ab_All, std::int32_t al_Source) {
  const auto range = UnitRange(ab_All);
  const std::int64_t selected = p_.units.Selected();
  std::vector<std::int64_t> wanted;
  for (std::int64_t i = range.first; i <= range.second; ++i) {
    const Unit& unit = p_.registry.Units[i];
    if (unit.Active != 0 && unit.GetFrom == al_Source) wanted.push_back(i);
  }
  if (wanted.empty() || al_Source != kFromFtp) return false;
  if (!p_.browser.ConfigureFTP()) return false;
  const BusyPointer busy(p_.form.Frm_Main);
  BeginRun("Get files...", static_cast<std::int64_t>(wanted.size()));
  const std::size_t first = results_.size();
  bool arrived = false;
  for (const std::int64_t unit : wanted) {
    if (Cancelled() || !p_.registry.Units.Has(unit)) break;
    p_.units.Select(unit);
    if (!p_.ftp.ConnectIfNotConnected()) {
      KeepResult(unit, NamesOf(unit).local, WhyFailed());
      break;
    }
    if (Cancelled()) break;
    if (BelongsToAnother(unit)) {
      KeepResult(unit, NamesOf(unit).local, "not fetched, another unit keeps its own readings in this file");
      continue;
    }
    arrived = GetAndUnZip(unit, al_Source) || arrived;
    p_.bars.Unit.Increment();
    p_.loop.Poll();
  }
  if (!Cancelled()) p_.trace.Status("Finished...");
  if (!Cancelled() && !arrived) ShowLastProblem();
  LogCount("Files fetched: ", first);
  EndRun(selected);
  return arrived;
}

void TransferFlows::ShowLastProblem() {
  if (results_.empty() || results_.back().problem.empty()) return;
  p_.trace.Status("Not done: " + results_.back().file + ": " + results_.back().problem);
}

bool TransferFlows::BelongsToAnother(std::int64_t al_Unit) const {
  const std::string file = p_.names.DataFileName(static_cast<std::int32_t>(al_Unit), false);
  for (std::int64_t i = 1; i <= p_.registry.Units.count(); ++i) {
    const bool collects = p_.registry.Units[i].GetFrom == kFromRadio || p_.registry.Units[i].GetFrom == kFromHandHeld;
    if (collects && p_.names.DataFileName(static_cast<std::int32_t>(i), false) == file) return true;
  }
  return false;
}

bool TransferFlows::GetAndUnZip(std::int64_t al_Unit, std::int32_t al_Source) {
  if (al_Source != kFromFtp) return false;
  const FilePair files = NamesOf(al_Unit);
  const FilePair fetched = ArchivesOf(files);
  p_.trace.Status("Receive: " + p_.ftp.Server() + ":" + fetched.remote + "->" + fetched.local);
  bool arrived = false;
  std::string problem;
  try {
    arrived = Fetch(files, fetched, problem);
  } catch (const RunTimeError& error) {
    problem = error.what();
  }
  if (problem.empty()) p_.form.Lst_Units.SetMark(al_Unit - 1, RowMark::Well);
  KeepResult(al_Unit, files.local, problem);
  return arrived;
}

bool TransferFlows::Fetch(const FilePair& av_Files, const FilePair& av_Fetched, std::string& as_Problem) {
  const std::string folder(FolderOf(av_Files.local));
  if (!EnsureFolder(folder)) {
    as_Problem = "its folder cannot be created";
    return false;
  }
  ShrinkGuard former(Calibrated() ? std::string() : av_Files.local);
  if (!p_.ftp.GetFile(av_Fetched.remote, av_Fetched.local)) {
    as_Problem = WhyFailed();
    return false;
  }
  if (p_.form.Chk_ZIPFiles.ticked()) {
    as_Problem = WhyNotPacked(Unzip(av_Fetched.local, std::string(FileNameOf(av_Files.local)), AddBackslash(folder)));
  }
  const std::string kept = former.KeepIfShorter();
  if (!kept.empty()) as_Problem = "shorter than the one before, which is kept as " + kept;
  return true;
}

void TransferFlows::DoBackup() {
  if (!p_.form.Chk_Backup.ticked()) return;
  if (p_.form.Lbl_BackupDestination.text().empty()) p_.form.Lbl_BackupDestination.SetText(p_.app.Folder());
  const BusyPointer busy(p_.form.Frm_Main);
  p_.bars.Unit.SetProcessText("Backup");
  p_.bars.Unit.Initialise(p_.registry.Units.count());
  const std::size_t first = results_.size();
  for (std::int64_t i = 1; i <= p_.registry.Units.count() && !Cancelled(); ++i) {
    if (p_.registry.Units[i].Active == 0) continue;
    if (!BackUpUnit(i)) break;
    p_.bars.Unit.Increment();
    p_.loop.Poll();
  }
  LogCount("Files backed up: ", first);
  p_.bars.Unit.Hide();
  p_.trace.Status("Finished...");
}

std::string TransferFlows::BackupFolder(std::int64_t al_Unit) const {
  const std::string destination = p_.app.AppPath(p_.form.Lbl_BackupDestination.text());
  const std::string client = p_.names.ClientFolderName(static_cast<std::int32_t>(al_Unit));
  return AddBackslash(AddBackslash(destination) + WithSlashes(client));
}

bool TransferFlows::EnsureFolder(std::string_view as_Folder) {
  try {
    return CreatePath(as_Folder);
  } catch (const RunTimeError& error) {
    p_.messages.Show("A folder for the files cannot be created. " + std::string(error.what()), "folder");
    return false;
  }
}

bool TransferFlows::BackUpUnit(std::int64_t al_Unit) {
  const std::string folder = BackupFolder(al_Unit);
  if (!EnsureFolder(folder)) {
    KeepResult(al_Unit, folder, "the folder cannot be created");
    return false;
  }
  const auto unit = static_cast<std::int32_t>(al_Unit);
  const std::string archive = folder + WithExtension(p_.names.DataFileShortName(unit, Calibrated()), kArchiveExtension);
  const std::int16_t result = Zip(p_.names.DataFileName(unit, Calibrated()), archive, "Zip: " + archive);
  // A unit that has no file yet is nobody's fault.
  if (result == kZipFilesSkipped) {
    results_.push_back({al_Unit, archive, "", true});
  } else {
    KeepResult(al_Unit, archive, WhyNotPacked(result));
  }
  return true;
}

void TransferFlows::ftpSelectedFile() {
  std::string full;
  std::string name;
  if (!p_.file_list.GetCurrent(full, name)) return;
  const List& list = p_.form.Lst_LocalFiles;
  const std::string row = list.text(list.current());
  p_.messages.Show("Got to fix this to get Folder+remote file for any file");
  // Intended: unfinished; the size and the date of the row stand for the unit and the destination.
  const std::vector<std::string_view> columns = Split(row, '\t');
  const std::int64_t unit = LeadingInteger(columns[1]);
  const std::int32_t destination = LeadingInteger(columns[2]);
  if (!p_.registry.Units.Has(unit) || destination != kToFtp) return;
  if (ZipAndSend(unit, kToFtp)) p_.trace.Status("Finished...");
}

std::int16_t TransferFlows::Zip(const std::string& as_File, const std::string& as_Archive,
                                const std::string& as_Status) {
  p_.zip.SetPreservePaths(false);
  p_.zip.SetFilesToProcess(as_File);
  p_.zip.SetZipFilename(as_Archive);
  return RunArchiver(&ZipComponent::Zip, as_Status);
}

std::int16_t TransferFlows::Unzip(const std::string& as_Archive, const std::string& as_File,
                                  const std::string& as_Folder) {
  p_.zip.SetPreservePaths(false);
  p_.zip.SetZipFilename(as_Archive);
  p_.zip.SetFilesToProcess(as_File);
  p_.zip.SetUnzipFolder(as_Folder);
  p_.zip.SetOverwrite(kReplaceExisting);
  return RunArchiver(&ZipComponent::Unzip, "Unzip " + as_Archive);
}

std::int16_t TransferFlows::RunArchiver(std::int16_t (ZipComponent::*av_Run)(), const std::string& as_Status) {
  p_.trace.Status(as_Status);
  p_.bars.Download.SetProcessText(as_Status);
  p_.bars.Download.Initialise(0);
  const std::int16_t result = (p_.zip.*av_Run)();
  if (result != kZipOk) ShowZipError(result, as_Status, p_.zip, p_.messages, p_.trace);
  p_.bars.Download.Hide();
  return result;
}

}  // namespace corvane
