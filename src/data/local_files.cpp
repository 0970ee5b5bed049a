#include "data/local_files.h"

#include <vector>

#include "base/files.h"
#include "base/format.h"
#include "base/paths.h"
#include "base/text.h"

namespace corvane {
namespace {

enum WhichFile : int { kRawFiles = 0, kConvertedFiles = 1, kZippedFiles = 2 };

constexpr std::int16_t kLanguageFile = 3;
constexpr const char* kLookupFilter = "Lookup files(*.lkp)|*.lkp|All files(*.*)|*.*";
constexpr const char* kLanguageFilter = "Language files(*.lng)|*.lng|All files(*.*)|*.*";
constexpr const char* kLogFileName = "corvane.log";
/// A refresh while an operation runs may take one part in this many of its time.
constexpr std::int64_t kRefreshShare = 20;

std::string PatternFor(const Form& av_Form, const FileNames& av_Names) {
  const std::string start = av_Form.Txt_Prefix.text() + "*.";
  const int which = av_Form.Opt_WhichFile.GetOptionIndex();
  return which == kZippedFiles ? start + "zip" : start + av_Names.DataFileExtension(which == kConvertedFiles);
}

}  // namespace

void LocalFiles::RefreshFileListBox() {
  if (p_.flags.loading) return;
  const std::int64_t begin = p_.loop.MonotonicMilliseconds();
  // What is read while an operation runs is read again behind its last step.
  stale_ = p_.slot.Taken();
  if (stale_ && last_refresh_cost_ * kRefreshShare > begin - last_refresh_end_) return;

  std::string folder = p_.names.DataFolder();
  const auto unit = static_cast<std::int32_t>(p_.form.Lst_Units.current() + 1);
  const std::string client_folder = WithSlashes(p_.names.ClientFolderName(unit));
  // Intended: a separator always stands before the client folder, also behind one that ends the data folder.
  if (!client_folder.empty()) folder += "/" + client_folder;
  p_.form.Lbl_Path.SetText(folder);
  p_.file_list.SetPattern(PatternFor(p_.form, p_.names));
  p_.file_list.SetSortBy(static_cast<std::int16_t>(p_.form.Opt_SortFile.GetOptionIndex()));
  p_.file_list.SetSortDirection(static_cast<std::int16_t>(p_.form.Opt_Direction.GetOptionIndex()));
  p_.file_list.SetPath(folder);
  p_.file_list.Refresh(p_.form.Lst_LocalFiles);
  last_refresh_end_ = p_.loop.MonotonicMilliseconds();
  last_refresh_cost_ = last_refresh_end_ - begin;
}

void LocalFiles::RefreshIfStale() {
  if (stale_) RefreshFileListBox();
}

void LocalFiles::UpdateFileExamples() {
  p_.form.Lbl_DateExample.SetText(FormatDate(p_.loop.Now(), p_.form.Txt_DateFormat.text()));
  p_.form.Lbl_FileExample[0].SetText(p_.names.DataFileName(FileNames::kExample, false));
  p_.form.Lbl_FileExample[1].SetText(p_.names.DataFileName(FileNames::kExample, true));
}

void LocalFiles::DeleteFiles() {
  std::string full;
  std::string name;
  std::vector<std::string> chosen;  // the list may be filled anew while the question waits
  const bool several = p_.file_list.SelCount() > 1;
  if (!several && !p_.file_list.GetCurrent(full, name)) return;
  if (!several) chosen.push_back(full);
  while (several && p_.file_list.GetNextSelected(full, name)) chosen.push_back(full);
  if (!p_.messages.Confirm(several ? "Delete all selected files" : "Delete: " + full, {}, kSecondDefault)) return;
  for (const std::string& file : chosen) {
    if (const Status removed = RemoveFile(file); !removed.ok())
      return p_.file_list.ReportError(removed.text(), "Delete");
  }
  RefreshFileListBox();
}

void LocalFiles::EditDataFile() {
  std::string full;
  std::string name;
  if (p_.file_list.GetCurrent(full, name)) OpenInEditor(full);
}

void LocalFiles::EditFile(std::int16_t ai_Index) {
  OpenInEditor(SettingsFile(ai_Index));
}

void LocalFiles::EditTrace() {
  OpenInEditor(p_.app.AppPath(kLogFileName));
}

void LocalFiles::GetFile(std::int16_t ai_Index) {
  const std::string folder(FolderOf(SettingsFile(ai_Index)));
  const char* filter = ai_Index == kLanguageFile ? kLanguageFilter : kLookupFilter;
  TakePath(p_.dialogs.ChooseFile("Choose a file", filter, folder),
           [this, ai_Index](const std::string& path) { p_.form.Txt_File[ai_Index].SetText(path); });
}

void LocalFiles::GetFolder() {
  TakePath(p_.dialogs.ChooseFolder("Choose the folder of the data files", p_.names.DataFolder()),
           [this](const std::string& path) { p_.form.Txt_Folder.SetText(path); });
}

void LocalFiles::GetBackupFolder() {
  const std::string present = WithSlashes(p_.form.Lbl_BackupDestination.text());
  TakePath(p_.dialogs.ChooseFolder("Choose the folder of the backups", p_.app.AppPath(present)),
           [this](const std::string& path) { p_.form.Lbl_BackupDestination.SetText(path); });
}

std::string LocalFiles::SettingsFile(std::int16_t ai_Index) const {
  return p_.names.SettingsFile(ai_Index);
}

void LocalFiles::OpenInEditor(const std::string& as_File) {
  const Status opened = p_.shell.OpenEditor(as_File);
  if (!opened.ok()) p_.messages.Show(opened.text(), "Editor");
}

void LocalFiles::TakePath(const std::optional<std::string>& as_Path,
                          const std::function<void(const std::string&)>& av_Take) {
  if (!as_Path) return;
  if (as_Path->size() > CutCharacters(*as_Path, TextField::kLongestText).size()) {
    p_.messages.Show("This name is too long for the settings, choose a shorter path: " + *as_Path);
    return;
  }
  av_Take(*as_Path);
}

}  // namespace corvane
