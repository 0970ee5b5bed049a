#pragma once

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "curl/curl_internet_client.h"
#include "posix/posix_loop.h"
#include "support/temp_folder.h"

namespace corvane::test {

using Names = std::vector<std::string>;

/// An FTP client with its loop and all that it reports; fails when a call leaves the loop alone for too long.
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
    std::signal(SIGPIPE, SIG_IGN);
    login.host = "127.0.0.1";
    login.user = "user";
    login.password = "secret";
    ticker_->Start(10);
    session = client->InternetOpen("test");
    client->InternetSetStatusCallback(session, [this](const InternetStatus& status) { statuses.push_back(status); });
  }
  ~FtpProbe() { EXPECT_LE(longest_gap_, 250) << "the loop stood still"; }
  FtpProbe(const FtpProbe&) = delete;
  FtpProbe& operator=(const FtpProbe&) = delete;

  [[nodiscard]] bool Connect() { return (connection = client->InternetConnect(session, login)) != 0; }
  [[nodiscard]] bool Put(const std::string& text, const std::string& name) {
    const std::string sent = local.Write("sent", text);  // not in the call that is watched
    return client->FtpPutFile(connection, sent, name);
  }
  /// The text of a remote file, "failed" when it does not come; then the local file must be the old one.
  [[nodiscard]] std::string Get(const std::string& name, std::int64_t limit = 2'000'000'000) {
    const std::string got = local.Write("got", "old");
    const bool came = client->FtpGetFile(connection, name, got, limit);
    EXPECT_FALSE(std::filesystem::exists(got + ".part"));
    EXPECT_TRUE(came || local.Read("got") == "old");
    return came ? local.Read("got") : "failed";
  }
  [[nodiscard]] bool MakeFolder(const std::string& name = "folder") {
    return client->FtpCreateDirectory(connection, name);
  }
  [[nodiscard]] bool Enter(const std::string& folder) { return client->FtpSetCurrentDirectory(connection, folder); }
  /// The names of a folder's entries, a folder's with "/" behind it, sorted; "failed" when it cannot be listed.
  [[nodiscard]] Names List(const std::string& path = "/*.*") {
    Names names;
    FindRecord record;
    const InternetHandle find = client->FtpFindFirstFile(connection, path, FindPurpose::Listing, record);
    if (find == 0 && Error() != kInternetNoError) return {"failed"};
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
  [[nodiscard]] int Error() const { return client->GetLastError(); }
  /// What the person gets to see of an error.
  [[nodiscard]] std::string Words() const { return client->InternetGetLastResponseInfo(); }
  [[nodiscard]] bool Says(const std::string& part) const { return Words().find(part) != std::string::npos; }
  [[nodiscard]] std::vector<int> Codes() const {
    std::vector<int> codes;
    for (const InternetStatus& status : statuses) codes.push_back(status.code);
    return codes;
  }
  [[nodiscard]] std::int64_t Count(int code) const {
    const std::vector<int> codes = Codes();
    return std::count(codes.begin(), codes.end(), code);
  }
  [[nodiscard]] std::int64_t Bytes(int code) const {
    std::int64_t sum = 0;
    for (const InternetStatus& status : statuses) sum += status.code == code ? status.bytes : 0;
    return sum;
  }
  /// Cancels the call that will then run.
  void CancelAfter(std::int64_t milliseconds) {
    canceller_ = loop.MakeTimer([this] {
      client_.Cancel();
      canceller_->Stop();
    });
    canceller_->Start(milliseconds);
  }
  [[nodiscard]] std::int64_t Now() const { return loop.MonotonicMilliseconds(); }

  PosixLoop loop;
  TempFolder local;
  Client client{*this};
  FtpLogin login;
  InternetHandle session = 0;
  InternetHandle connection = 0;
  std::vector<InternetStatus> statuses;

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
