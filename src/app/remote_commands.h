#pragma once

#include <cstdint>

#include "app/operations.h"
#include "form/form.h"
#include "platform/dialogs.h"
#include "state/file_names.h"
#include "transfer/remote_browser.h"

namespace corvane {

/// The commands of the tab FTP and of the clients' folders on the server. All **yield**.
class RemoteCommands {
 public:
  /// What the commands start; all must outlive this object.
  struct Parts {
    Form& form;
    const FileNames& names;
    Operations& operations;
    RemoteBrowser& browser;
    Dialogs& dialogs;
    Trace& trace;
  };
  explicit RemoteCommands(const Parts& av_Parts) : p_(av_Parts) {}

  /// Runs a command of the page: 0 new folder, 1 delete, 2 files, 3 disconnect.
  void RunCommand(std::int16_t ai_Command);
  /// Goes into the folder of the current line.
  void OpenEntry();
  void CreateFolders();
  /// Lets the user choose the certificate of the server's authority.
  void GetCertificate();

 private:
  Parts p_;
};

}  // namespace corvane
