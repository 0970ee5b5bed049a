#pragma once

#include <functional>
#include <string>

#include "base/dates.h"
#include "field_year/year_loop.h"
#include "support/fake_transfer.h"

namespace corvane::test {

/// An FTP server with moods. What it holds after a failed transfer is a part of what was sent.
class FtpSite : public FakeInternet {
 public:
  enum class Mood { Well, Away, Refuses, Drops, Full, Loses };

  explicit FtpSite(YearLoop& loop) : loop_(loop) {
    on_call = [this](const std::string&) {
      calls.clear();
      loop_.Check();
    };
  }

  InternetHandle InternetConnect(InternetHandle session, const FtpLogin& login) override {
    TakeTime(mood == Mood::Away ? 15000 : 50);
    if (mood == Mood::Away) return Fail(kInternetCannotConnect) ? 1 : 0;
    if (mood == Mood::Refuses) return Fail(kInternetLoginFailure) ? 1 : 0;
    return FakeInternet::InternetConnect(session, login);
  }
  bool FtpPutFile(InternetHandle connection, const std::string& local, const std::string& remote) override {
    TakeTime(20);
    const bool stored = FakeInternet::FtpPutFile(connection, local, remote);
    if (!stored || mood == Mood::Well) return stored;
    std::string& contents = files[Full(remote)];
    if (mood == Mood::Loses) contents.clear();
    contents.resize(contents.size() / 2);
    return Fail(mood == Mood::Drops ? kInternetConnectionReset : kInternetExtendedError);
  }
  Mood mood = Mood::Well;

 private:
  /// Calls of the program wait for the network; the loop runs meanwhile.
  void TakeTime(std::int64_t milliseconds) {
    bool over = false;
    const auto timer = loop_.MakeTimer([&over] { over = true; });
    timer->Start(milliseconds);
    while (!over) loop_.Yield();
  }

  YearLoop& loop_;
};

}  // namespace corvane::test
