#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "platform/internet_client.h"

namespace corvane {

/// The handles of the client's one session, and the one way on which a report reaches the session's handler.
///
/// Used in the loop's thread only.
class InternetSession {
 public:
  [[nodiscard]] InternetHandle NewHandle() { return ++last_handle_; }
  void SetHandler(InternetClient::StatusHandler handler) { handler_ = std::move(handler); }
  /// Tells the handler what happens; it may do anything but make a call of the client that yields.
  void Tell(InternetStatusCode code, const std::string& text = "", std::int64_t bytes = 0) {
    if (code == kHandleCreated) transfer_ = NewHandle();
    InternetHandle about = connection != 0 ? connection : session;
    if (code == kHandleCreated || code == kHandleClosing) about = transfer_;
    // The handler may be taken away while it runs.
    if (const InternetClient::StatusHandler handler = handler_) handler({about, code, text, bytes});
  }

  InternetHandle session = 0;
  InternetHandle connection = 0;

 private:
  InternetHandle last_handle_ = 0;
  InternetHandle transfer_ = 0;
  InternetClient::StatusHandler handler_;
};

}  // namespace corvane
