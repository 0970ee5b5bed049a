#include "transfer/my_ftp.h"

#include <cstddef>
#include <optional>
#include <utility>

#include "base/files.h"
#include "base/paths.h"
#include "base/text.h"
#include "transfer/ftp_error_text.h"
#include "transfer/server_address.h"

namespace corvane {
namespace {

constexpr std::string_view kAnonymousUser = "anonymous";
constexpr std::string_view kAnonymousPassword = "corvane@localhost";

/// A local name by the rule for paths. One that is not full has no folder to be placed in and is not found.
std::string LocalName(std::string_view name) {
  return PlaceInFolder("", name);
}

}  // namespace

MyFTP::MyFTP(const Parts& av_Parts)
    : window_(av_Parts.window),
      client_(av_Parts.client),
      app_(av_Parts.app),
      messages_(av_Parts.messages),
      log_(av_Parts.loop, av_Parts.app, av_Parts.trace),
      progress_(av_Parts.loop, log_) {
  progress_.connection_closed = [this] { OnConnectionClosed(); };
}

void MyFTP::SetSecurity(bool ab_Encrypted, std::string_view as_Certificate) {
  Change(encrypted_, ab_Encrypted);
  Change(certificate_, std::string(as_Certificate));
}

void MyFTP::SetInitialFolder(std::string_view as_Folder) {
  // Only a login leads back to its own folder, which no command names.
  if (as_Folder.empty() && !initial_folder_.empty()) settings_changed_ = true;
  initial_folder_ = as_Folder;
}

void MyFTP::SetCancel(bool ab_Cancel) {
  cancel_ = ab_Cancel;
  if (cancel_) client_.Cancel();
}

bool MyFTP::Initialise() {
  // Intended: replaces the agent name that the configuration gave; the server always sees this one.
  agent_name_ = "Ostrel-FTP";
  cancel_ = false;
  created_folders_ = 0;
  progress_.Reset();
  listing_.Clear();
  std::string problem;
  if (server_.empty()) problem = "No server specified";
  // Intended: a text that lacks only the password begins with the line break.
  if (!anonymous_ && password_.empty()) problem += std::string(kLineBreak) + "No password";
  if (!anonymous_ && user_name_.empty()) problem += std::string(kLineBreak) + "No user name";
  if (!problem.empty()) last_error_ = problem;
  return problem.empty();
}

FtpLogin MyFTP::Login() const {
  FtpLogin login;
  const ServerAddress address = ParseServer(server_);
  login.host = address.host;
  login.port = address.port;
  login.user = anonymous_ ? kAnonymousUser : user_name_;
  login.password = anonymous_ ? kAnonymousPassword : password_;
  login.encrypted = encrypted_;
  login.certificate = certificate_;
  return login;
}

bool MyFTP::Connect() {
  const FtpLogin login = Login();
  log_.ShowStatus("Connecting to: " + server_ + "...");
  log_.LogStatus("UserName: " + login.user);
  log_.LogStatus("Password: " + login.password);
  if (!OpenSession() || !OpenConnection(login)) {
    Disconnect();
    return false;
  }
  settings_changed_ = false;
  current_folder_.clear();
  log_.ShowStatus("Connected to: " + server_);
  if (connection_changed) connection_changed();
  if (SetRemoteDirectory()) {
    log_.LogStatus("Current directory is: " + current_folder_);
  } else {
    log_.LogStatus("Could not get current directory:" + current_folder_);
  }
  return IsConnected();
}

bool MyFTP::OpenSession() {
  internet_ = client_.InternetOpen(agent_name_);
  if (internet_ == 0) {
    log_.ShowStatus("Could not connect to internet");
    return Fail("Connect:Invalid hInternet");
  }
  log_.LogDetail("Got internet session handle: " + std::to_string(internet_));
  previous_callback_ = client_.InternetSetStatusCallback(
      internet_, [this](const InternetStatus& status) { progress_.OnStatus(status); });
  if (previous_callback_ == InternetClient::kInvalidCallback) {
    ReportFtpError("Connect:InvalidCallback=" + std::to_string(previous_callback_));
    log_.ShowStatus("Could not get callback");
    return false;
  }
  log_.LogDetail("Got valid call back handle: " + std::to_string(previous_callback_));
  return true;
}

bool MyFTP::OpenConnection(const FtpLogin& av_Login) {
  connection_ = client_.InternetConnect(internet_, av_Login);
  if (connection_ == 0) {
    const std::string line_break(kLineBreak);
    ReportFtpError("Connect" + line_break + "Server: " + server_ + line_break + "User:" + av_Login.user + line_break +
                   "HCconnect=0");
    // The words about encryption or a certificate say more than that.
    if (!encrypted_ || last_error_number_ != kInternetExtendedError) {
      log_.ShowStatus("Could not connect to: " + server_);
    }
    return false;
  }
  log_.LogDetail("Got valid connect handle: " + std::to_string(connection_));
  return true;
}

bool MyFTP::ConnectIfNotConnected() {
  if (settings_changed_) {
    log_.LogDetail("ConnectIfNotConnected - reconnect required");
    if (IsConnected()) Disconnect();
  } else if (IsConnected()) {
    log_.LogDetail("ConnectIfNotConnected - already connected");
    return true;
  } else {
    log_.LogDetail("ConnectIfNotConnected - attempt to connect");
  }
  return Connect();
}

void MyFTP::Disconnect() {
  if (previous_callback_ != 0 && previous_callback_ != -1 && previous_callback_ != -2) {
    log_.LogDetail("Remove the current callback: " + std::to_string(previous_callback_));
    client_.InternetSetStatusCallback(internet_, nullptr);
  }
  // Taken out first: closing yields, and nothing may use a handle that is being closed.
  const InternetHandle connection = std::exchange(connection_, 0);
  const InternetHandle internet = std::exchange(internet_, 0);
  if (connection > 0) {
    log_.LogDetail("CloseConnectHandle: " + std::to_string(connection));
    client_.InternetCloseHandle(connection);
  }
  if (internet > 0) {
    log_.LogDetail("CloseInternetHandle: " + std::to_string(internet));
    client_.InternetCloseHandle(internet);
  }
  log_.LogStatus("Disconnect");
  window_.SetPointer(PointerShape::Default);
  if (connection_changed) connection_changed();
}

void MyFTP::OnConnectionClosed() {
  settings_changed_ = true;
  internet_ = 0;
  connection_ = 0;
  if (connection_changed) connection_changed();
}

bool MyFTP::SetRemoteDirectory() {
  if (initial_folder_.empty()) return true;
  if (!client_.FtpSetCurrentDirectory(connection_, initial_folder_)) return Fail("SetRemoteDirectory:Ret:0");
  GetCurrentRemoteDirectory();
  return true;
}

bool MyFTP::GetCurrentRemoteDirectory() {
  log_.LogDetail("calling FtpGetCurrentDirectory...");
  std::string folder;
  if (!client_.FtpGetCurrentDirectory(connection_, folder)) return Fail("GetCurrentRemoteDirectory:" + folder);
  current_folder_ = folder;
  log_.LogStatus("Current Directory:" + current_folder_);
  return true;
}

std::string MyFTP::CurrentRemoteDirectory() {
  return GetCurrentRemoteDirectory() ? current_folder_ : std::string();
}

bool MyFTP::PutFile(std::string_view as_Local, std::string_view as_Remote) {
  cancel_ = false;
  last_error_number_ = 0;
  const std::string remote = ToLower(as_Remote);
  const std::string local = LocalName(as_Local);
  const std::optional<FileInfo> file = ExamineFile(local);
  if (!file || file->is_folder) return false;
  last_error_.clear();
  log_.LogDetail("==PutFile:" + local + " -> " + remote);
  if (!ConnectIfNotConnected() || cancel_) return false;
  current_folder_.clear();
  if (!SetRemoteDirectory()) return false;
  progress_.StartTransfer(local, file->size, kUploading);
  log_.LogDetail("PutFileLocal file: " + local + "[" + std::to_string(file->size) + " b] Remote file: " + remote);
  log_.ShowStatus("Send: " + local);
  const bool sent = client_.FtpPutFile(connection_, local, remote);
  const std::string result = sent ? "1" : "0";
  log_.LogDetail("Finished PutFile ret:" + result);
  progress_.EndTransfer();
  if (!sent) return Fail("PutFile:Ret:" + result);
  log_.LogFileSent(local, remote);
  return true;
}

bool MyFTP::GetFile(std::string_view as_Remote, std::string_view as_Local) {
  const std::string remote(as_Remote);
  const std::string local = LocalName(as_Local);
  last_error_.clear();
  last_error_number_ = 0;
  if (!ConnectIfNotConnected() || cancel_) {
    log_.LogStatus("Could not connect");
    return false;
  }
  FindRecord record;
  const bool received = SetRemoteDirectory() && FindRemoteFile(remote, local, record) && Receive(remote, local, record);
  log_.LogDetail("Close hfind and hfindconnect");
  return received;
}

bool MyFTP::FindRemoteFile(const std::string& as_Remote, const std::string& as_Local, FindRecord& av_Record) {
  log_.LogDetail("GetFile:call FtpFindFirstFile: " + as_Remote);
  const InternetHandle find = client_.FtpFindFirstFile(connection_, as_Remote, FindPurpose::OneFile, av_Record);
  log_.LogDetail("GetFile:hFind: " + std::to_string(find));
  if (find != 0) {
    client_.InternetCloseHandle(find);
    return true;
  }
  // A server that has stopped to answer has not said that the file is missing.
  const int error = client_.GetLastError();
  if (!IsConnected() || (error != kInternetNoError && error != kInternetExtendedError)) {
    return Fail("GetFile:Failed to download file:" + as_Remote + " LocalFile:" + as_Local);
  }
  log_.LogStatus(client_.InternetGetLastResponseInfo());
  last_error_ = "File: " + as_Remote + " not found";
  log_.ShowStatus(last_error_);
  return false;
}

bool MyFTP::Receive(const std::string& as_Remote, const std::string& as_Local, const FindRecord& av_Record) {
  log_.LogDetail("GetFile:RemoteFile: " + as_Remote + " size: " + std::to_string(av_Record.size));
  progress_.StartTransfer(as_Remote, av_Record.size, kDownloading);
  log_.ShowStatus("Getting: " + as_Remote);
  const bool received = client_.FtpGetFile(connection_, as_Remote, as_Local, app_.FetchLimit());
  if (!received) {
    progress_.GiveUpTransfer();
    log_.LogStatus("Failed to download file ret:0");
    return Fail("GetFile:Failed to download file:" + as_Remote + " LocalFile:" + as_Local);
  }
  log_.ShowStatus("Received: " + as_Local);
  log_.LogDetail("Received ll_Ret: 1 RemoteFile:" + as_Remote + " LocalFile:" + as_Local + " ret:1");
  progress_.EndTransfer();
  log_.LogFileSent(as_Remote, as_Local);
  return true;
}

bool MyFTP::GetDirectoryList(std::string_view as_Filter) {
  cancel_ = false;
  listed_ = false;
  listing_.Clear();
  if (!ConnectIfNotConnected() || cancel_ || !SetRemoteDirectory()) return false;
  log_.ShowStatus("Getting directory list...");
  const bool open_end = !current_folder_.empty() && !current_folder_.ends_with('/');
  const std::string filter(as_Filter.empty() ? "*.*" : as_Filter);
  static_cast<void>(progress_.TakeSkippedLines());
  if (!CollectEntries(current_folder_ + (open_end ? "/" : "") + filter)) return false;
  listing_.Sort();
  const std::int64_t skipped = progress_.TakeSkippedLines();
  log_.ShowStatus(skipped > 0 ? std::to_string(skipped) + " lines not understood" : "");
  listed_ = true;
  return true;
}

bool MyFTP::CollectEntries(const std::string& as_Path) {
  log_.LogDetail("Start: GetDirectoryListPath:" + as_Path);
  log_.LogDetail("Calling GetInternetConnectHandle");
  log_.LogDetail("Calling FtpFindFirstFile");
  FindRecord record;
  const InternetHandle find = client_.FtpFindFirstFile(connection_, as_Path, FindPurpose::Listing, record);
  if (find == 0) return client_.GetLastError() == kInternetNoError || Fail("GetDirectoryList:" + as_Path);
  do {
    // Such a name could not be told from a column of the list, nor be sent in a command.
    if (HasControlCharacter(record.name)) {
      log_.LogStatus("Left out of the list, its name holds a control character: " + Visible(record.name));
    } else {
      listing_.Add(record);
    }
    if (cancel_) break;
    log_.LogDetail("Calling InternetFindNextFile");
  } while (client_.InternetFindNextFile(find, record));
  client_.InternetCloseHandle(find);
  return true;
}

bool MyFTP::RemoteDirectoryExists(std::string_view as_Name) {
  log_.LogDetail(std::string(as_Name) + ": RemoteDirectoryExists");
  return GetDirectoryList("*.*") && listing_.HasFolder(as_Name);
}

bool MyFTP::CheckRemoteDirectory(std::string_view as_Path) {
  const std::string path = WithSlashes(as_Path);
  for (std::size_t position = 0; position < path.size();) {
    const std::size_t slash = path.find('/', position);
    if (!MakeLevel(path.substr(0, slash)) && !cancel_) {
      log_.ShowStatus("");
      // Intended: the path stands first, joined to the words.
      messages_.Show(path + "Cannot create folders for: ");
      return false;
    }
    if (slash == std::string::npos || cancel_) break;
    position = slash + 1;
  }
  log_.ShowStatus("");
  return true;
}

bool MyFTP::MakeLevel(const std::string& as_Prefix) {
  log_.ShowStatus("Checking: " + as_Prefix);
  // Intended: only folders directly in the initial folder are found; a deeper one is created, or refused by the server.
  if (RemoteDirectoryExists(as_Prefix)) {
    log_.LogDetail("Folder exists: " + as_Prefix);
    return true;
  }
  if (cancel_) return true;
  // Without a listing nothing is known, and the folder may not even be the right one to create something in.
  if (!listed_) return false;
  log_.LogStatus(as_Prefix + " does not exist so creating directory: " + as_Prefix);
  if (!CreateFolder(as_Prefix)) return false;
  log_.Append("Created directory: " + as_Prefix);
  ++created_folders_;
  return true;
}

bool MyFTP::CreateFolder(std::string_view as_Folder) {
  if (!ConnectIfNotConnected()) return false;
  return client_.FtpCreateDirectory(connection_, std::string(as_Folder)) || Fail("CreateFolder");
}

bool MyFTP::DeleteFolder(std::string_view as_Folder) {
  if (!ConnectIfNotConnected()) return false;
  const std::string folder(as_Folder);
  return client_.FtpRemoveDirectory(connection_, folder) || Fail("DeleteFolder:" + folder);
}

bool MyFTP::DeleteFile(std::string_view as_File) {
  if (!ConnectIfNotConnected()) return false;
  const std::string file(as_File);
  return client_.FtpDeleteFile(connection_, file) || Fail("DeleteFile:" + file);
}

bool MyFTP::Fail(const std::string& as_Context) {
  ReportFtpError(as_Context);
  return false;
}

void MyFTP::ReportFtpError(const std::string& as_Context) {
  const int code = client_.GetLastError();
  const std::string text = FtpErrorText(code, client_.InternetGetLastResponseInfo());
  if (code == kInternetConnectionAborted || code == kInternetConnectionReset) Disconnect();
  log_.ShowStatus(text);
  last_error_ = text + std::string(kLineBreak) + "ftp: " + as_Context;
  last_error_number_ = code;
  log_.Append(last_error_);
  // The one who cancelled knows it.
  if (code == kInternetCancelled && cancel_) return;
  // What a round meets again and again, such as a missing folder, is one kind.
  const std::string kind = std::to_string(code) + as_Context.substr(0, as_Context.find(':'));
  messages_.ShowTimedMessage(last_error_, kOkOnly | kExclamationIcon, kProductName, 0, kind);
}

}  // namespace corvane
