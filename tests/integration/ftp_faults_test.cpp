// What becomes of servers that misbehave: one clear error within the limits, the loop alive, nothing half there, and
// nothing in clear where encryption is chosen.
#include <gtest/gtest.h>

#include "base/status.h"
#include "support/child.h"
#include "support/ftp_probe.h"
#include "support/small_disk.h"

namespace corvane::test {
namespace {

constexpr CurlInternetClient::Limits kShort{
    .connect = 700, .reply = 600, .stalled = 600, .trickle = 1000, .goodbye = 300};

/// One client on one faulty server, and its steps, which may fail.
class FaultySession : public FtpProbe {
 public:
  explicit FaultySession(const std::string& fault, CurlInternetClient::Limits limits = kShort)
      : FtpProbe(limits), server({"faulty_ftp_server.py", fault}) {
    login.port = server.port();
  }
  bool LogIn() { return Connect(); }
  bool LogInEncrypted() { return login.encrypted = true, Connect(); }
  bool PutLarge() { return Put(std::string(8'000'000, 's'), "file"); }
  bool PutSmall() { return Put("small", "file"); }
  bool GetFile() { return Get("file").size() == 100'000; }
  bool GetTooLong() { return Get("file", 99'999) != "failed"; }
  bool ListRoot() { return List() != Names{"failed"}; }
  bool Make() { return MakeFolder(); }

  ServerProcess server;
};

using S = FaultySession;
using Step = bool (S::*)();

/// A session with its login behind it.
class LoggedIn : public FaultySession {
 public:
  explicit LoggedIn(const std::string& fault, CurlInternetClient::Limits limits = kShort)
      : FaultySession(fault, limits) {
    EXPECT_TRUE(Connect()) << fault << Error() << Words();
  }
};

TEST(FtpFaults, EndInOneErrorWithinTheLimits) {
  const struct {
    const char* fault;
    Step step;
    int error;
    const char* words;  ///< a part of what the person gets to see
  } rows[] = {
      {"silent", &S::LogIn, kInternetTimeout, ""},
      {"silent_after_user", &S::LogIn, kInternetTimeout, ""},
      {"endless_greeting", &S::LogIn, kInternetTimeout, ""},
      {"busy", &S::LogIn, kInternetExtendedError, "too many users"},
      {"no_ftp", &S::LogIn, kInternetExtendedError, "no FTP server"},
      {"odd_user", &S::LogIn, kInternetWrongUserName, "who are you"},
      {"account_wanted", &S::LogIn, kInternetLoginFailure, ""},
      {"none", &S::LogInEncrypted, kInternetExtendedError, "does not offer"},
      {"refuses_encryption", &S::LogInEncrypted, kInternetExtendedError, "does not offer"},
      {"encryption_hangs", &S::LogInEncrypted, kInternetTimeout, ""},
      {"drop_up", &S::PutLarge, kInternetConnectionReset, ""},
      {"full", &S::PutLarge, kInternetExtendedError, "disk is full"},
      {"full_in_the_end", &S::PutLarge, kInternetExtendedError, "write failed"},
      {"throws_away", &S::PutLarge, kInternetExtendedError, "holds 0 bytes of the file, 8000000 were sent"},
      {"stall_up", &S::PutLarge, kInternetTimeout, ""},
      {"no_last_reply", &S::PutLarge, kInternetTimeout, ""},
      {"drop_down", &S::GetFile, kInternetConnectionAborted, ""},
      {"reset_down", &S::GetFile, kInternetConnectionReset, ""},
      {"stall_down", &S::GetFile, kInternetTimeout, ""},
      {"trickle_down", &S::GetFile, kInternetTimeout, ""},
      {"none", &S::GetTooLong, kInternetExtendedError, "longer than 99999 bytes"},
      {"no_last_reply", &S::GetFile, kInternetTimeout, ""},
      {"full_in_the_end", &S::GetFile, kInternetExtendedError, "write failed"},
      {"no_data_port", &S::GetFile, kInternetCannotConnect, ""},
      {"no_passive", &S::GetFile, kInternetExtendedError, "unknown command"},
      {"endless_line", &S::ListRoot, kInternetExtendedError, "too long"},
      {"long_replies", &S::Make, kInternetExtendedError, "not the end"},
      {"many_words", &S::Make, kInternetExtendedError, "first line\r\n  second line\r\nthird line\r\nlast line"},
      {"huge_reply", &S::Make, kInternetExtendedError, "reply is too long"},
  };
  for (const auto& [fault, step, error, words] : rows) {
    SCOPED_TRACE(fault);
    // A wait that its limit ends is ended by a cancel as well.
    for (const bool cancel : {false, true}) {
      if (cancel && error != kInternetTimeout) continue;
      FaultySession session(fault, cancel ? CurlInternetClient::Limits{} : kShort);
      EXPECT_TRUE(step == &S::LogIn || step == &S::LogInEncrypted || session.LogIn()) << session.Words();
      if (cancel) session.CancelAfter(30);
      const std::int64_t began = session.Now();
      EXPECT_FALSE((session.*step)());
      EXPECT_LT(session.Now() - began, cancel ? 1000 : 2000);
      EXPECT_EQ(session.Error(), cancel ? kInternetCancelled : error);
      EXPECT_TRUE(session.Says(words)) << session.Words();
      EXPECT_LE(session.Words().size(), 10'000U);
      if (step == &S::PutLarge || step == &S::GetFile) {
        EXPECT_EQ(session.Codes().back(), kHandleClosing);
      }
    }
  }
}

TEST(FtpFaults, ThatCostNothing) {
  for (const char* fault : {"greeting", "long_replies", "late_last_reply", "joined_replies", "closes_between",
                            "idle_421", "other_address"}) {
    SCOPED_TRACE(fault);
    LoggedIn session(fault);
    session.statuses.clear();
    for (int turn = 0; turn < 2; ++turn) {
      EXPECT_TRUE(session.Enter("folder") && session.PutSmall() && session.GetFile())
          << session.Error() << session.Words();
    }
    for (const int code : session.Codes()) EXPECT_GE(code, kSendingRequest) << "a login made anew is not told";
  }
}

TEST(FtpFaults, FileThatIsMovedAwayBehindItsStoreIsSentUnconfirmed) {
  LoggedIn session("moves_away");
  EXPECT_TRUE(session.PutSmall());
  EXPECT_EQ(session.Count(kStoreUnconfirmed), 1);
}

TEST(FtpFaults, LoginThatIsGoneIsMadeAnewOrEndsTheSession) {
  EXPECT_TRUE(LoggedIn("drops_on_command").MakeFolder()) << "a command is tried once more";

  LoggedIn session("closes_for_good");
  EXPECT_TRUE(session.PutSmall());
  EXPECT_FALSE(session.PutSmall());
  EXPECT_EQ(session.Error(), kInternetExtendedError);
  EXPECT_EQ(session.Words(), "no more");
  const std::vector<int> codes = session.Codes();
  EXPECT_EQ(std::vector<int>(codes.end() - 3, codes.end()),
            (std::vector<int>{kHandleClosing, kClosingConnection, kConnectionClosed}));
  EXPECT_FALSE(session.PutSmall());
  EXPECT_EQ(session.Error(), kInternetWrongHandleType);

  LoggedIn idle("closes_for_good", {.idle = 20});
  for (const std::int64_t end = idle.Now() + 40; idle.Now() < end;) idle.loop.Yield();
  EXPECT_FALSE(idle.MakeFolder());
  EXPECT_EQ(idle.Words(), "no more") << "a login that was unused for too long is not tried";
}

TEST(FtpFaults, FileCutByAServerWithoutSizesIsNoticedWhenTheListingHasItsSize) {
  LoggedIn session("cut_without_size");
  EXPECT_EQ(session.SizeOf("file"), 100'000);
  EXPECT_EQ(session.Get("file"), "failed");
  EXPECT_EQ(session.Error(), kInternetConnectionAborted);
}

TEST(FtpFaults, ListingKeepsWhatCanBeReadAndTellsTheRest) {
  LoggedIn session("odd_listing");
  EXPECT_EQ(session.List(), (Names{"a  b", "folder link/", "link"}));
  Names skipped;
  for (const InternetStatus& status : session.statuses) {
    if (status.code == kListingLineSkipped) skipped.push_back(status.text);
  }
  EXPECT_EQ(skipped, (Names{"what is this?", std::string(200, 'z')}));

  LoggedIn long_one("many_entries");
  const std::int64_t began = long_one.Now();
  EXPECT_EQ(long_one.List().size(), 10'000U);
  EXPECT_LT(long_one.Now() - began, 1000);
}

TEST(FtpFaults, GoodbyeHoldsNothingUp) {
  LoggedIn session("quit_hangs");
  std::int64_t began = session.Now();
  session.client->InternetCloseHandle(session.connection);
  EXPECT_LT(session.Now() - began, kShort.goodbye + 200);
  auto client = std::make_unique<CurlInternetClient>(session.loop);
  ASSERT_NE(client->InternetConnect(client->InternetOpen(""), session.login), 0);
  began = session.Now();
  client.reset();
  EXPECT_LT(session.Now() - began, 200) << "a client that is destroyed says no goodbye";
}

TEST(FtpFaults, FullLocalDiskLeavesTheOldFile) {
  LoggedIn session("none");
  {
    const SmallDisk disk(50'000);
    EXPECT_EQ(session.Get("file"), "failed");
  }
  EXPECT_EQ(session.Error(), kInternetExtendedError);
  EXPECT_TRUE(session.Says("cannot be written")) << session.Words();
  EXPECT_TRUE(session.GetFile()) << "the next one goes well";
}

TEST(FtpFaults, NothingIsSmuggledIn) {
  LoggedIn session("none");
  const FtpLogin good = session.login;
  for (const std::string& name : {std::string("a\r\nDELE b"), std::string("a\nb"), std::string("a\0b", 3)}) {
    const std::pair<const char*, std::function<bool()>> steps[] = {
        {"enter", [&] { return session.Enter(name); }},
        {"make", [&] { return session.MakeFolder(name); }},
        {"put", [&] { return session.Put("small", name); }},
        {"get", [&] { return session.Get(name) != "failed"; }},
        {"size", [&] { return session.SizeOf(name) != -1; }},
        {"list", [&] { return session.List(name + "/*") != Names{"failed"}; }},
        {"user", [&] { return session.login.user = name, session.Connect(); }},
        {"password", [&] { return session.login = good, session.login.password = name, session.Connect(); }}};
    for (const auto& [step, run] : steps) {
      EXPECT_FALSE(run()) << step;
      EXPECT_EQ(session.Error(), kInternetExtendedError) << step;
      EXPECT_TRUE(session.Says("control characters")) << step << session.Words();
    }
    session.login = good;
    ASSERT_TRUE(session.Connect());
  }
}

TEST(FtpFaults, HostsThatCannotBeReached) {
  const std::tuple<const char*, int, int> rows[] = {{"user@127.0.0.1", 21, kInternetInvalidUrl},
                                                    {"", 21, kInternetInvalidUrl},
                                                    {"a/b", 21, kInternetInvalidUrl},
                                                    {"127.0.0.1", 0, kInternetInvalidUrl},
                                                    {"127.0.0.1", 65536, kInternetInvalidUrl},
                                                    {"127.0.0.1", 1, kInternetCannotConnect},
                                                    {"[::1]", 1, kInternetCannotConnect},
                                                    {"no-such-name.invalid", 21, kInternetNameNotResolved}};
  for (const auto& [host, port, error] : rows) {
    FtpProbe ftp({.connect = 5000});
    ftp.login.host = host;
    ftp.login.port = port;
    EXPECT_FALSE(ftp.Connect());
    EXPECT_EQ(ftp.Error(), error) << host << port;
  }
}

TEST(FtpFaults, HandlerThatThrowsEndsItsCallOnly) {
  // Between curl's steps, and in the wait for a last reply, which is in the middle of one.
  for (const char* fault : {"stall_up", "late_last_reply"}) {
    SCOPED_TRACE(fault);
    LoggedIn session(fault);
    const auto timer = session.loop.MakeTimer([] { throw RunTimeError("thrown"); });
    timer->Start(50);
    EXPECT_THROW(static_cast<void>(session.PutLarge()), RunTimeError);
    timer->Stop();
    EXPECT_EQ(session.Codes().back(), kHandleClosing);
    EXPECT_TRUE(session.Make()) << session.Error() << session.Words();
  }
}

TEST(FtpFaults, HandlersCannotCallIntoACallThatRuns) {
  LoggedIn session("late_last_reply");
  int refused = 0;
  const auto timer = session.loop.MakeTimer([&] {
    session.client->InternetCloseHandle(session.session);
    refused += session.MakeFolder() || session.client->InternetOpen("") != 0 ? -1000 : 1;
  });
  timer->Start(50);
  EXPECT_TRUE(session.PutSmall());
  EXPECT_GT(refused, 0);
  EXPECT_EQ(session.Error(), kInternetNoError);
}

class FtpEncryption : public testing::Test {
 protected:
  TempFolder remote, keys;
  ServerProcess server{{"ftp_server.py", remote.path(), "--encrypted", keys.path()}};

  [[nodiscard]] bool Connect(FtpProbe& ftp, int port, const std::string& host, const std::string& certificate) const {
    ftp.login.host = host;
    ftp.login.port = port;
    ftp.login.encrypted = true;
    ftp.login.certificate = certificate.empty() ? "" : keys.Name(certificate);
    return ftp.Connect();
  }
};

TEST_F(FtpEncryption, ServersAreCheckedAndFilesAndListingsGoThrough) {
  const std::tuple<const char*, const char*, const char*> refusals[] = {
      {"localhost", "", "Choose the certificate file"},
      {"127.0.0.1", "ca.pem", "the name that stands in its certificate"},
      {"localhost", "missing.pem", "certificate file cannot be used"}};
  FtpProbe ftp;
  for (const auto& [host, certificate, words] : refusals) {
    EXPECT_FALSE(Connect(ftp, server.port(), host, certificate));
    EXPECT_EQ(ftp.Error(), kInternetExtendedError);
    EXPECT_TRUE(ftp.Says(words)) << ftp.Words();
  }
  ASSERT_TRUE(Connect(ftp, server.port(), "localhost", "ca.pem")) << ftp.Words();
  for (const std::string& text : {std::string(3'000'000, 'b'), std::string("short"), std::string()}) {
    ASSERT_TRUE(ftp.Put(text, "file"));
    EXPECT_EQ(ftp.Get("file"), text);
  }
  EXPECT_EQ(ftp.List(), Names{"file"});
}

TEST_F(FtpEncryption, HandshakeOfATransferThatHangsEndsByLimitAndByCancel) {
  const ServerProcess hanging({"faulty_ftp_server.py", "data_encryption_hangs", keys.Name("server.pem")});
  for (const bool cancel : {false, true}) {
    FtpProbe ftp(cancel ? CurlInternetClient::Limits{} : kShort);
    ASSERT_TRUE(Connect(ftp, hanging.port(), "localhost", "ca.pem")) << ftp.Words();
    if (cancel) ftp.CancelAfter(100);
    const std::int64_t began = ftp.Now();
    EXPECT_EQ(ftp.Get("file"), "failed");
    EXPECT_EQ(ftp.Error(), cancel ? kInternetCancelled : kInternetTimeout);
    EXPECT_LT(ftp.Now() - began, 1100);
  }
}

}  // namespace
}  // namespace corvane::test
