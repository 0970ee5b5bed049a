#pragma once

#include <functional>
#include <map>
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
    if (!stored) return false;
    std::string& contents = files[Full(remote)];
    sent_[Full(remote)] = {contents, mood == Mood::Well};
    if (mood == Mood::Well) return true;
    if (mood == Mood::Loses) contents.clear();
    contents.resize(contents.size() / 2);
    return Fail(mood == Mood::Drops ? kInternetConnectionReset : kInternetExtendedError);
  }
  /// A file that is neither what was sent last under its name nor, where that failed, a part of it; empty for none.
  [[nodiscard]] std::string StrangeFile() const {
    for (const auto& [name, contents] : files) {
      const auto found = sent_.find(name);
      if (found == sent_.end() || !found->second.contents.starts_with(contents)) return name;
      if (found->second.well && found->second.contents != contents) return name;
    }
    return {};
  }
  Mood mood = Mood::Well;

 private:
  struct Sent {
    std::string contents;
    bool well = false;
  };
  /// Calls of the program wait for the network; the loop runs meanwhile.
  void TakeTime(std::int64_t milliseconds) {
    bool over = false;
    const auto timer = loop_.MakeTimer([&over] { over = true; });
    timer->Start(milliseconds);
    while (!over) loop_.Yield();
  }

  YearLoop& loop_;
  std::map<std::string, Sent> sent_;
};

}  // namespace corvane::test
