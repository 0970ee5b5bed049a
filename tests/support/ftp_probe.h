#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "curl/curl_internet_client.h"
#include "posix/posix_loop.h"

namespace corvane::test {

/// An FTP client with its loop, all that it reports, and the longest time for which a call left the loop alone.
class FtpProbe {
  /// Measures one call.
  class Call {
   public:
    explicit Call(FtpProbe& probe) : probe_(probe) { probe_.last_tick_ = probe_.Now(); }
    ~Call() { probe_.Tick(); }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;
    CurlInternetClient* operator->() { return &probe_.client_; }

   private:
    FtpProbe& probe_;
  };
  struct Client {
    FtpProbe& probe;
    Call operator->() const { return Call(probe); }
  };

 public:
  explicit FtpProbe(CurlInternetClient::Limits limits = {}) : client_(loop, limits) {
    ticker_->Start(10);
    session = client->InternetOpen("test");
    client->InternetSetStatusCallback(session, [this](const InternetStatus& status) { statuses.push_back(status); });
  }

  [[nodiscard]] bool Connect(int port, const std::string& user = "user", const std::string& password = "secret") {
    login.host = login.host.empty() ? "127.0.0.1" : login.host;
    login.port = port;
    login.user = user;
    login.password = password;
    connection = client->InternetConnect(session, login);
    return connection != 0;
  }
  /// The names of a folder's entries, a folder's with "/" behind it, sorted; "failed" when it cannot be listed.
  [[nodiscard]] std::vector<std::string> List(const std::string& path) {
    std::vector<std::string> names;
    FindRecord record;
    const InternetHandle find = client->FtpFindFirstFile(connection, path, FindPurpose::Listing, record);
    if (find == 0 && client->GetLastError() != kInternetNoError) return {"failed"};
    for (bool more = find != 0; more; more = client->InternetFindNextFile(find, record)) {
      names.push_back(record.name + (record.is_folder ? "/" : ""));
    }
    client->InternetCloseHandle(find);
    std::sort(names.begin(), names.end());
    return names;
  }
  /// The size that one file is found to have; -1 when it is not there.
  [[nodiscard]] std::int64_t SizeOf(const std::string& file) {
    FindRecord record;
    const InternetHandle find = client->FtpFindFirstFile(connection, file, FindPurpose::OneFile, record);
    client->InternetCloseHandle(find);
    return find == 0 ? -1 : record.size;
  }
  [[nodiscard]] std::vector<int> Codes() const {
    std::vector<int> codes;
    for (const InternetStatus& status : statuses) codes.push_back(status.code);
    return codes;
  }
  [[nodiscard]] std::int64_t Bytes(int code) const {
    std::int64_t sum = 0;
    for (const InternetStatus& status : statuses) sum += status.code == code ? status.bytes : 0;
    return sum;
  }
  /// Milliseconds.
  [[nodiscard]] std::int64_t LongestGap() const { return longest_gap_; }
  /// Cancels the call that will then run.
  void CancelAfter(std::int64_t milliseconds) {
    canceller_ = loop.MakeTimer([this] {
      cancelled_at = Now();
      client_.Cancel();
      canceller_->Stop();
    });
    canceller_->Start(milliseconds);
  }
  [[nodiscard]] std::int64_t Now() const { return loop.MonotonicMilliseconds(); }

  PosixLoop loop;
  Client client{*this};
  FtpLogin login;
  InternetHandle session = 0;
  InternetHandle connection = 0;
  std::vector<InternetStatus> statuses;
  std::int64_t cancelled_at = 0;

 private:
  void Tick() {
    longest_gap_ = std::max(longest_gap_, Now() - last_tick_);
    last_tick_ = Now();
  }

  CurlInternetClient client_;
  std::int64_t last_tick_ = 0;
  std::int64_t longest_gap_ = 0;
  std::unique_ptr<Timer> ticker_ = loop.MakeTimer([this] { Tick(); });
  std::unique_ptr<Timer> canceller_;
};

}  // namespace corvane::test
