#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "transfer/ftp_error_text.h"
#include "transfer/server_address.h"
#include "transfer/transfer_progress.h"

namespace corvane::test {
namespace {

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

}  // namespace
}  // namespace corvane::test
