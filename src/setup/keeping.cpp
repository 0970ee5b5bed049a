#include "setup/keeping.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <system_error>

#include "base/files.h"
#include "base/paths.h"
#include "base/profile.h"
#include "base/text.h"
#include "history/history_reading.h"
#include "setup/field_rules.h"
#include "state/settings_file.h"

namespace corvane {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kGeneral = "General";

/// Takes a file away at the end, whatever happens.
class TemporaryFile {
 public:
  explicit TemporaryFile(std::string as_Path) : path_(std::move(as_Path)) { (void)RemoveFile(path_); }
  ~TemporaryFile() { (void)RemoveFile(path_); }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  std::string path_;
};

std::string WithoutPasswords(std::string as_Settings, const KeptSettings& av_Rules) {
  ProfileFile profile;
  profile.Parse(std::move(as_Settings));
  for (const std::string_view section : {std::string_view("General"), std::string_view("Clients")}) {
    for (const std::string& key : profile.Keys(section)) {
      if (av_Rules.is_password(section, key)) profile.Set(section, key, kEmptyValue);
    }
  }
  return profile.Text();
}

void Rename(const std::string& as_From, const std::string& as_To) {
  std::error_code failed;
  fs::rename(as_From, as_To, failed);
  if (failed) throw RunTimeError(Status::FromErrno(as_To, failed.value()));
}

/// The archive that is there becomes the first generation, that one the second; its own name stays until it is
/// replaced.
void MakeRoom(const std::string& as_Archive, int al_Generations) {
  if (al_Generations < 1 || !ExamineFile(as_Archive)) return;
  for (int number = al_Generations; number > 1; --number) {
    const std::string younger = GenerationName(as_Archive, number - 1);
    if (ExamineFile(younger)) Rename(younger, GenerationName(as_Archive, number));
  }
  Require(GiveSecondName(as_Archive, GenerationName(as_Archive, 1)));
}

}  // namespace

std::string GenerationName(const std::string& as_Archive, int al_Number) {
  return WithExtension(as_Archive, std::to_string(al_Number) + ".zip");
}

Kept Keeping::Keep(const KeepingOrder& av_Order) {
  sources_.clear();
  taken_.clear();
  kept_ = {};
  if (const std::string problem = NewFileProblem(av_Order.archive); !problem.empty()) throw RunTimeError(problem);
  const TemporaryFile part(av_Order.archive + ".part");
  const TemporaryFile history(av_Order.archive + ".history.part");
  std::string settings;
  Require(ReadFile(p_.app.AppPath(kSettingsFile), settings, ProfileFile::kLargestFile));
  AddNamedFiles(settings);
  AddSettings(av_Order, std::move(settings));
  if (ExamineFile(p_.app.AppPath(kHistoryFile))) AddFile(std::string(kKeptHistory), history.path());
  if (av_Order.data) AddData();
  kept_.files = static_cast<std::int64_t>(sources_.size());
  KeptManifest manifest = BeginManifest(av_Order);
  const auto write = [&] { Write(av_Order.archive, part.path(), history.path(), manifest); };
  p_.aside ? p_.aside(write) : write();
  if (p_.cancelled && p_.cancelled()) throw RunTimeError(av_Order.archive + ": the run was aborted");
  MakeRoom(av_Order.archive, av_Order.generations);
  Rename(part.path(), av_Order.archive);
  Require(SyncFolderOf(av_Order.archive));
  if (const auto about = ExamineFile(av_Order.archive)) kept_.bytes = about->size;
  return kept_;
}

void Keeping::AddSettings(const KeepingOrder& av_Order, std::string as_Settings) {
  if (!av_Order.passwords) as_Settings = WithoutPasswords(std::move(as_Settings), p_.settings);
  sources_.insert(sources_.begin(), {std::string(kKeptSettings), "", std::move(as_Settings)});
}

