#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "form/form.h"
#include "platform/event_loop.h"
#include "platform/internet_client.h"
#include "state/app_info.h"
#include "trace/trace.h"
#include "transfer/ftp_log.h"
#include "transfer/remote_listing.h"
#include "transfer/transfer_progress.h"
#include "ui/messages.h"

namespace corvane {

/// The one FTP session: one connection to one server, held open between operations and made anew when the settings
/// change or the server drops it.
///
/// All operations but the setters and readers **yield** and are called while the operation slot is held. Each reports
/// its failure itself: status line, "ftp.log" and the timed message box.
class MyFTP {
 public:
  /// What the session works with; all must outlive it.
  struct Parts {
    Window& window;
    EventLoop& loop;
    InternetClient& client;
    const AppInfo& app;
    Messages& messages;
    Trace& trace;
  };
  explicit MyFTP(const Parts& av_Parts);
  MyFTP(const MyFTP&) = delete;
  MyFTP& operator=(const MyFTP&) = delete;

  // Settings. A changed server, login or encryption makes the next operation connect anew.
  void SetServer(std::string_view as_Server) { Change(server_, std::string(as_Server)); }
  void SetUserName(std::string_view as_UserName) { Change(user_name_, std::string(as_UserName)); }
  void SetPassword(std::string_view as_Password) { Change(password_, std::string(as_Password)); }
  void SetAnonymous(bool ab_Anonymous) { Change(anonymous_, ab_Anonymous); }
  /// Encrypts with TLS, the certificate checked against the file `as_Certificate` (empty: the system's authorities).
  void SetSecurity(bool ab_Encrypted, std::string_view as_Certificate);
  /// The remote folder made current before every transfer and listing; empty leaves the folder of the login.
  void SetInitialFolder(std::string_view as_Folder);
  void SetAgentName(std::string_view as_Name) { agent_name_ = as_Name; }
  void SetStatusLabel(Label& av_Label) { log_.SetStatusLabel(av_Label); }
  void SetProgressBar(ProgressBar& av_Bar) { progress_.SetProgressBar(av_Bar); }
  void SetTraces(bool ab_FilesSent, bool ab_Status, bool ab_Detail) {
    log_.SetTraces(ab_FilesSent, ab_Status, ab_Detail);
  }
  /// True ends what runs, within a second.
  void SetCancel(bool ab_Cancel);

  /// Checks the settings and begins the counts; false when something is missing, see `LastErrorText`.
  [[nodiscard]] bool Initialise();
  bool Connect();
  [[nodiscard]] bool ConnectIfNotConnected();
  void Disconnect();
  [[nodiscard]] bool IsConnected() const { return internet_ != 0 && connection_ != 0; }

  /// Stores a local file on the server, its remote name in lower case.
  [[nodiscard]] bool PutFile(std::string_view as_Local, std::string_view as_Remote);
  /// Fetches a file; the local one is replaced when all of it has come.
  [[nodiscard]] bool GetFile(std::string_view as_Remote, std::string_view as_Local);

  /// Lists the initial folder: the entries that match `as_Filter`, all when it is empty.
  [[nodiscard]] bool GetDirectoryList(std::string_view as_Filter);
  /// The result of the last listing.
  [[nodiscard]] const RemoteListing& Listing() const { return listing_; }
  /// True when the initial folder holds a folder of exactly that name.
  [[nodiscard]] bool RemoteDirectoryExists(std::string_view as_Name);
  /// Creates every missing folder along a path, relative to the initial folder.
  [[nodiscard]] bool CheckRemoteDirectory(std::string_view as_Path);
  /// Folders that `CheckRemoteDirectory` has created since `Initialise`.
  [[nodiscard]] std::int64_t CreatedFolders() const { return created_folders_; }
  [[nodiscard]] bool CreateFolder(std::string_view as_Folder);
  [[nodiscard]] bool DeleteFolder(std::string_view as_Folder);
  [[nodiscard]] bool DeleteFile(std::string_view as_File);
  /// Makes the initial folder current on the server.
  bool SetRemoteDirectory();
  /// Asks the server for its current folder.
  bool GetCurrentRemoteDirectory();
  /// Asks for the current folder and returns it, empty on failure.
  [[nodiscard]] std::string CurrentRemoteDirectory();

  [[nodiscard]] const std::string& Server() const { return server_; }
  /// The last failure, for a person; nothing behind "FTP: " when the last file was sent or received.
  [[nodiscard]] std::string LastErrorText() const { return "FTP: " + last_error_; }
  /// Its number (see `InternetError`); 0 when the failure has none or the last file was sent or received.
  [[nodiscard]] int LastErrorNumber() const { return last_error_number_; }

  /// The connection was made or ended; set by the composition root.
  std::function<void()> connection_changed;

 private:
  template <class Value>
  void Change(Value& av_Held, Value av_Given) {
    if (av_Held == av_Given) return;
    av_Held = std::move(av_Given);
    settings_changed_ = true;
  }
  [[nodiscard]] bool OpenSession();
  [[nodiscard]] bool OpenConnection(const FtpLogin& av_Login);
  [[nodiscard]] FtpLogin Login() const;
  bool Fail(const std::string& as_Context);
  void ReportFtpError(const std::string& as_Context);
  /// False when the server does not have it, which has been told.
  [[nodiscard]] bool FindRemoteFile(const std::string& as_Remote, const std::string& as_Local, FindRecord& av_Record);
  [[nodiscard]] bool Receive(const std::string& as_Remote, const std::string& as_Local, const FindRecord& av_Record);
  /// Adds the entries that match; false when the server could not be asked.
  [[nodiscard]] bool CollectEntries(const std::string& as_Path);
  [[nodiscard]] bool MakeLevel(const std::string& as_Prefix);
  void OnConnectionClosed();

  Window& window_;
  InternetClient& client_;
  const AppInfo& app_;
  Messages& messages_;
  FtpLog log_;
  TransferProgress progress_;
  RemoteListing listing_;

  std::string server_;
  std::string user_name_;
  std::string password_;
  bool anonymous_ = false;
  bool encrypted_ = false;
  std::string certificate_;
  std::string initial_folder_;
  std::string agent_name_;
  bool settings_changed_ = false;
  bool cancel_ = false;
  bool listed_ = false;  ///< the last listing is complete
  InternetHandle internet_ = 0;
  InternetHandle connection_ = 0;
  std::int64_t previous_callback_ = 0;
  std::string current_folder_;
  std::string last_error_;
  int last_error_number_ = 0;
  std::int64_t created_folders_ = 0;
};

}  // namespace corvane
