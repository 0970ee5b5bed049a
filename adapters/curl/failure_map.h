#pragma once

#include <string>

#include "curl/ftp_task.h"
#include "curl/transcript.h"

namespace corvane {

/// Why a call failed.
struct FtpFailure {
  int error = 0;      ///< see `InternetError`
  std::string words;  ///< the adapter's own, instead of the server's last reply
};

/// What the end of a run means to a caller; `error` 0 when it went well.
///
/// The replies are looked at before curl's result, which tells less: it calls a server that says 421 a time-out.
[[nodiscard]] FtpFailure FailureOf(const FtpRun& run, const Transcript& transcript);
/// True when a run that failed met a login that the server had given up, so that a second try may go well.
[[nodiscard]] bool MetClosedLogin(const FtpRun& run, const Transcript& transcript);

}  // namespace corvane
