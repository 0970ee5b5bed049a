#include "transfer/my_ftp.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>
#include <tuple>
#include <vector>

#include "transfer/ftp_error_text.h"
#include "transfer/server_address.h"
#include "unit/transfer_world.h"

namespace corvane::test {
namespace {

constexpr const char* kSendsOne = "1 1 0 1";

TEST(FtpTexts, AreLetterForLetter) {
  const std::tuple<int, std::string, std::string> errors[] = {
      {12002, "", "The request has timed out."},
      {12003, "552 quota", "552 quota"},
      {12003, "", "Extended error returned from server"},
      {12003, std::string(300, 'x'), std::string(255, 'x')},
      {12013, "",
       "Request to connect and login to an FTP server could notbe completed because the supplied user name is "
       "incorrect."},
      {12035, "", "Error details not available."},
      {12036, "", "The request failed because the handle already exists."},
      {7, "", "Error details not available."},
  };
  for (const auto& [code, reply, text] : errors) EXPECT_EQ(FtpErrorText(code, reply), text) << code;
  const std::tuple<std::int64_t, std::int64_t, std::string> rates[] = {
      {0, 100, "p 00:00 [0 bytes/sec]"},
      {2000, 5001, "p 00:02 [2,501 bytes/sec]"},
      {59 * 60'000, 0, "p 59:00 [0 bytes/sec]"},
      {61 * 60'000, 3'660'000, "p 01:01:00 [1,000 bytes/sec]"},
  };
  for (const auto& [elapsed, bytes, text] : rates) EXPECT_EQ(RateText("p ", elapsed, bytes), text);
}

TEST(FtpTexts, ServerIsHostAndPort) {
  const std::tuple<std::string, std::string, int> rows[] = {
      {"ftp.example.org", "ftp.example.org", 21},
      {"a:2121", "a", 2121},
      {"[::1]:2121", "[::1]", 2121},
      {"[::1]", "[::1]", 21},
      {"::1", "::1", 21},
      {"a:70000", "a", 0},
      {"a:", "a", 0},
  };
  for (const auto& [server, host, port] : rows) {
    EXPECT_EQ(ParseServer(server).host, host) << server;
    EXPECT_EQ(ParseServer(server).port, port) << server;
  }
}

TEST(FtpSession, SaysWhatIsMissingBeforeItConnects) {
  const std::tuple<std::string, std::string, std::string, bool, std::string> rows[] = {
      {"", "", "", false, "FTP: No server specified\r\nNo password\r\nNo user name"},
      {"a", "me", "", false, "FTP: \r\nNo password"},
      {"", "", "", true, "FTP: No server specified"},
  };
  for (const auto& [server, user, password, anonymous, text] : rows) {
    TransferWorld world({kSendsOne});
    world.form().Txt_FTPServer.SetText(server);
    world.form().Txt_FTPUserName.SetText(user);
    world.form().Txt_FTPPassword.SetText(password);
    world.form().Chk_Anonymous.SetTicked(anonymous);
    world.form().mnu_ftpFile.Click(1);
    EXPECT_EQ(world.dialogs.Texts(), std::vector<std::string>{text});
    EXPECT_TRUE(world.internet.calls.empty());
  }
}

TEST(FtpSession, KeepsOneLoginUntilTheSettingsChangeOrTheServerDropsIt) {
  TransferWorld world({kSendsOne});
  world.GiveRawFile(1, "F1");
  const auto send = [&] {
    world.internet.calls.clear();
    world.form().mnu_ftpFile.Click(1);
    return world.internet.Count("connect");
  };
  EXPECT_EQ(send(), 1);
  EXPECT_EQ(world.internet.calls.front(), "open Ostrel-FTP");
  EXPECT_TRUE(world.internet.Called("connect me:secret@ftp.example.org:21"));
  EXPECT_EQ(send(), 0);
  world.form().Txt_FTPServer.SetText("ftp.example.org:2121");
  EXPECT_EQ(send(), 1);
  EXPECT_TRUE(world.internet.Called("close 2")) << "the old login is closed";
  world.form().Chk_Anonymous.SetTicked(true);
  EXPECT_EQ(send(), 1);
  EXPECT_TRUE(world.internet.Called("connect anonymous:corvane@localhost@ftp.example.org:2121"));
  world.form().Opt_FTPSecurity.SetOptionIndex(1);
  world.form().Txt_FTPCertificate.SetText("own.pem");
  EXPECT_EQ(send(), 1);
  EXPECT_TRUE(world.internet.last_login.encrypted);
  EXPECT_EQ(world.internet.last_login.certificate, world.home.Name("own.pem"));
  world.internet.Report({1, kConnectionClosed, "", 0});
  EXPECT_EQ(send(), 1);
  world.internet.errors["put"] = {kInternetConnectionAborted};
  EXPECT_EQ(send(), 0);
  EXPECT_TRUE(world.internet.Called("close 2") && world.internet.Called("close 1"));
  EXPECT_EQ(send(), 1);
}

TEST(FtpSession, ReportsAFailureOnceInThreePlacesAndGoesOnByItself) {
  TransferWorld world({kSendsOne});
  world.GiveRawFile(1, "F1");
  world.dialogs.answer_plain_boxes = false;
  world.internet.errors["connect"] = {kInternetWrongPassword};
  world.form().mnu_ftpFile.Click(1);
  const std::string text = FtpErrorText(kInternetWrongPassword, "") +
                           "\r\nftp: Connect\r\nServer: ftp.example.org\r\nUser:me\r\nHCconnect=0";
  EXPECT_EQ(world.dialogs.Texts(), std::vector<std::string>{text});
  EXPECT_EQ(world.dialogs.boxes[0].title, "Corvane");
  EXPECT_EQ(world.loop.MonotonicMilliseconds(), 10'000);
  EXPECT_TRUE(world.FtpLogged("12 Mar 2010 10:00:00> " + text + "\r\n"));
  EXPECT_FALSE(world.FtpLogged("Password: "));
  EXPECT_EQ(world.internet.Count("connect"), 1);
  EXPECT_FALSE(world.form().Cmd_FTP[3].enabled());
}

TEST(FtpSession, WritesItsTracesWhereTheyAreSwitchedOn) {
  TransferWorld world({kSendsOne});
  world.GiveRawFile(1, "F1");
  world.form().mnu_ftpFile.Click(1);
  EXPECT_EQ(world.home.Read("ftp.log") + world.home.Read("FileSent.Log"), "");
  for (CheckBox& box : world.form().Chk_FTPTrace) box.SetTicked(true);
  ASSERT_EQ(chmod(world.home.Write("ftp.log", "").c_str(), 0644), 0);
  world.form().Txt_FTPPassword.SetText("other");
  world.form().mnu_ftpFile.Click(1);
  const std::string local = world.home.Name("data/F1/u00001.epd");
  for (const std::string& line :
       {std::string("UserName: me"), std::string("Password: other"), std::string("Connected to: ftp.example.org"),
        std::string("Current Directory:/web"), std::string("ConnectIfNotConnected - already connected"),
        "==PutFile:" + local + " -> f1/u00001.epd", std::string("ISSR Uploading   3 of 3"),
        std::string("Upload complete: "), std::string("StatusChange:sending Status:30 hInternet:2"),
        "Send: " + local}) {
    EXPECT_TRUE(world.FtpLogged("12 Mar 2010 10:00:00> " + line + "\r\n")) << line;
  }
  EXPECT_EQ(world.home.Read("FileSent.Log"), "2010-03-12 10:00:00," + local + ", > ,f1/u00001.epd\r\n");
  struct stat info {};
  ASSERT_EQ(stat(world.home.Name("ftp.log").c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777U, 0600U);
}

TEST(FtpSession, ShowsTheStepsAndTheBytesOfATransfer) {
  TransferWorld world({kSendsOne});
  world.GiveRawFile(1, "F1", std::string(200, 'x'));
  std::vector<std::string> shown;
  world.internet.on_call = [&](const std::string& call) {
    if (!call.starts_with("put")) return;
    world.internet.Report({2, kResolvingName, "ftp.example.org", 0});
    shown.push_back(world.Status());
    world.loop.After(2000, [] {});
    world.loop.Advance(2000);
    world.internet.Report({2, kSendingRequest, "", 50});
    world.internet.Report({2, kRequestSent, "", 0});
    shown.push_back(world.Status());
    EXPECT_EQ(world.form().Bar_Download.value(), 25);
  };
  world.form().mnu_ftpFile.Click(1);
  EXPECT_EQ(shown, (std::vector<std::string>{"HTTP request redirected to ftp.example.org",
                                             "u00001.epd 00:02 [25 bytes/sec]"}));
  EXPECT_EQ(world.form().Bar_Download.value(), 0);
}

TEST(FtpSession, CancelEndsTheTransferAndTheBatchWithoutABox) {
  TransferWorld world({kSendsOne, kSendsOne});
  world.GiveRawFile(1, "F1");
  world.GiveRawFile(2, "F1");
  world.internet.errors["put"] = {kInternetCancelled};
  world.internet.on_call = [&](const std::string& call) {
    if (call.starts_with("put")) world.form().Cmd_Cancel.Click();
  };
  world.form().mnu_ftpFile.Click(1);
  EXPECT_TRUE(world.internet.cancelled && world.zip.aborted);
  EXPECT_EQ(world.internet.Count("put"), 1);
  EXPECT_EQ(world.internet.Count("find"), 0) << "no listing for a person in a hurry";
  EXPECT_TRUE(world.dialogs.boxes.empty());
}

}  // namespace
}  // namespace corvane::test
