// What becomes of servers that misbehave: one clear error within the limits, the loop alive, nothing half there, and
// nothing in clear where encryption is chosen.
#include <gtest/gtest.h>

#include "base/status.h"
#include "support/child.h"
#include "support/ftp_probe.h"
#include "support/small_disk.h"

namespace corvane::test {
namespace {

constexpr CurlInternetClient::Limits kShort{.connect = 700, .reply = 600, .stalled = 600, .goodbye = 300};

enum class Step : std::uint8_t { Connect, Encrypt, Put, Get, List, MakeFolder };

/// One client on one faulty server.
class FaultySession : public FtpProbe {
 public:
  explicit FaultySession(const std::string& fault, CurlInternetClient::Limits limits = kShort, bool connect = true)
      : FtpProbe(limits), server({"faulty_ftp_server.py", fault}) {
    login.port = server.port();
    if (connect) {
      EXPECT_TRUE(Connect()) << fault << Error() << Words();
    }
  }
  [[nodiscard]] bool Do(Step step) {
    static const std::string large(8'000'000, 's');
    login.encrypted = step == Step::Encrypt;
    switch (step) {
      case Step::Connect:
      case Step::Encrypt:
        return Connect();
      case Step::Put:
        return Put(large, "file");
      case Step::Get:
        return Get("file").size() == 100'000;
      case Step::List:
        return List() != Names{"failed"};
      case Step::MakeFolder:
        return MakeFolder();
    }
    return false;
  }
  [[nodiscard]] bool PutSmall() { return Put("small", "file"); }

