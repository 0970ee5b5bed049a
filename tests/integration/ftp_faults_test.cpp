// What becomes of servers that misbehave: one clear error within the limits, the loop alive, nothing half there.
#include <csignal>
#include <filesystem>

#include <gtest/gtest.h>

#include "base/status.h"
#include "base/text.h"
#include "support/ftp_probe.h"
#include "support/server_process.h"
#include "support/small_disk.h"
#include "support/temp_folder.h"

namespace corvane {
namespace {

constexpr std::int64_t kLongestGap = 250;
constexpr CurlInternetClient::Limits kShort{.connect = 700, .reply = 600, .stalled = 600, .goodbye = 300};
constexpr int kFileSize = 100'000;

enum class Step : std::uint8_t { Connect, Put, Get, List, MakeFolder };

/// One client on one faulty server, and a local file that a failed download must not touch.
class FaultySession {
 public:
  explicit FaultySession(const std::string& fault, CurlInternetClient::Limits limits = kShort)
      : server("faulty_ftp_server.py", {fault}), ftp(limits) {
    local.Write("got", "old");
    local.Write("sent", std::string(8'000'000, 's'));
    local.Write("small", "small");
    signal(SIGPIPE, SIG_IGN);
  }

  [[nodiscard]] bool Do(Step step) {
    switch (step) {
      case Step::Connect:
        return ftp.Connect(server.port());
      case Step::Put:
        return ftp.client->FtpPutFile(ftp.connection, local.Name("sent"), "file");
      case Step::Get:
        return ftp.client->FtpGetFile(ftp.connection, "file", local.Name("got"));
      case Step::List:
        return ftp.List("/*.*") != std::vector<std::string>{"failed"};
      case Step::MakeFolder:
        return ftp.client->FtpCreateDirectory(ftp.connection, "folder");
    }
    return false;
  }
  [[nodiscard]] bool PutSmall() { return ftp.client->FtpPutFile(ftp.connection, local.Name("small"), "file"); }
  void ExpectNothingHalfThere() const {
    EXPECT_EQ(local.Read("got"), "old");
    EXPECT_FALSE(std::filesystem::exists(local.Name("got.part")));
  }
  [[nodiscard]] std::string Words() const { return ftp.client->InternetGetLastResponseInfo(); }
  [[nodiscard]] int Error() const { return ftp.client->GetLastError(); }

