#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "data/file_listbox.h"
#include "form/form.h"
#include "platform/dialogs.h"
#include "platform/event_loop.h"
#include "platform/shell.h"
#include "state/app_info.h"
#include "state/file_names.h"
#include "state/operation_slot.h"
#include "state/run_flags.h"
#include "ui/messages.h"

namespace corvane {

/// The list of local data files and the commands on them and on the files of the settings page.
class LocalFiles {
 public:
  /// What the list and its commands work with; all must outlive it.
  struct Parts {
    Form& form;
    const RunFlags& flags;
    const OperationSlot& slot;
    const AppInfo& app;
    const FileNames& names;
    CFileListbox& file_list;
    EventLoop& loop;
    Dialogs& dialogs;
    Shell& shell;
    Messages& messages;
  };
  explicit LocalFiles(const Parts& av_Parts) : p_(av_Parts) {}

  /// Rebuilds the local file list; does nothing while the window is loading.
  ///
  /// While an operation runs, a refresh that would cost more than a twentieth of its time is put off to its end.
  void RefreshFileListBox();
  /// Makes up a refresh that was put off.
  void RefreshIfStale();
  /// Refreshes the date and file-name examples.
  void UpdateFileExamples();
  /// Deletes the focused file, or every selected one, after a question. **Yields.**
  void DeleteFiles();
  /// Opens the focused file in the text editor. **Yields** when none has the focus.
  void EditDataFile();
  /// Opens the file of `Txt_File[ai_Index]` in the text editor.
  void EditFile(std::int16_t ai_Index);
  /// Opens the trace log in the text editor.
  void EditTrace();
  /// Lets the user choose the file of `Txt_File[ai_Index]`. **Yields.**
  void GetFile(std::int16_t ai_Index);
  /// Lets the user choose the data folder. **Yields.**
  void GetFolder();
  /// Lets the user choose the folder of the backups. **Yields.**
  void GetBackupFolder();
  /// The full name of the file in `Txt_File[ai_Index]`.
  [[nodiscard]] std::string SettingsFile(std::int16_t ai_Index) const;

 private:
  void OpenInEditor(const std::string& as_File);
  /// Calls `av_Take` with a chosen path, or reports one that is too long for the settings.
  void TakePath(const std::optional<std::string>& as_Path, const std::function<void(const std::string&)>& av_Take);

  Parts p_;
  bool stale_ = false;
  std::int64_t last_refresh_end_ = 0;   ///< monotonic milliseconds
  std::int64_t last_refresh_cost_ = 0;  ///< milliseconds
};

}  // namespace corvane
