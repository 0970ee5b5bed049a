#include "curl/ftp_sockets.h"

#include <sys/socket.h>

namespace corvane {

curl_socket_t FtpSockets::Open(const curl_sockaddr& address) {
  const std::lock_guard lock(mutex_);
  sockets_.reserve(sockets_.size() + 1);
  const curl_socket_t made = socket(address.family, address.socktype | SOCK_CLOEXEC, address.protocol);
  if (made != CURL_SOCKET_BAD) sockets_.push_back(made);
  return made;
}

void FtpSockets::Forget(curl_socket_t socket) {
  const std::lock_guard lock(mutex_);
  std::erase(sockets_, socket);
}

void FtpSockets::Cut() {
  const std::lock_guard lock(mutex_);
  for (const curl_socket_t socket : sockets_) shutdown(socket, SHUT_RDWR);
}

}  // namespace corvane