void Keeping::AddNamedFiles(const std::string& as_Settings) {
  ProfileFile profile;
  profile.Parse(as_Settings);
  for (const auto& [key, fallback] : p_.settings.paths) {
    const std::string value = profile.Get(kGeneral, key, fallback);
    if (value.empty() || value == kEmptyValue) continue;
    const std::string file = p_.app.AppPath(WithSlashes(value));
    const auto about = ExamineFile(file);
    if (about && about->is_folder) continue;
    if (!about) {
      if (value != fallback) kept_.left_out.push_back(key + ": there is no " + file);
      continue;
    }
    AddFile(std::string(kKeptFiles) + key + "/" + std::string(FileNameOf(file)), file);
  }
}

void Keeping::AddData() {
  std::set<std::string> clients = {""};
  for (const Client& client : p_.registry.Clients) clients.insert(WithSlashes(client.Folder));
  for (const std::string& client : clients) AddFolder(client);
  const std::string summary = p_.app.AppPath("summary.csv");
  if (ExamineFile(summary)) AddFile(std::string(kKeptSummary), summary);
}

void Keeping::AddFolder(const std::string& as_Client) {
  std::string_view below = as_Client;
  while (below.ends_with('/')) below.remove_suffix(1);
  while (below.starts_with('/')) below.remove_prefix(1);
  const std::string folder = AddBackslash(p_.names.DataFolder()) + AddBackslash(below);
  if (!below.empty() && !IsSafeName(below)) {
    kept_.left_out.push_back("The data files in " + folder + ": the client's folder leads out of the data folder");
    return;
  }
  const std::string raw = "." + p_.names.DataFileExtension(false);
  const std::string calibrated = "." + p_.names.DataFileExtension(true);
  const auto wanted = [&](std::string_view name) {
    return name.ends_with(raw) || name.ends_with(calibrated) || name.ends_with(raw + ".bad");
  };
  if (!ExamineFile(folder)) return;
  std::vector<FolderEntry> entries;
  Require(ListFiles(folder, wanted, entries));
  std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
  for (const FolderEntry& entry : entries) {
    AddFile(std::string(kKeptData) + AddBackslash(below) + entry.name, folder + entry.name);
  }
}

void Keeping::AddFile(const std::string& as_Name, const std::string& as_File) {
  if (!IsSafeName(as_Name)) {
    kept_.left_out.push_back(as_File + ": its name cannot be kept");
    return;
  }
  if (taken_.insert(as_Name).second) sources_.push_back({as_Name, as_File, ""});
}

KeptManifest Keeping::BeginManifest(const KeepingOrder& av_Order) const {
  KeptManifest manifest;
  manifest.version = AppInfo::VersionText();
  manifest.made = av_Order.made;
  manifest.host = av_Order.host;
  manifest.folder = p_.app.Folder();
  manifest.data_folder = p_.names.DataFolder();
  manifest.passwords = av_Order.passwords;
  manifest.data = av_Order.data;
  return manifest;
}

void Keeping::Write(const std::string& as_Archive, const std::string& as_Part, const std::string& as_History,
                    KeptManifest& av_Manifest) {
  if (taken_.contains(std::string(kKeptHistory))) {
    // Made here, so that a place that cannot be written is told by the name that was asked for.
    OutputFile copy;
    if (Status made = copy.Create(as_History, kOwnerOnly); !made.ok()) {
      throw RunTimeError(Status::FromErrno(as_Archive, made.code()));
    }
    copy.Close();
    Require(p_.copy_history(p_.app.AppPath(kHistoryFile), as_History));
  }
  Require(p_.archive.Add(as_Part, as_Archive, sources_));
  // Told of what was stored: a file may have been written since it was looked at.
  const bool listed = p_.archive.Open(as_Part).ok() && p_.archive.List(av_Manifest.entries).ok();
  if (!listed) throw RunTimeError(as_Archive + ": cannot be read again");
  Require(p_.archive.Add(as_Part, as_Archive, {{std::string(kManifestName), "", ManifestText(av_Manifest)}}));
}

}  // namespace corvane
