#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "form/form.h"
#include "platform/dialogs.h"
#include "state/app_info.h"
#include "state/link_state.h"
#include "state/records.h"
#include "state/run_flags.h"
#include "trace/trace.h"
#include "transfer/my_ftp.h"
#include "ui/messages.h"

namespace corvane {

/// The FTP page: hands the settings to the session, shows the remote folder and works on it.
class RemoteBrowser {
 public:
  /// What the page works with; all must outlive this object.
  struct Parts {
    Form& form;
    const Registry& registry;
    RunFlags& flags;
    const LinkState& link;
    const AppInfo& app;
    MyFTP& ftp;
    Dialogs& dialogs;
    Messages& messages;
    Trace& trace;
  };
  explicit RemoteBrowser(const Parts& av_Parts) : p_(av_Parts) {}

  /// Hands the fields of the FTP page to the session; false when something is missing, which has been shown.
  /// **Yields** then.
  [[nodiscard]] bool ConfigureFTP();
  /// The same, and says nothing: see `MyFTP::LastErrorText`.
  [[nodiscard]] bool SetUp();
  /// Lists the remote folder anew; the list stays as it was when the server cannot be reached. **Yields.**
  bool RefreshRemoteList();
  /// Makes the first line with that name in its first column current.
  void SelectRemoteEntry(std::string_view as_Name);
  /// Asks what a command of the page needs (0 new folder, 1 delete, 2 files, 3 disconnect) and returns what is to be
  /// run in the operation slot; empty when nothing is. **Yields** while it asks.
  [[nodiscard]] std::function<void()> FtpCommand(std::int16_t ai_Command);
  /// Goes into the folder of the current line, or to the parent. **Yields.**
  void OpenRemoteEntry();
  /// Creates the clients' folders on the server and says how many were new. **Yields.**
  void CreateRemoteFolders();

 private:
  [[nodiscard]] std::function<void()> NewFolder();
  [[nodiscard]] std::function<void()> Delete();
  void OpenParent();
  void GoTo(std::string_view as_Folder);
  void FillList();
  void CountProblem(bool ab_Well);
  /// Runs `av_Operation` in the remote folder `as_Shown`, which a round may have left, and lists it anew.
  void WorkIn(const std::string& as_Shown, const std::function<bool()>& av_Operation);
  [[nodiscard]] std::string CurrentName() const;

  Parts p_;
};

}  // namespace corvane
