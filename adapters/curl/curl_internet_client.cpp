#include "curl/curl_internet_client.h"

#include <utility>

#include "base/scoped_value.h"
#include "curl/ftp_connection.h"
#include "curl/listing_search.h"
#include "curl/transfers.h"

namespace corvane {

CurlInternetClient::CurlInternetClient(EventLoop& loop, Limits limits) : loop_(loop), limits_(limits) {
  curl_global_init(CURL_GLOBAL_DEFAULT);
}

CurlInternetClient::~CurlInternetClient() = default;

InternetHandle CurlInternetClient::InternetOpen(const std::string&) {
  if (running_) return 0;
  ftp_.reset();
  searches_.clear();
  session_.SetHandler(nullptr);
  session_.connection = 0;
  last_error_ = kInternetNoError;
  return session_.session = session_.NewHandle();
}

std::int64_t CurlInternetClient::InternetSetStatusCallback(InternetHandle session, StatusHandler handler) {
  if (session == 0 || session != session_.session) {
    last_error_ = kInternetWrongHandleType;
    return kInvalidCallback;
  }
  session_.SetHandler(std::move(handler));
  return 0;
}

InternetHandle CurlInternetClient::InternetConnect(InternetHandle session, const FtpLogin& login) {
  if (running_ || session == 0 || session != session_.session) {
    last_error_ = kInternetWrongHandleType;
    return 0;
  }
  session_.connection = 0;
  ftp_ = std::make_unique<FtpConnection>(loop_, limits_, cancelled_, session_, login);
  const bool connected = RunAlone([](FtpConnection& ftp) { return ftp.LogIn(); });
  KeepResult();
  if (!connected) {
    ftp_.reset();
    return 0;
  }
  return session_.connection = session_.NewHandle();
}

void CurlInternetClient::KeepResult() {
  last_error_ = ftp_->error();
  last_response_ = ftp_->response();
}

template <class Step>
bool CurlInternetClient::RunAlone(Step step) {
  const ScopedValue<bool> running(running_, true);
  cancelled_ = false;
  return step(*ftp_);
}

template <class Step>
bool CurlInternetClient::Run(InternetHandle connection, Step step) {
  if (running_ || connection == 0 || connection != session_.connection) {
    last_error_ = kInternetWrongHandleType;
    return false;
  }
  const bool done = RunAlone(step);
  KeepResult();
  if (!ftp_->lost()) return done;
  ftp_.reset();
  session_.Tell(kClosingConnection);
  session_.Tell(kConnectionClosed);
  session_.session = session_.connection = 0;
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

bool CurlInternetClient::FtpGetFile(InternetHandle connection, const std::string& remote, const std::string& local,
                                    std::int64_t limit) {
  return Run(connection, [&](FtpConnection& ftp) { return DownloadFile(ftp, loop_, remote, local, limit); });
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
  const InternetHandle find = session_.NewHandle();
  searches_.emplace(find, std::move(search));
  return find;
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
  if (handle != session_.session && handle != session_.connection) return;
  CloseConnection();
  if (handle != session_.session) return;
  searches_.clear();
  session_.SetHandler(nullptr);
  session_.session = 0;
}

void CurlInternetClient::CloseConnection() {
  if (ftp_ != nullptr) {
    RunAlone([](FtpConnection& ftp) {
      ftp.SayGoodbye();
      return true;
    });
  }
  ftp_.reset();
  session_.connection = 0;
}

}  // namespace corvane
