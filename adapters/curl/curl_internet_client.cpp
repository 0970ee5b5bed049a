#include "curl/curl_internet_client.h"

#include <utility>

#include "curl/ftp_connection.h"
#include "curl/listing_search.h"
#include "curl/transfers.h"

namespace corvane {

CurlInternetClient::CurlInternetClient(EventLoop& loop, Limits limits) : loop_(loop), limits_(limits) {
  curl_global_init(CURL_GLOBAL_DEFAULT);
}

CurlInternetClient::~CurlInternetClient() = default;

void CurlInternetClient::Report(int code, const std::string& text, std::int64_t bytes) {
  if (code == kHandleCreated) transfer_ = ++last_handle_;
  InternetHandle handle = connection_ != 0 ? connection_ : session_;
  if (code == kHandleCreated || code == kHandleClosing) handle = transfer_;
  // The handler may be taken away while it runs.
  if (const StatusHandler handler = handler_) handler({handle, code, text, bytes});
}

InternetHandle CurlInternetClient::InternetOpen(const std::string&) {
  if (running_) return 0;
  ftp_.reset();
  searches_.clear();
  handler_ = nullptr;
  connection_ = 0;
  last_error_ = kInternetNoError;
  return session_ = ++last_handle_;
}

std::int64_t CurlInternetClient::InternetSetStatusCallback(InternetHandle session, StatusHandler handler) {
  if (session == 0 || session != session_) {
    last_error_ = kInternetWrongHandleType;
    return kInvalidCallback;
  }
  handler_ = std::move(handler);
  return 0;
}

InternetHandle CurlInternetClient::InternetConnect(InternetHandle session, const FtpLogin& login) {
  if (running_ || session == 0 || session != session_) {
    last_error_ = kInternetWrongHandleType;
    return 0;
  }
  connection_ = 0;
  ftp_ =
      std::make_unique<FtpConnection>(loop_, limits_, login, cancelled_,
                                      [this](auto code, const auto& text, auto bytes) { Report(code, text, bytes); });
  running_ = true;
  cancelled_ = false;
  const bool connected = ftp_->LogIn();
  running_ = false;
  KeepResult(*ftp_);
  if (!connected) {
    ftp_.reset();
    return 0;
  }
  return connection_ = ++last_handle_;
}

void CurlInternetClient::KeepResult(const FtpConnection& ftp) {
  last_error_ = ftp.error();
  last_response_ = ftp.response();
}

template <class Step>
bool CurlInternetClient::Run(InternetHandle connection, Step step) {
  if (running_ || connection == 0 || connection != connection_) {
    last_error_ = kInternetWrongHandleType;
    return false;
  }
  running_ = true;
  cancelled_ = false;
  const bool done = step(*ftp_);
  running_ = false;
  KeepResult(*ftp_);
  if (!ftp_->lost()) return done;
  ftp_.reset();
  Report(kClosingConnection, "", 0);
  Report(kConnectionClosed, "", 0);
  session_ = connection_ = 0;
  return false;
}

bool CurlInternetClient::FtpSetCurrentDirectory(InternetHandle connection, const std::string& folder) {
  return Run(connection, [&](FtpConnection& ftp) { return ftp.EnterFolder(folder); });
}

bool CurlInternetClient::FtpGetCurrentDirectory(InternetHandle connection, std::string& folder) {
  return Run(connection, [&](FtpConnection& ftp) {
    const bool known = ftp.AskFolder();
    if (known) folder = ftp.current_folder();
    return known;
  });
}

bool CurlInternetClient::FtpPutFile(InternetHandle connection, const std::string& local, const std::string& remote) {
  return Run(connection, [&](FtpConnection& ftp) { return UploadFile(ftp, local, remote); });
}

bool CurlInternetClient::FtpGetFile(InternetHandle connection, const std::string& remote, const std::string& local) {
  return Run(connection, [&](FtpConnection& ftp) { return DownloadFile(ftp, loop_, remote, local); });
}

InternetHandle CurlInternetClient::FtpFindFirstFile(InternetHandle connection, const std::string& path,
                                                    FindPurpose purpose, FindRecord& record) {
  Search search;
  const bool found = Run(connection, [&](FtpConnection& ftp) {
    if (purpose == FindPurpose::Listing) return ListFolder(ftp, loop_, path, search.records);
    return FindOneFile(ftp, loop_, path, search.records);
  });
  if (!found || search.records.empty()) return 0;
  record = search.records.front();
  search.next = 1;
  searches_.emplace(++last_handle_, std::move(search));
  return last_handle_;
}

bool CurlInternetClient::InternetFindNextFile(InternetHandle find, FindRecord& record) {
  const auto found = searches_.find(find);
  if (running_ || found == searches_.end()) {
    last_error_ = kInternetWrongHandleType;
    return false;
  }
  Search& search = found->second;
  last_error_ = kInternetNoError;
  if (search.next >= search.records.size()) return false;
  record = search.records[search.next++];
  return true;
}

bool CurlInternetClient::FtpCreateDirectory(InternetHandle connection, const std::string& folder) {
  return Run(connection, [&](FtpConnection& ftp) { return ftp.RunCommand("MKD", folder); });
}

bool CurlInternetClient::FtpRemoveDirectory(InternetHandle connection, const std::string& folder) {
  return Run(connection, [&](FtpConnection& ftp) { return ftp.RunCommand("RMD", folder); });
}

bool CurlInternetClient::FtpDeleteFile(InternetHandle connection, const std::string& file) {
  return Run(connection, [&](FtpConnection& ftp) { return ftp.RunCommand("DELE", file); });
}

void CurlInternetClient::InternetCloseHandle(InternetHandle handle) {
  if (running_ || handle == 0) return;
  searches_.erase(handle);
  if (handle != session_ && handle != connection_) return;
  CloseConnection();
  if (handle != session_) return;
  searches_.clear();
  handler_ = nullptr;
  session_ = 0;
}

void CurlInternetClient::CloseConnection() {
  if (ftp_ != nullptr) {
    running_ = true;
    cancelled_ = false;
    ftp_->SayGoodbye();
    running_ = false;
  }
  ftp_.reset();
  connection_ = 0;
}

}  // namespace corvane
