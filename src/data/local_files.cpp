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

LocalFiles::LocalFiles(Form& av_Form, const RunFlags& av_Flags, const OperationSlot& av_Slot, const AppInfo& av_App,
                       const FileNames& av_Names, CFileListbox& av_FileList, EventLoop& av_Loop, Dialogs& av_Dialogs,
                       Shell& av_Shell, Messages& av_Messages)
    : form_(av_Form),
      flags_(av_Flags),
      slot_(av_Slot),
      app_(av_App),
      names_(av_Names),
      file_list_(av_FileList),
      loop_(av_Loop),
      dialogs_(av_Dialogs),
      shell_(av_Shell),
      messages_(av_Messages) {}

void LocalFiles::RefreshFileListBox() {
  if (flags_.loading) return;
  const std::int64_t begin = loop_.MonotonicMilliseconds();
  stale_ = slot_.Taken() && last_refresh_cost_ * kRefreshShare > begin - last_refresh_end_;
  if (stale_) return;

  std::string folder = names_.DataFolder();
  const auto unit = static_cast<std::int32_t>(form_.Lst_Units.current() + 1);
  const std::string client_folder = WithSlashes(names_.ClientFolderName(unit));
  // Intended: a separator always stands before the client folder, also behind one that ends the data folder.
  if (!client_folder.empty()) folder += "/" + client_folder;
  form_.Lbl_Path.SetText(folder);
  file_list_.SetPattern(PatternFor(form_, names_));
  file_list_.SetSortBy(static_cast<std::int16_t>(form_.Opt_SortFile.GetOptionIndex()));
  file_list_.SetSortDirection(static_cast<std::int16_t>(form_.Opt_Direction.GetOptionIndex()));
  file_list_.SetPath(folder);
  file_list_.Refresh(form_.Lst_LocalFiles);
  last_refresh_end_ = loop_.MonotonicMilliseconds();
  last_refresh_cost_ = last_refresh_end_ - begin;
}

void LocalFiles::RefreshIfStale() {
  if (stale_) RefreshFileListBox();
}

void LocalFiles::UpdateFileExamples() {
  form_.Lbl_DateExample.SetText(FormatDate(loop_.Now(), form_.Txt_DateFormat.text()));
  form_.Lbl_FileExample[0].SetText(names_.DataFileName(FileNames::kExample, false));
  form_.Lbl_FileExample[1].SetText(names_.DataFileName(FileNames::kExample, true));
}

void LocalFiles::DeleteFiles() {
  std::string full;
  std::string name;
  std::vector<std::string> chosen;  // the list may be filled anew while the question waits
  const bool several = file_list_.SelCount() > 1;
  if (!several && !file_list_.GetCurrent(full, name)) return;
  if (!several) chosen.push_back(full);
  while (several && file_list_.GetNextSelected(full, name)) chosen.push_back(full);
  if (!messages_.Confirm(several ? "Delete all selected files" : "Delete: " + full)) return;
  for (const std::string& file : chosen) {
    if (const Status removed = RemoveFile(file); !removed.ok()) return file_list_.ReportError(removed.text(), "Delete");
  }
  RefreshFileListBox();
}

void LocalFiles::EditDataFile() {
  std::string full;
  std::string name;
  if (file_list_.GetCurrent(full, name)) OpenInEditor(full);
}

void LocalFiles::EditFile(std::int16_t ai_Index) {
  OpenInEditor(SettingsFile(ai_Index));
}

void LocalFiles::EditTrace() {
  OpenInEditor(app_.AppPath(kLogFileName));
}

void LocalFiles::GetFile(std::int16_t ai_Index) {
  const std::string folder(FolderOf(SettingsFile(ai_Index)));
  const char* filter = ai_Index == kLanguageFile ? kLanguageFilter : kLookupFilter;
  TakePath(dialogs_.ChooseFile("Choose a file", filter, folder),
           [this, ai_Index](const std::string& path) { form_.Txt_File[ai_Index].SetText(path); });
}

void LocalFiles::GetFolder() {
  TakePath(dialogs_.ChooseFolder("Choose the folder of the data files", names_.DataFolder()),
           [this](const std::string& path) { form_.Txt_Folder.SetText(path); });
}

void LocalFiles::GetBackupFolder() {
  const std::string present = WithSlashes(form_.Lbl_BackupDestination.text());
  TakePath(dialogs_.ChooseFolder("Choose the folder of the backups", app_.AppPath(present)),
           [this](const std::string& path) { form_.Lbl_BackupDestination.SetText(path); });
}

std::string LocalFiles::SettingsFile(std::int16_t ai_Index) const {
  return app_.AppPath(WithSlashes(form_.Txt_File[ai_Index].text()));
}

void LocalFiles::OpenInEditor(const std::string& as_File) {
  const Status opened = shell_.OpenEditor(as_File);
  if (!opened.ok()) messages_.Show(opened.text(), "Editor");
}

void LocalFiles::TakePath(const std::optional<std::string>& as_Path,
                          const std::function<void(const std::string&)>& av_Take) {
  if (!as_Path) return;
  if (as_Path->size() > CutCharacters(*as_Path, TextField::kLongestText).size()) {
    messages_.Show("This name is too long for the settings, choose a shorter path: " + *as_Path);
    return;
  }
  av_Take(*as_Path);
}

}  // namespace corvane
