#pragma once

#include <mutex>
#include <vector>

#include <curl/curl.h>

namespace corvane {

/// The sockets that curl has open. Any thread may call: curl opens and closes them in the one that drives it, and the
/// loop's cuts them.
class FtpSockets {
 public:
  /// A socket for a connection to `address`, `CURL_SOCKET_BAD` on failure; who closes it makes it forgotten.
  [[nodiscard]] curl_socket_t Open(const curl_sockaddr& address);
  void Forget(curl_socket_t socket);
  /// Ends all of them for both directions: what waits for one returns at once, and curl can say nothing more.
  void Cut();

 private:
  std::mutex mutex_;
  std::vector<curl_socket_t> sockets_;
};

}  // namespace corvane
