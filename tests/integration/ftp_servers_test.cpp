// What the FTP client does the same way with every server: the basic cases, run against real ones.
//
// One server (pyftpdlib) is always started. Others that already run are named in the environment:
//   CORVANE_FTP_SERVERS="NAME=HOST:PORT,USER,PASSWORD,FOLDER[,CERTIFICATE];..."
// NAME is of letters and digits; FOLDER is a remote folder, relative to the login's or absolute, in which the user may
// do everything, and not anonymous; with CERTIFICATE, a file of CA certificates, the login is encrypted. The folder is
// left empty.
#include <cstdlib>
#include <optional>

#include <gtest/gtest.h>

#include "base/text.h"
#include "support/ftp_probe.h"
#include "support/server_process.h"
#include "support/temp_folder.h"

namespace corvane {
namespace {

constexpr std::int64_t kLongestGap = 250;

struct ServerRow {
  std::string name;
  FtpLogin login;
  std::string folder;
};

ServerRow ParseServer(std::string_view text) {
  const std::size_t equals = text.find('=');
  std::vector<std::string_view> fields = Split(text.substr(equals + 1), ',');
  fields.resize(5);
  const std::size_t colon = fields[0].rfind(':');
  ServerRow row{std::string(text.substr(0, equals)), {}, std::string(fields[3])};
  row.login.host = fields[0].substr(0, colon);
  row.login.port = std::atoi(std::string(fields[0].substr(colon + 1)).c_str());
  row.login.user = fields[1];
  row.login.password = fields[2];
  row.login.encrypted = !fields[4].empty();
  row.login.certificate = fields[4];
  return row;
}

std::vector<ServerRow> ServerRows() {
  std::vector<ServerRow> rows{{"pyftpdlib", {}, "."}};
  const char* others = std::getenv("CORVANE_FTP_SERVERS");
  for (const std::string_view text : Split(others != nullptr ? others : "", ';')) {
    if (!Trim(text).empty()) rows.push_back(ParseServer(Trim(text)));
  }
  return rows;
}

void PrintTo(const ServerRow& row, std::ostream* out) {
  *out << row.name;
}

class FtpServers : public testing::TestWithParam<ServerRow> {
 protected:
  void SetUp() override {
    FtpLogin login = GetParam().login;
    if (login.host.empty()) {
      server.emplace("ftp_server.py", std::vector<std::string>{remote.path()});
      login.host = "127.0.0.1";
      login.port = server->port();
      login.user = "user";
      login.password = "secret";
    }
    ftp.login = login;
    ASSERT_TRUE(ftp.Connect(login.port, login.user, login.password)) << ftp.client->InternetGetLastResponseInfo();
    EnterFolder();
  }
  void TearDown() override {
    EXPECT_LE(ftp.LongestGap(), kLongestGap);
    ftp.client->InternetCloseHandle(ftp.session);
  }
  void EnterFolder() {
    ASSERT_TRUE(client->FtpSetCurrentDirectory(ftp.connection, GetParam().folder));
    ASSERT_TRUE(client->FtpGetCurrentDirectory(ftp.connection, folder));
  }
  [[nodiscard]] bool Put(const std::string& text, const std::string& name) {
    const std::string sent = local.Write("sent", text);  // not in the call that the probe watches
    return client->FtpPutFile(ftp.connection, sent, name);
  }
  [[nodiscard]] std::string Get(const std::string& name) {
    const bool came = client->FtpGetFile(ftp.connection, name, local.Name("got"));
    return came ? local.Read("got") : "failed";
  }
  [[nodiscard]] std::vector<std::string> List(const std::string& pattern = "*.*") {
    return ftp.List((folder.back() == '/' ? folder : folder + "/") + pattern);
  }

