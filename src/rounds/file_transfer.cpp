#include "rounds/file_transfer.h"

#include <vector>

#include "base/files.h"
#include "base/numbers.h"
#include "base/paths.h"
#include "base/status.h"
#include "base/text.h"
#include "rounds/client_folders.h"
#include "transfer/shrink_guard.h"

namespace corvane {

void FileTransfer::Cancel() {
  p_.ftp.SetCancel(true);
  p_.archiver.Abort();
}

FileTransfer::FilePair FileTransfer::NamesOf(std::int64_t al_Unit) const {
  const auto unit = static_cast<std::int32_t>(al_Unit);
  const bool calibrated = p_.names.TransfersCalibrated();
  return {p_.names.DataFileName(unit, calibrated), p_.names.RemoteDataFileName(unit, calibrated)};
}

FileTransfer::FilePair FileTransfer::ArchivesOf(const FilePair& av_Files) const {
  if (!p_.form.Chk_ZIPFiles.ticked()) return av_Files;
  return {WithExtension(av_Files.local, Archiver::kExtension), WithExtension(av_Files.remote, Archiver::kExtension)};
}

bool FileTransfer::ZipAndSend(std::int64_t al_Unit, std::int16_t ai_Destination) {
  const FilePair files = NamesOf(al_Unit);
  const FilePair sent = ArchivesOf(files);
  if (ai_Destination != kToFtp) {
    p_.results.Keep({al_Unit, Target::Server, sent.local, sent.remote, "web data takes no files"});
    return false;
  }
  if (!MayTry({al_Unit, Target::Server, sent.local, sent.remote, ""})) return false;
  std::int16_t zipped = kZipOk;
  if (p_.form.Chk_ZIPFiles.ticked()) zipped = p_.archiver.Zip(files.local, sent.local, "Zip: " + files.local);
  bool well = false;
  if (!Cancelled(p_.link, p_.flags)) {
    p_.trace.Status("Send: " + sent.local + " ->" + p_.ftp.Server() + ":" + sent.remote);
    well = p_.tries.Run([&] { return p_.ftp.PutFile(sent.local, sent.remote); });
  }
  const bool missing = !well && !ExamineFile(sent.local);
  const std::string missing_file = ExamineFile(files.local) ? sent.local : files.local;
  if (missing) p_.trace.Status("Not sent, there is no file " + missing_file);
  // An archive that could not be made anew goes out as it was; that is no success either.
  p_.results.Keep({al_Unit, Target::Server, sent.local, sent.remote,
                   well      ? p_.archiver.WhyNotPacked(zipped)
                   : missing ? "there is no file " + missing_file
                             : WhyFailed()});
  return well;
}

bool FileTransfer::MayTry(TransferResult av_File) {
  if (!p_.tries.Ended()) return true;
  av_File.problem = "not tried, the server was given up";
  p_.results.Keep(av_File);
  return false;
}

std::string FileTransfer::WhyFailed() const {
  if (Cancelled(p_.link, p_.flags)) return "cancelled";
  const std::string text = p_.ftp.LastErrorText();
  return text.substr(0, text.find(kLineBreak));
}

void FileTransfer::KeepFetched(std::int64_t al_Unit, const std::string& as_Problem) {
  const std::string local = NamesOf(al_Unit).local;
  p_.results.Keep({al_Unit, Target::Fetched, local, local, as_Problem});
}

bool FileTransfer::ReachServer(std::int64_t al_Unit) {
  if (p_.ftp.ConnectIfNotConnected()) return true;
  KeepFetched(al_Unit, WhyFailed());
  return false;
}

bool FileTransfer::MayFetch(std::int64_t al_Unit) {
  const std::string file = p_.names.DataFileName(static_cast<std::int32_t>(al_Unit), false);
  for (std::int32_t i = 1; i <= p_.registry.Units.count(); ++i) {
    const std::int32_t from = p_.registry.Units[i].GetFrom;
    if (from != kFromRadio && from != kFromHandHeld) continue;
    if (p_.names.DataFileName(i, false) != file) continue;
    KeepFetched(al_Unit, "not fetched, another unit keeps its own readings in this file");
    return false;
  }
  return true;
}

bool FileTransfer::GetAndUnZip(std::int64_t al_Unit, std::int32_t al_Source) {
  if (al_Source != kFromFtp) return false;
  const FilePair files = NamesOf(al_Unit);
  const FilePair fetched = ArchivesOf(files);
  if (!MayTry({al_Unit, Target::Fetched, files.local, files.local, ""})) return false;
  p_.trace.Status("Receive: " + p_.ftp.Server() + ":" + fetched.remote + "->" + fetched.local);
  bool arrived = false;
  std::string problem;
  try {
    arrived = Fetch(files, fetched, problem);
  } catch (const RunTimeError& error) {
    problem = error.what();
  }
  if (problem.empty()) p_.form.Lst_Units.SetMark(al_Unit - 1, RowMark::Well);
  KeepFetched(al_Unit, problem);
  return arrived;
}

bool FileTransfer::Fetch(const FilePair& av_Files, const FilePair& av_Fetched, std::string& as_Problem) {
  const std::string folder(FolderOf(av_Files.local));
  if (!EnsureFolder(folder, p_.messages)) {
    as_Problem = "its folder cannot be created";
    return false;
  }
  ShrinkGuard former(av_Files.local);
  if (!p_.tries.Run([&] { return p_.ftp.GetFile(av_Fetched.remote, av_Fetched.local); })) {
    as_Problem = WhyFailed();
    return false;
  }
  if (p_.form.Chk_ZIPFiles.ticked()) {
    as_Problem = p_.archiver.WhyNotPacked(
        p_.archiver.Unzip(av_Fetched.local, std::string(FileNameOf(av_Files.local)), AddBackslash(folder)));
  }
  const std::string kept = former.KeepIfShorter();
  if (!kept.empty()) as_Problem = "shorter than the one before, which is kept as " + kept;
  return true;
}

void FileTransfer::ftpSelectedFile() {
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
  BeginStep();
  if (ZipAndSend(unit, kToFtp)) p_.trace.Status("Finished...");
}

}  // namespace corvane
