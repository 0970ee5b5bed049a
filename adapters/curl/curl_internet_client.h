#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "curl/ftp_limits.h"
#include "curl/internet_session.h"
#include "platform/event_loop.h"
#include "platform/internet_client.h"

namespace corvane {

class FtpConnection;

/// The FTP client on libcurl.
///
/// A login that the server dropped while it was idle is made anew without a word; every name goes out absolute, so that
/// this changes nothing. While a call runs, any other one but `Cancel` does nothing and fails. The last step of a
/// download, the wait for the disk, leaves the loop running but cannot be cancelled. The program must ignore SIGPIPE.
class CurlInternetClient : public InternetClient {
 public:
  using Limits = FtpLimits;

  explicit CurlInternetClient(EventLoop& loop, Limits limits = {});
  /// Never blocks: an open connection is cut.
  ~CurlInternetClient() override;

  InternetHandle InternetOpen(const std::string& agent) override;
  std::int64_t InternetSetStatusCallback(InternetHandle session, StatusHandler handler) override;
  InternetHandle InternetConnect(InternetHandle session, const FtpLogin& login) override;
  [[nodiscard]] bool FtpSetCurrentDirectory(InternetHandle connection, const std::string& folder) override;
  [[nodiscard]] bool FtpGetCurrentDirectory(InternetHandle connection, std::string& folder) override;
  [[nodiscard]] bool FtpPutFile(InternetHandle connection, const std::string& local,
                                const std::string& remote) override;
  [[nodiscard]] bool FtpGetFile(InternetHandle connection, const std::string& remote, const std::string& local,
                                std::int64_t limit) override;
  [[nodiscard]] InternetHandle FtpFindFirstFile(InternetHandle connection, const std::string& path, FindPurpose purpose,
                                                FindRecord& record) override;
  [[nodiscard]] bool InternetFindNextFile(InternetHandle find, FindRecord& record) override;
  [[nodiscard]] bool FtpCreateDirectory(InternetHandle connection, const std::string& folder) override;
  [[nodiscard]] bool FtpRemoveDirectory(InternetHandle connection, const std::string& folder) override;
  [[nodiscard]] bool FtpDeleteFile(InternetHandle connection, const std::string& file) override;
  void InternetCloseHandle(InternetHandle handle) override;
  [[nodiscard]] int GetLastError() const override { return last_error_; }
  [[nodiscard]] std::string InternetGetLastResponseInfo() const override { return last_response_; }
  void Cancel() override { cancelled_ = running_; }

 private:
  struct Search {
    std::vector<FindRecord> records;
    std::size_t next = 0;
  };

  /// Runs `step` on the connection as the one call that runs.
  template <class Step>
  bool RunAlone(Step step);
  /// The same for a call that is given the connection's handle; keeps what is to be known of its end.
  template <class Step>
  [[nodiscard]] bool Run(InternetHandle connection, Step step);
  void KeepResult();
  void CloseConnection();

  EventLoop& loop_;
  const Limits limits_;
  InternetSession session_;
  std::map<InternetHandle, Search> searches_;
  bool running_ = false;    ///< a call does
  bool cancelled_ = false;  ///< the call that runs, or the last one
  int last_error_ = kInternetNoError;
  std::string last_response_;
  std::unique_ptr<FtpConnection> ftp_;  // last: it looks at `cancelled_` and uses `session_`
};

}  // namespace corvane