  test::TempFolder local, remote;
  std::optional<test::ServerProcess> server;
  test::FtpProbe ftp;
  decltype(ftp.client)& client = ftp.client;
  std::string folder;
};

TEST_P(FtpServers, FilesOfAnyNameMakeTheRoundTrip) {
  const char* kNames[] = {"plain.zip", "two  blanks", "\"quotes\"",     "100%41.txt",   "#1?;type=a",
                          "a;type=d",  "-la",         "Bl\xc3\xa4tter", "[x]{y}~$&'()", "a,b=c+d@e!"};
  std::vector<std::string> names(std::begin(kNames), std::end(kNames));
  for (const std::string& name : names) {
    EXPECT_TRUE(Put("text of " + name, name)) << name << ": " << client->InternetGetLastResponseInfo();
    EXPECT_EQ(ftp.SizeOf(name), 8 + static_cast<std::int64_t>(name.size())) << name;
    EXPECT_EQ(Get(name), "text of " + name);
  }
  std::sort(names.begin(), names.end());
  EXPECT_EQ(List(), names);
  EXPECT_EQ(List("*.zip"), std::vector<std::string>{"plain.zip"});
  for (const std::string& name : names) EXPECT_TRUE(client->FtpDeleteFile(ftp.connection, name)) << name;
  EXPECT_EQ(List(), std::vector<std::string>{});
  EXPECT_EQ(client->GetLastError(), kInternetNoError);
}

TEST_P(FtpServers, BytesAreCountedOnceAndReplaceWhatWasThere) {
  const std::string big(3'000'000, 'b');
  for (const std::string& text : {big, std::string("short"), std::string()}) {
    ftp.statuses.clear();
    ASSERT_TRUE(Put(text, "file"));
    EXPECT_EQ(ftp.Bytes(kSendingRequest), static_cast<std::int64_t>(text.size()));
    EXPECT_EQ(Get("file"), text);
    EXPECT_EQ(ftp.Bytes(kResponseReceived), static_cast<std::int64_t>(text.size()));
    const std::vector<int> codes = ftp.Codes();
    EXPECT_EQ(std::count(codes.begin(), codes.end(), kHandleCreated), 2);
    EXPECT_EQ(std::count(codes.begin(), codes.end(), kHandleClosing), 2);
  }
  EXPECT_TRUE(client->FtpDeleteFile(ftp.connection, "file"));
}

TEST_P(FtpServers, FoldersAreMadeEnteredListedAndTakenAway) {
  ASSERT_TRUE(client->FtpCreateDirectory(ftp.connection, "my folder")) << client->InternetGetLastResponseInfo();
  ASSERT_TRUE(client->FtpCreateDirectory(ftp.connection, "my folder/inner"));
  EXPECT_EQ(List(), std::vector<std::string>{"my folder/"});
  EXPECT_TRUE(Put("x", "my folder/file"));
  for (int turn = 0; turn < 2; ++turn) {
    // A relative folder is taken from the login's, so that entering it twice does not nest.
    ASSERT_TRUE(client->FtpSetCurrentDirectory(ftp.connection, GetParam().folder + "/my folder"));
    std::string entered;
    ASSERT_TRUE(client->FtpGetCurrentDirectory(ftp.connection, entered));
    EXPECT_EQ(entered, (folder == "/" ? "" : folder) + "/my folder");
    EXPECT_EQ(ftp.List(entered + "/*"), (std::vector<std::string>{"file", "inner/"}));
  }
  EXPECT_EQ(Get("file"), "x");
  ASSERT_TRUE(client->FtpDeleteFile(ftp.connection, "file"));
  EXPECT_TRUE(client->FtpRemoveDirectory(ftp.connection, "inner"));
  EnterFolder();
  EXPECT_TRUE(client->FtpRemoveDirectory(ftp.connection, "my folder"));
}

TEST_P(FtpServers, WhatIsMissingFailsWithTheServersWordsAndChangesNothing) {
  const std::string before = local.Write("got", "old contents");
  EXPECT_EQ(ftp.SizeOf("nowhere"), -1);
  EXPECT_EQ(Get("nowhere"), "failed");
  EXPECT_EQ(ftp.List(folder + "/nowhere/*.*"), std::vector<std::string>{"failed"});
  EXPECT_FALSE(client->FtpDeleteFile(ftp.connection, "nowhere"));
  EXPECT_FALSE(client->FtpRemoveDirectory(ftp.connection, "nowhere"));
  EXPECT_FALSE(Put("x", "nowhere/file"));
  EXPECT_FALSE(client->FtpSetCurrentDirectory(ftp.connection, "nowhere"));
  EXPECT_EQ(client->GetLastError(), kInternetExtendedError);
  EXPECT_NE(client->InternetGetLastResponseInfo(), "");
  EXPECT_EQ(local.Read("got"), "old contents");
  EXPECT_FALSE(std::filesystem::exists(local.Name("got.part")));
  std::string still;
  EXPECT_TRUE(client->FtpGetCurrentDirectory(ftp.connection, still));
  EXPECT_EQ(still, folder);
  const std::vector<int> codes = ftp.Codes();
  EXPECT_EQ(std::count(codes.begin(), codes.end(), kConnectedToServer), 1) << "one login for everything";
}

TEST_P(FtpServers, WrongPasswordIsToldApart) {
  test::FtpProbe other;
  other.login = ftp.login;
  EXPECT_FALSE(other.Connect(ftp.login.port, ftp.login.user, "wrong"));
  EXPECT_EQ(other.client->GetLastError(), kInternetWrongPassword);
  EXPECT_LE(other.LongestGap(), kLongestGap);
}

INSTANTIATE_TEST_SUITE_P(On, FtpServers, testing::ValuesIn(ServerRows()),
                         [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace corvane
