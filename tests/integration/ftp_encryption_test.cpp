// Explicit TLS: it works, it is checked, and nothing goes out in clear instead.
#include <functional>

#include <gtest/gtest.h>

#include "support/ftp_probe.h"
#include "support/server_process.h"
#include "support/temp_folder.h"

namespace corvane {
namespace {

constexpr std::int64_t kLongestGap = 250;

struct EncryptionRow {
  const char* host;
  const char* certificate;
  const char* words;  ///< a part of the refusal; empty: it works
};

class FtpEncryption : public testing::Test {
 protected:
  test::TempFolder local, remote, keys;
  test::ServerProcess server{"ftp_server.py", {remote.path(), "--encrypted", keys.path()}};

  [[nodiscard]] bool Connect(test::FtpProbe& ftp, int port, const std::string& host, const std::string& certificate) {
    ftp.login.host = host;
    ftp.login.encrypted = true;
    ftp.login.certificate = certificate.empty() ? "" : keys.Name(certificate);
    return ftp.Connect(port);
  }
};

TEST_F(FtpEncryption, FilesAndListingsGoThrough) {
  test::FtpProbe ftp;
  ASSERT_TRUE(Connect(ftp, server.port(), "localhost", "ca.pem")) << ftp.client->InternetGetLastResponseInfo();
  const std::string big(3'000'000, 'b');
  for (const std::string& text : {big, std::string("short"), std::string()}) {
    const std::string sent = local.Write("sent", text);
    ASSERT_TRUE(ftp.client->FtpPutFile(ftp.connection, sent, "file"));
    ASSERT_TRUE(ftp.client->FtpGetFile(ftp.connection, "file", local.Name("got")));
    EXPECT_EQ(local.Read("got"), text);
  }
  EXPECT_EQ(ftp.List("/*.*"), std::vector<std::string>{"file"});
  EXPECT_LE(ftp.LongestGap(), kLongestGap);
}

TEST_F(FtpEncryption, ServersAreRefusedWithWordsThatHelp) {
  const EncryptionRow kRows[] = {{"localhost", "", "Choose the certificate file"},
                                 {"127.0.0.1", "ca.pem", "the name that stands in its certificate"},
                                 {"localhost", "missing.pem", "certificate file cannot be used"},
                                 {"localhost", "ca.pem", ""}};
  for (const EncryptionRow& row : kRows) {
    test::FtpProbe ftp;
    EXPECT_EQ(Connect(ftp, server.port(), row.host, row.certificate), row.words[0] == '\0');
    EXPECT_EQ(ftp.client->GetLastError(), row.words[0] == '\0' ? kInternetNoError : kInternetExtendedError);
    EXPECT_NE(ftp.client->InternetGetLastResponseInfo().find(row.words), std::string::npos)
        << ftp.client->InternetGetLastResponseInfo();
    EXPECT_LE(ftp.LongestGap(), kLongestGap);
  }
}

TEST_F(FtpEncryption, ServersThatCannotEncryptAreRefused) {
  for (const char* fault : {"Session", "refuses_encryption"}) {
    const test::ServerProcess plain("faulty_ftp_server.py", {fault});
    test::FtpProbe ftp;
    EXPECT_FALSE(Connect(ftp, plain.port(), "localhost", "ca.pem"));
    EXPECT_EQ(ftp.client->GetLastError(), kInternetExtendedError);
    EXPECT_NE(ftp.client->InternetGetLastResponseInfo().find("does not offer"), std::string::npos);
  }
}

TEST_F(FtpEncryption, HandshakesThatHangEndByLimitAndByCancel) {
  for (const bool cancel : {false, true}) {
    const CurlInternetClient::Limits limits =
        cancel ? CurlInternetClient::Limits{} : CurlInternetClient::Limits{.connect = 600, .reply = 600};
    const auto expect_end = [&](test::FtpProbe& ftp, const std::function<bool()>& step) {
      const std::int64_t began = ftp.Now();
      if (cancel) ftp.CancelAfter(100);
      EXPECT_FALSE(step());
      EXPECT_EQ(ftp.client->GetLastError(), cancel ? kInternetCancelled : kInternetTimeout);
      EXPECT_LT(ftp.Now() - began, 1100);
      EXPECT_LE(ftp.LongestGap(), kLongestGap);
    };
    const test::ServerProcess login("faulty_ftp_server.py", {"encryption_hangs"});
    test::FtpProbe at_login(limits);
    expect_end(at_login, [&] { return Connect(at_login, login.port(), "localhost", "ca.pem"); });
    const test::ServerProcess data("faulty_ftp_server.py", {"data_encryption_hangs", keys.Name("server.pem")});
    test::FtpProbe at_data(limits);
    ASSERT_TRUE(Connect(at_data, data.port(), "localhost", "ca.pem")) << at_data.client->InternetGetLastResponseInfo();
    expect_end(at_data, [&] { return at_data.client->FtpGetFile(at_data.connection, "file", local.Name("got")); });
  }
}

}  // namespace
}  // namespace corvane
