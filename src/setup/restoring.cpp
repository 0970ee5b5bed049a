#include "setup/restoring.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <map>
#include <system_error>

#include "base/checksum.h"
#include "base/files.h"
#include "base/folder_rights.h"
#include "base/numbers.h"
#include "base/paths.h"
#include "base/replacement_file.h"
#include "base/status.h"
#include "base/text.h"
#include "history/history_reading.h"
#include "setup/field_rules.h"
#include "state/settings_file.h"

namespace corvane {
namespace {

constexpr std::string_view kGeneral = "General";
constexpr std::string_view kDataKey = "Folder";
constexpr unsigned kReadByGroup = 0640;
constexpr std::int64_t kLargestNamedFile = 64LL * 1024 * 1024;
constexpr int kMostFormer = 100'000;

/// Whether the file is there with these contents.
bool Holds(const std::string& as_File, const ArchiveEntry& av_Entry) {
  const auto about = ExamineFile(as_File);
  std::string contents;
  return about && !about->is_folder && about->size == av_Entry.size &&
         ReadFile(as_File, contents, kLargestNamedFile).ok() && Crc32(contents) == av_Entry.crc;
}

/// The program's own files in the application folder, which no data file replaces.
bool IsOwnFile(std::string_view as_Name) {
  constexpr std::array<std::string_view, 10> kOwn = {
      "corvane.ini",    "corvane.ini.recovery", "corvane.lock",       "corvane.log",  "history.db",
      "history.db-wal", "history.db-shm",       "history.db-journal", "restore.list", "summary.csv"};
  return as_Name.starts_with("restore.part/") || std::find(kOwn.begin(), kOwn.end(), as_Name) != kOwn.end();
}

/// Throws where no file can be put, before anything is changed.
void RequirePlace(const std::string& as_Target) {
  if (IsFolder(as_Target)) throw RunTimeError(as_Target + " is a folder, and a file is to be put there: move it away");
  std::string above(FolderOf(as_Target));
  while (!above.empty() && !ExamineFile(above)) above = std::string(FolderOf(above));
  if (above.empty()) return;
  if (!IsFolder(above)) throw RunTimeError(above + " is a file, and a folder is to be put there: move it away");
  if (!MayWriteInto(above)) throw RunTimeError("you may not write into the folder " + above);
}

}  // namespace

Restoring::Restoring(std::string as_Home, const KeptSettings& av_Settings, Archive& av_Archive)
    : home_(std::move(as_Home)), rules_(av_Settings), archive_(av_Archive) {}

void Restoring::Examine(const std::string& as_Archive) {
  path_ = as_Archive;
  placed_.clear();
  changed_.clear();
  Require(archive_.Open(path_));
  std::string text;
  if (!archive_.Read(std::string(kManifestName), ProfileFile::kLargestFile, text).ok()) {
    throw RunTimeError(path_ + " cannot be restored: it was not made by corvanectl keep, or is damaged");
  }
  try {
    manifest_ = ReadManifest(text);
    CheckContents();
  } catch (const RunTimeError& error) {
    throw RunTimeError(path_ + " cannot be restored: " + error.what());
  }
  PlanSettings();
  for (const ArchiveEntry& entry : manifest_.entries) PlanFile(entry);
  for (const Placed& placed : placed_) RequirePlace(placed.target);
}

void Restoring::CheckContents() const {
  std::vector<ArchiveEntry> stored;
  Require(archive_.List(stored));
  std::map<std::string, const ArchiveEntry*> listed;
  for (const ArchiveEntry& entry : manifest_.entries) listed[entry.name] = &entry;
  // The manifest stands in the archive, and not in its own list.
  if (stored.size() != manifest_.entries.size() + 1 || listed.size() != manifest_.entries.size()) {
    throw RunTimeError("it does not hold what its list of contents says");
  }
  for (const ArchiveEntry& entry : stored) {
    if (!IsSafeName(entry.name)) throw RunTimeError("\"" + entry.name + "\" leads out of the folder");
    if (entry.name == kManifestName) continue;
    const auto found = listed.find(entry.name);
    if (found == listed.end()) throw RunTimeError("\"" + entry.name + "\" is not in its list of contents");
    if (found->second->size != entry.size || found->second->crc != entry.crc) {
      throw RunTimeError("\"" + entry.name + "\" is not what its list of contents says");
    }
    Require(archive_.Extract(entry.name, "", 0));
    listed.erase(found);
  }
}

std::string Restoring::InHome(std::string_view as_Name) const {
  return AddBackslash(home_) + std::string(as_Name);
}

std::string Restoring::Moved(const std::string& as_Path) const {
  if (as_Path == manifest_.folder) return home_;
  const std::string former = AddBackslash(manifest_.folder);
  return as_Path.starts_with(former) ? InHome(as_Path.substr(former.size())) : as_Path;
}

std::vector<KeptSettings::Path>::const_iterator Restoring::PathOf(std::string_view as_Key) const {
  return std::find_if(rules_.paths.begin(), rules_.paths.end(),
                      [as_Key](const KeptSettings::Path& path) { return path.key == as_Key; });
}

std::string Restoring::ValueOf(const std::string& as_Key) const {
  const auto path = PathOf(as_Key);
  const std::string value = settings_.Get(kGeneral, as_Key, path == rules_.paths.end() ? "" : path->fallback);
  return value == kEmptyValue ? std::string() : WithSlashes(value);
}

void Restoring::Change(const std::string& as_Key, const std::string& as_Now) {
  const std::string before = ValueOf(as_Key);
  if (before == as_Now) return;
  if (CutCharacters(as_Now, kLongestValue).size() < as_Now.size()) {
    throw RunTimeError("the name of the application folder is too long: " + as_Key + " would be " + as_Now);
  }
  settings_.Set(kGeneral, as_Key, as_Now);
  changed_.push_back({as_Key, before, as_Now});
}

void Restoring::PlanSettings() {
  std::string text;
  Require(archive_.Read(std::string(kKeptSettings), ProfileFile::kLargestFile, text));
  settings_ = ProfileFile();
  settings_.Parse(std::move(text));
  for (const KeptSettings::Path& path : rules_.paths) Change(path.key, Moved(ValueOf(path.key)));
  data_folder_ = Moved(manifest_.data_folder);
  const bool in_home = data_folder_ == home_ || data_folder_.starts_with(AddBackslash(home_));
  const bool usable = in_home || MayWriteInto(data_folder_);
  if (!manifest_.data || usable) return;
  // Data of a disk that is not here go where there is room for the rest.
  data_folder_ = InHome("data");
  Change(std::string(kDataKey), data_folder_);
}

void Restoring::PlanFile(const ArchiveEntry& av_Entry) {
  if (av_Entry.name == kKeptSettings) return placed_.push_back({av_Entry.name, InHome(kSettingsFile), kOwnerOnly});
  if (av_Entry.name == kKeptHistory) return placed_.push_back({av_Entry.name, InHome(kHistoryFile), kReadByGroup});
  if (av_Entry.name == kKeptSummary) return placed_.push_back({av_Entry.name, InHome("summary.csv")});
  if (av_Entry.name.starts_with(kKeptData)) {
    const std::string below = av_Entry.name.substr(kKeptData.size());
    if (IsOwnFile(below)) throw RunTimeError(path_ + " cannot be restored: \"" + av_Entry.name + "\" is no data file");
    return placed_.push_back({av_Entry.name, AddBackslash(data_folder_) + below});
  }
  const std::vector<std::string_view> parts = Split(av_Entry.name, '/');
  const bool named =
      av_Entry.name.starts_with(kKeptFiles) && parts.size() == 3 && PathOf(parts[1]) != rules_.paths.end();
  if (!named) throw RunTimeError(path_ + " cannot be restored: nothing is known of \"" + av_Entry.name + "\"");
  const std::string key(parts[1]);
  const std::string value = ValueOf(key);
  std::string target = value.starts_with('/') ? value : InHome(value);
  const bool in_home = target.starts_with(AddBackslash(home_)) && IsSafeName(target.substr(home_.size() + 1));
  if (!in_home) {
    if (Holds(target, av_Entry)) return;
    target = InHome("restored/" + key + "/" + std::string(parts[2]));
    Change(key, target);
  }
  placed_.push_back({av_Entry.name, target});
}

std::string Restoring::NewBeforeFolder() const {
  for (int number = 1; number < kMostFormer; ++number) {
    const std::string folder = InHome("before-restore-" + std::to_string(number));
    if (!ExamineFile(folder)) return folder;
  }
  throw RunTimeError("there are too many folders before-restore-... in " + home_);
}

std::string Restoring::PutIn() {
  const std::string stage = StageFolder(home_);
  const std::string before = NewBeforeFolder();
  DropStage(home_);
  CreatePath(stage);
  std::vector<RestoreMove> moves;
  // What stands beside the former files is theirs, and would be taken for a part of the new ones.
  for (const char* const name : {"history.db-wal", "history.db-shm", "history.db-journal", "corvane.ini.recovery"}) {
    moves.push_back({"", InHome(name)});
  }
  for (const Placed& placed : placed_) {
    const std::string staged = std::to_string(moves.size());
    if (placed.name == kKeptSettings) {
      Require(WriteFileAtomically(stage + staged, settings_.Text(), placed.mode));
    } else {
      Require(archive_.Extract(placed.name, stage + staged, placed.mode));
    }
    moves.push_back({staged, placed.target});
  }
  Require(SyncFolderOf(stage + "0"));
  Require(MakeFolder(before));
  Require(CommitRestore(home_, before, moves));
  std::string done;
  if (const Status finished = FinishRestore(home_, done); !finished.ok()) {
    throw RunTimeError("it could not be finished: " + finished.text() +
                       ". The next start of a program goes on with it; mend the cause first");
  }
  // Where nothing was replaced it is empty.
  std::error_code kept;
  return std::filesystem::remove(before, kept) ? "" : before;
}

}  // namespace corvane