  test::TempFolder local;
  test::ServerProcess server;
  test::FtpProbe ftp;
};

struct FaultRow {
  const char* fault;
  Step step;
  int error;
  const char* words;  ///< a part of what the person gets to see
};

constexpr FaultRow kFaultRows[] = {
    {"silent", Step::Connect, kInternetTimeout, ""},
    {"silent_after_user", Step::Connect, kInternetTimeout, ""},
    {"endless_greeting", Step::Connect, kInternetTimeout, ""},
    {"busy", Step::Connect, kInternetExtendedError, "too many users"},
    {"no_ftp", Step::Connect, kInternetExtendedError, "no FTP server"},
    {"odd_user", Step::Connect, kInternetWrongUserName, "who are you"},
    {"account_wanted", Step::Connect, kInternetLoginFailure, ""},
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
    {"many_words", Step::MakeFolder, kInternetExtendedError, "first line\r\n  second line\r\nthird line\r\nlast line"},
    {"huge_reply", Step::MakeFolder, kInternetExtendedError, "reply is too long"},
};

TEST(FtpFaults, EndInOneErrorWithinTheLimits) {
  for (const FaultRow& row : kFaultRows) {
    SCOPED_TRACE(row.fault);
    FaultySession session(row.fault);
    if (row.step != Step::Connect) {
      ASSERT_TRUE(session.Do(Step::Connect)) << session.Error() << session.Words();
    }
    const std::int64_t began = session.ftp.Now();
    EXPECT_FALSE(session.Do(row.step));
    EXPECT_LT(session.ftp.Now() - began, 2000);
    EXPECT_EQ(session.Error(), row.error) << session.Words();
    EXPECT_NE(session.Words().find(row.words), std::string::npos) << session.Words();
    EXPECT_LE(session.Words().size(), 10'000U);
    session.ExpectNothingHalfThere();
    EXPECT_LE(session.ftp.LongestGap(), kLongestGap);
    if (row.step == Step::Put || row.step == Step::Get) {
      EXPECT_EQ(session.ftp.Codes().back(), kHandleClosing);
    }
  }
}

TEST(FtpFaults, CancelEndsEveryWait) {
  const std::pair<const char*, Step> kRows[] = {{"silent", Step::Connect},    {"silent_after_user", Step::Connect},
                                                {"stall_up", Step::Put},      {"stall_down", Step::Get},
                                                {"no_last_reply", Step::Put}, {"no_last_reply", Step::Get}};
  for (const auto& [fault, step] : kRows) {
    SCOPED_TRACE(fault);
    FaultySession session(fault, {});
    if (step != Step::Connect) {
      ASSERT_TRUE(session.Do(Step::Connect));
    }
    session.ftp.CancelAfter(30);
    EXPECT_FALSE(session.Do(step));
    EXPECT_EQ(session.Error(), kInternetCancelled);
    EXPECT_LT(session.ftp.Now() - session.ftp.cancelled_at, 1000);
    EXPECT_LE(session.ftp.LongestGap(), kLongestGap);
    session.ExpectNothingHalfThere();
  }
}

TEST(FtpFaults, ThatCostNothing) {
  const char* kRows[] = {"greeting",       "long_replies", "late_last_reply", "joined_replies",
                         "closes_between", "idle_421",     "other_address"};
  for (const char* fault : kRows) {
    SCOPED_TRACE(fault);
    FaultySession session(fault);
    EXPECT_TRUE(session.Do(Step::Connect)) << session.Error() << session.Words();
    const std::size_t reports = session.ftp.statuses.size();
    for (int turn = 0; turn < 2; ++turn) {
      EXPECT_TRUE(session.ftp.client->FtpSetCurrentDirectory(session.ftp.connection, "folder")) << session.Error();
      EXPECT_TRUE(session.PutSmall()) << session.Error() << session.Words();
      EXPECT_TRUE(session.Do(Step::Get)) << session.Error() << session.Words();
      EXPECT_EQ(session.local.Read("got").size(), static_cast<std::size_t>(kFileSize));
    }
    for (std::size_t i = reports; i < session.ftp.statuses.size(); ++i) {
      EXPECT_GE(session.ftp.statuses[i].code, kSendingRequest) << "a login made anew is not told";
    }
    EXPECT_LE(session.ftp.LongestGap(), kLongestGap);
  }
}

TEST(FtpFaults, CommandOnALoginJustClosedIsTriedOnceMore) {
  FaultySession session("drops_on_command");
  ASSERT_TRUE(session.Do(Step::Connect));
  EXPECT_TRUE(session.Do(Step::MakeFolder)) << session.Error();
}

TEST(FtpFaults, LoginThatCannotBeMadeAgainEndsTheSession) {
  FaultySession session("closes_for_good");
  ASSERT_TRUE(session.Do(Step::Connect));
  EXPECT_TRUE(session.PutSmall());
  EXPECT_FALSE(session.PutSmall());
  EXPECT_EQ(session.Error(), kInternetExtendedError);
  EXPECT_EQ(session.Words(), "no more");
  const std::vector<int> codes = session.ftp.Codes();
  EXPECT_EQ(std::vector<int>(codes.end() - 3, codes.end()),
            (std::vector<int>{kHandleClosing, kClosingConnection, kConnectionClosed}));
  EXPECT_FALSE(session.PutSmall());
  EXPECT_EQ(session.Error(), kInternetWrongHandleType);
}

TEST(FtpFaults, LoginUnusedForTooLongIsMadeAnew) {
  FaultySession session("closes_for_good", {.idle = 20});
  ASSERT_TRUE(session.Do(Step::Connect));
  for (const std::int64_t end = session.ftp.Now() + 40; session.ftp.Now() < end;) session.ftp.loop.Yield();
  EXPECT_FALSE(session.Do(Step::MakeFolder));
  EXPECT_EQ(session.Words(), "no more") << "the server takes one login only";
}

TEST(FtpFaults, FileCutByAServerWithoutSizesIsNoticedWhenTheListingHasItsSize) {
  FaultySession session("cut_without_size");
  ASSERT_TRUE(session.Do(Step::Connect));
  EXPECT_EQ(session.ftp.SizeOf("file"), kFileSize);
  EXPECT_FALSE(session.Do(Step::Get));
  EXPECT_EQ(session.Error(), kInternetConnectionAborted);
  session.ExpectNothingHalfThere();
}

TEST(FtpFaults, ListingKeepsWhatCanBeReadAndTellsTheRest) {
  FaultySession session("odd_listing");
  ASSERT_TRUE(session.Do(Step::Connect));
  EXPECT_EQ(session.ftp.List("/*.*"), (std::vector<std::string>{"a  b", "folder link/", "link"}));
  std::vector<std::string> skipped;
  for (const InternetStatus& status : session.ftp.statuses) {
    if (status.code == kListingLineSkipped) skipped.push_back(status.text);
  }
  EXPECT_EQ(skipped, (std::vector<std::string>{"what is this?", std::string(200, 'z')}));
}

TEST(FtpFaults, TenThousandEntriesTakeLittleTime) {
  FaultySession session("many_entries");
  ASSERT_TRUE(session.Do(Step::Connect));
  const std::int64_t began = session.ftp.Now();
  EXPECT_EQ(session.ftp.List("/*.*").size(), 10'000U);
  EXPECT_LT(session.ftp.Now() - began, 1000);
}

TEST(FtpFaults, GoodbyeTakesNoLongerThanItsLimit) {
  FaultySession session("quit_hangs");
  ASSERT_TRUE(session.Do(Step::Connect));
  const std::int64_t began = session.ftp.Now();
  session.ftp.client->InternetCloseHandle(session.ftp.connection);
  EXPECT_LT(session.ftp.Now() - began, kShort.goodbye + 200);
  EXPECT_LE(session.ftp.LongestGap(), kLongestGap);
}

TEST(FtpFaults, DestroyedClientLeavesAtOnce) {
  FaultySession session("quit_hangs", {});
  auto client = std::make_unique<CurlInternetClient>(session.ftp.loop);
  FtpLogin login = session.ftp.login;
  login.host = "127.0.0.1";
  login.port = session.server.port();
  ASSERT_NE(client->InternetConnect(client->InternetOpen(""), login), 0);
  const std::int64_t began = session.ftp.Now();
  client.reset();
  EXPECT_LT(session.ftp.Now() - began, 200);
}

TEST(FtpFaults, FullLocalDiskLeavesTheOldFile) {
  FaultySession session("Session");
  ASSERT_TRUE(session.Do(Step::Connect));
  {
    const test::SmallDisk disk(50'000);
    EXPECT_FALSE(session.Do(Step::Get));
  }
  EXPECT_EQ(session.Error(), kInternetExtendedError);
  EXPECT_NE(session.Words().find("cannot be written"), std::string::npos) << session.Words();
  session.ExpectNothingHalfThere();
  EXPECT_TRUE(session.Do(Step::Get)) << "the next one goes well";
}

TEST(FtpFaults, NothingIsSmuggledIn) {
  FaultySession session("Session");
  auto& client = session.ftp.client;
  ASSERT_TRUE(session.Do(Step::Connect));
  for (const std::string& name : {std::string("a\r\nDELE b"), std::string("a\nb"), std::string("a\0b", 3)}) {
    EXPECT_FALSE(client->FtpSetCurrentDirectory(session.ftp.connection, name));
    EXPECT_FALSE(client->FtpCreateDirectory(session.ftp.connection, name));
    EXPECT_FALSE(client->FtpPutFile(session.ftp.connection, session.local.Name("small"), name));
    EXPECT_FALSE(client->FtpGetFile(session.ftp.connection, name, session.local.Name("got")));
    EXPECT_EQ(session.ftp.SizeOf(name), -1);
    EXPECT_EQ(session.ftp.List(name + "/*"), std::vector<std::string>{"failed"});
    EXPECT_EQ(client->GetLastError(), kInternetExtendedError);
    EXPECT_NE(session.Words().find("control characters"), std::string::npos) << session.Words();
    EXPECT_FALSE(session.ftp.Connect(session.server.port(), name));
    EXPECT_FALSE(session.ftp.Connect(session.server.port(), "user", name));
    EXPECT_EQ(client->GetLastError(), kInternetExtendedError);
    ASSERT_TRUE(session.Do(Step::Connect));
  }
}

TEST(FtpFaults, HostsThatCannotBeReached) {
  const std::tuple<const char*, int, int> kRows[] = {{"user@127.0.0.1", 21, kInternetInvalidUrl},
                                                     {"a/b", 21, kInternetInvalidUrl},
                                                     {"", 21, kInternetInvalidUrl},
                                                     {"127.0.0.1", 0, kInternetInvalidUrl},
                                                     {"127.0.0.1", 65536, kInternetInvalidUrl},
                                                     {"127.0.0.1", 1, kInternetCannotConnect},
                                                     {"[::1]", 1, kInternetCannotConnect},
                                                     {"no-such-name.invalid", 21, kInternetNameNotResolved}};
  for (const auto& [host, port, error] : kRows) {
    SCOPED_TRACE(host);
    test::FtpProbe ftp({.connect = 5000});
    ftp.login.host = host;
    ftp.connection = 0;
    ftp.login.port = port;
    EXPECT_EQ(ftp.client->InternetConnect(ftp.session, ftp.login), 0);
    EXPECT_EQ(ftp.client->GetLastError(), error);
    EXPECT_LE(ftp.LongestGap(), kLongestGap);
  }
}

TEST(FtpFaults, HandlerThatThrowsEndsItsCallOnly) {
  // Between curl's steps, and in the wait for a last reply, which is in the middle of one.
  for (const char* fault : {"stall_up", "late_last_reply"}) {
    SCOPED_TRACE(fault);
    FaultySession session(fault);
    ASSERT_TRUE(session.Do(Step::Connect));
    const auto timer = session.ftp.loop.MakeTimer([] { throw RunTimeError("thrown"); });
    timer->Start(50);
    EXPECT_THROW(static_cast<void>(session.Do(Step::Put)), RunTimeError);
    timer->Stop();
    EXPECT_EQ(session.ftp.Codes().back(), kHandleClosing);
    EXPECT_TRUE(session.Do(Step::MakeFolder)) << session.Error() << session.Words();
  }
}

TEST(FtpFaults, HandlersCannotCallIntoACallThatRuns) {
  FaultySession session("late_last_reply");
  ASSERT_TRUE(session.Do(Step::Connect));
  int refused = 0;
  const auto timer = session.ftp.loop.MakeTimer([&] {
    session.ftp.client->InternetCloseHandle(session.ftp.session);
    refused += session.Do(Step::MakeFolder) || session.ftp.client->InternetOpen("") != 0 ? -1000 : 1;
  });
  timer->Start(50);
  EXPECT_TRUE(session.PutSmall());
  EXPECT_GT(refused, 0);
  EXPECT_EQ(session.Error(), kInternetNoError);
}

}  // namespace
}  // namespace corvane
