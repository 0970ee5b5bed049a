#include "rounds/server_tries.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace corvane {
namespace {

constexpr std::array<std::int64_t, 2> kWaits = {5'000, 30'000};  // milliseconds
/// So many files one behind the other, and the server is taken to be away.
constexpr int kMostInRow = 3;
constexpr std::array kLineErrors = {kInternetTimeout, kInternetNameNotResolved, kInternetCannotConnect,
                                    kInternetConnectionAborted, kInternetConnectionReset};

bool IsOfTheLine(int error) {
  return std::find(kLineErrors.begin(), kLineErrors.end(), error) != kLineErrors.end();
}

}  // namespace

void ServerTries::Begin() {
  waited_ = 0;
  failed_in_row_ = 0;
  ended_ = false;
}

bool ServerTries::Run(const std::function<bool()>& av_Transfer) {
  while (!av_Transfer()) {
    if (!MayTryAgain()) return false;
  }
  failed_in_row_ = 0;
  return true;
}

bool ServerTries::MayTryAgain() {
  if (!GoesOn(p_.form, p_.flags) || Cancelled(p_.link, p_.flags)) return false;
  const int error = p_.ftp.LastErrorNumber();
  ended_ = error >= kInternetWrongUserName && error <= kInternetLoginFailure;
  if (ended_) return false;
  if (!IsOfTheLine(error)) {
    failed_in_row_ = 0;
    return false;
  }
  if (waited_ == kWaits.size()) {
    ended_ = ++failed_in_row_ == kMostInRow;
    return false;
  }
  p_.pauser.Pause(kWaits[waited_++]);
  return !Cancelled(p_.link, p_.flags);
}

}  // namespace corvane