  ServerProcess server;
};

TEST(FtpFaults, EndInOneErrorWithinTheLimits) {
  const struct {
    const char* fault;
    Step step;
    int error;
    const char* words;  ///< a part of what the person gets to see
  } rows[] = {
      {"silent", Step::Connect, kInternetTimeout, ""},
      {"silent_after_user", Step::Connect, kInternetTimeout, ""},
      {"endless_greeting", Step::Connect, kInternetTimeout, ""},
      {"busy", Step::Connect, kInternetExtendedError, "too many users"},
      {"no_ftp", Step::Connect, kInternetExtendedError, "no FTP server"},
      {"odd_user", Step::Connect, kInternetWrongUserName, "who are you"},
      {"account_wanted", Step::Connect, kInternetLoginFailure, ""},
      {"none", Step::Encrypt, kInternetExtendedError, "does not offer"},
      {"refuses_encryption", Step::Encrypt, kInternetExtendedError, "does not offer"},
      {"encryption_hangs", Step::Encrypt, kInternetTimeout, ""},
      {"drop_up", Step::Put, kInternetConnectionReset, ""},
      {"full", Step::Put, kInternetExtendedError, "disk is full"},
      {"full_in_the_end", Step::Put, kInternetExtendedError, "write failed"},
      {"stall_up", Step::Put, kInternetTimeout, ""},
      {"no_last_reply", Step::Put, kInternetTimeout, ""},
      {"drop_down", Step::Get, kInternetConnectionAborted, ""},
      {"reset_down", Step::Get, kInternetConnectionReset, ""},
      {"stall_down", Step::Get, kInternetTimeout, ""},
      {"no_last_reply", Step::Get, kInternetTimeout, ""},
      {"full_in_the_end", Step::Get, kInternetExtendedError, "write failed"},
      {"no_data_port", Step::Get, kInternetCannotConnect, ""},
      {"no_passive", Step::Get, kInternetExtendedError, "unknown command"},
      {"endless_line", Step::List, kInternetExtendedError, "too long"},
      {"long_replies", Step::MakeFolder, kInternetExtendedError, "not the end"},
      {"many_words", Step::MakeFolder, kInternetExtendedError,
       "first line\r\n  second line\r\nthird line\r\nlast line"},
      {"huge_reply", Step::MakeFolder, kInternetExtendedError, "reply is too long"},
  };
  for (const auto& [fault, step, error, words] : rows) {
    SCOPED_TRACE(fault);
    FaultySession session(fault, kShort, step > Step::Encrypt);
    const std::int64_t began = session.Now();
    EXPECT_FALSE(session.Do(step));
    EXPECT_LT(session.Now() - began, 2000);
    EXPECT_EQ(session.Error(), error);
    EXPECT_TRUE(session.Says(words)) << session.Words();
    EXPECT_LE(session.Words().size(), 10'000U);
    if (step == Step::Put || step == Step::Get) {
      EXPECT_EQ(session.Codes().back(), kHandleClosing);
    }
  }
}

TEST(FtpFaults, CancelEndsEveryWait) {
  const std::pair<const char*, Step> rows[] = {
      {"silent", Step::Connect},           {"silent_after_user", Step::Connect},
      {"encryption_hangs", Step::Encrypt}, {"stall_up", Step::Put},
      {"stall_down", Step::Get},           {"no_last_reply", Step::Put},
      {"no_last_reply", Step::Get}};
  for (const auto& [fault, step] : rows) {
    SCOPED_TRACE(fault);
    FaultySession session(fault, {}, step > Step::Encrypt);
    session.CancelAfter(30);
    const std::int64_t began = session.Now();
    EXPECT_FALSE(session.Do(step));
    EXPECT_EQ(session.Error(), kInternetCancelled);
    EXPECT_LT(session.Now() - began, 1000);
  }
}

TEST(FtpFaults, ThatCostNothing) {
  for (const char* fault : {"greeting", "long_replies", "late_last_reply", "joined_replies", "closes_between",
                            "idle_421", "other_address"}) {
    SCOPED_TRACE(fault);
    FaultySession session(fault);
    session.statuses.clear();
    for (int turn = 0; turn < 2; ++turn) {
      EXPECT_TRUE(session.Enter("folder") && session.PutSmall() && session.Do(Step::Get))
          << session.Error() << session.Words();
    }
    for (const int code : session.Codes()) EXPECT_GE(code, kSendingRequest) << "a login made anew is not told";
  }
}

TEST(FtpFaults, LoginThatIsGoneIsMadeAnewOrEndsTheSession) {
  EXPECT_TRUE(FaultySession("drops_on_command").MakeFolder()) << "a command is tried once more";

  FaultySession session("closes_for_good");
  EXPECT_TRUE(session.PutSmall());
  EXPECT_FALSE(session.PutSmall());
  EXPECT_EQ(session.Error(), kInternetExtendedError);
  EXPECT_EQ(session.Words(), "no more");
  const std::vector<int> codes = session.Codes();
  EXPECT_EQ(std::vector<int>(codes.end() - 3, codes.end()),
            (std::vector<int>{kHandleClosing, kClosingConnection, kConnectionClosed}));
  EXPECT_FALSE(session.PutSmall());
  EXPECT_EQ(session.Error(), kInternetWrongHandleType);

  FaultySession idle("closes_for_good", {.idle = 20});
  for (const std::int64_t end = idle.Now() + 40; idle.Now() < end;) idle.loop.Yield();
  EXPECT_FALSE(idle.MakeFolder());
  EXPECT_EQ(idle.Words(), "no more") << "a login that was unused for too long is not tried";
}

TEST(FtpFaults, FileCutByAServerWithoutSizesIsNoticedWhenTheListingHasItsSize) {
  FaultySession session("cut_without_size");
  EXPECT_EQ(session.SizeOf("file"), 100'000);
  EXPECT_EQ(session.Get("file"), "failed");
  EXPECT_EQ(session.Error(), kInternetConnectionAborted);
}

TEST(FtpFaults, ListingKeepsWhatCanBeReadAndTellsTheRest) {
  FaultySession session("odd_listing");
  EXPECT_EQ(session.List(), (Names{"a  b", "folder link/", "link"}));
  Names skipped;
  for (const InternetStatus& status : session.statuses) {
    if (status.code == kListingLineSkipped) skipped.push_back(status.text);
  }
  EXPECT_EQ(skipped, (Names{"what is this?", std::string(200, 'z')}));

  FaultySession long_one("many_entries");
  const std::int64_t began = long_one.Now();
  EXPECT_EQ(long_one.List().size(), 10'000U);
  EXPECT_LT(long_one.Now() - began, 1000);
}

TEST(FtpFaults, GoodbyeHoldsNothingUp) {
  FaultySession session("quit_hangs");
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
  FaultySession session("none");
  {
    const SmallDisk disk(50'000);
    EXPECT_EQ(session.Get("file"), "failed");
  }
  EXPECT_EQ(session.Error(), kInternetExtendedError);
  EXPECT_TRUE(session.Says("cannot be written")) << session.Words();
  EXPECT_TRUE(session.Do(Step::Get)) << "the next one goes well";
}

TEST(FtpFaults, NothingIsSmuggledIn) {
  FaultySession session("none");
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
                                                    {"a/b", 21, kInternetInvalidUrl},
                                                    {"", 21, kInternetInvalidUrl},
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
    FaultySession session(fault);
    const auto timer = session.loop.MakeTimer([] { throw RunTimeError("thrown"); });
    timer->Start(50);
    EXPECT_THROW(static_cast<void>(session.Do(Step::Put)), RunTimeError);
    timer->Stop();
    EXPECT_EQ(session.Codes().back(), kHandleClosing);
    EXPECT_TRUE(session.Do(Step::MakeFolder)) << session.Error() << session.Words();
  }
}

TEST(FtpFaults, HandlersCannotCallIntoACallThatRuns) {
  FaultySession session("late_last_reply");
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
