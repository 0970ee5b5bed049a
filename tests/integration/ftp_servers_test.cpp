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
#include "support/child.h"
#include "support/ftp_probe.h"

namespace corvane::test {
namespace {

struct ServerRow {
  std::string name;
  FtpLogin login;  ///< without a host: a server is started
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
    if (GetParam().login.host.empty()) {
      server.emplace(corvane::test::Words{"ftp_server.py", remote.path()});
      ftp.login.port = server->port();
    } else {
      ftp.login = GetParam().login;
    }
    ASSERT_TRUE(ftp.Connect()) << ftp.Words();
    EnterFolder();
  }
  void EnterFolder() {
    ASSERT_TRUE(ftp.Enter(GetParam().folder));
    folder = CurrentFolder();
    ASSERT_NE(folder, "");
  }
  [[nodiscard]] std::string CurrentFolder() {
    std::string current;
    return client->FtpGetCurrentDirectory(ftp.connection, current) ? current : "";
  }
  [[nodiscard]] bool Delete(const std::string& name) { return client->FtpDeleteFile(ftp.connection, name); }
  [[nodiscard]] bool Remove(const std::string& name) { return client->FtpRemoveDirectory(ftp.connection, name); }
  [[nodiscard]] Names List(const std::string& pattern = "*.*") {
    return ftp.List((folder.back() == '/' ? folder : folder + "/") + pattern);
  }

  TempFolder remote;
  std::optional<ServerProcess> server;
  FtpProbe ftp;
  decltype(ftp.client)& client = ftp.client;
  std::string folder;
};

TEST_P(FtpServers, FilesOfAnyNameMakeTheRoundTrip) {
  Names names = {"plain.zip", "two  blanks", "\"quotes\"",     "100%41.txt",   "#1?;type=a",
                 "a;type=d",  "-la",         "Bl\xc3\xa4tter", "[x]{y}~$&'()", "a,b=c+d@e!"};
  for (const std::string& name : names) {
    EXPECT_TRUE(ftp.Put("text of " + name, name)) << name << ": " << ftp.Words();
    EXPECT_EQ(ftp.SizeOf(name), 8 + static_cast<std::int64_t>(name.size())) << name;
    EXPECT_EQ(ftp.Get(name), "text of " + name);
  }
  std::sort(names.begin(), names.end());
  EXPECT_EQ(List(), names);
  EXPECT_EQ(List("*.zip"), Names{"plain.zip"});
  for (const std::string& name : names) EXPECT_TRUE(Delete(name)) << name;
  EXPECT_EQ(List(), Names{});
  EXPECT_EQ(ftp.Error(), kInternetNoError);
}

TEST_P(FtpServers, BytesAreCountedOnceAndReplaceWhatWasThere) {
  for (const std::string& text : {std::string(3'000'000, 'b'), std::string("short"), std::string()}) {
    ftp.statuses.clear();
    ASSERT_TRUE(ftp.Put(text, "file"));
    EXPECT_EQ(ftp.Bytes(kSendingRequest), static_cast<std::int64_t>(text.size()));
    EXPECT_EQ(ftp.Get("file"), text);
    EXPECT_EQ(ftp.Bytes(kResponseReceived), static_cast<std::int64_t>(text.size()));
    EXPECT_EQ(ftp.Count(kHandleCreated), 2);
    EXPECT_EQ(ftp.Count(kHandleClosing), 2);
  }
  EXPECT_TRUE(Delete("file"));
}

TEST_P(FtpServers, FoldersAreMadeEnteredListedAndTakenAway) {
  ASSERT_TRUE(ftp.MakeFolder("my folder") && ftp.MakeFolder("my folder/inner")) << ftp.Words();
  EXPECT_EQ(List(), Names{"my folder/"});
  EXPECT_TRUE(ftp.Put("x", "my folder/file"));
  for (int turn = 0; turn < 2; ++turn) {
    // A relative folder is taken from the login's, so that entering it twice does not nest.
    ASSERT_TRUE(ftp.Enter(GetParam().folder + "/my folder"));
    EXPECT_EQ(CurrentFolder(), (folder == "/" ? "" : folder) + "/my folder");
    EXPECT_EQ(ftp.List(CurrentFolder() + "/*"), (Names{"file", "inner/"}));
  }
  EXPECT_EQ(ftp.Get("file"), "x");
  ASSERT_TRUE(Delete("file") && Remove("inner"));
  EnterFolder();
  EXPECT_TRUE(Remove("my folder"));
}

TEST_P(FtpServers, WhatIsMissingFailsWithTheServersWordsAndChangesNothing) {
  EXPECT_EQ(ftp.SizeOf("nowhere"), -1);
  EXPECT_EQ(ftp.Get("nowhere"), "failed");
  EXPECT_EQ(ftp.List(folder + "/nowhere/*.*"), Names{"failed"});
  EXPECT_FALSE(Delete("nowhere") || Remove("nowhere") || ftp.Put("x", "nowhere/file") || ftp.Enter("nowhere"));
  EXPECT_EQ(ftp.Error(), kInternetExtendedError);
  EXPECT_NE(ftp.Words(), "");
  EXPECT_EQ(CurrentFolder(), folder);
  EXPECT_EQ(ftp.Count(kConnectedToServer), 1) << "one login for everything";
  ftp.login.password = "wrong";
  EXPECT_FALSE(ftp.Connect());
  EXPECT_EQ(ftp.Error(), kInternetWrongPassword);
}

INSTANTIATE_TEST_SUITE_P(On, FtpServers, testing::ValuesIn(ServerRows()),
                         [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace corvane::test
