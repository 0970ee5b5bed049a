#include "curl/socket_state.h"

#include <linux/sockios.h>
#include <linux/tcp.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

namespace corvane {

namespace {

bool ReadInformation(int socket, tcp_info& information) {
  socklen_t length = sizeof information;
  return socket >= 0 && getsockopt(socket, IPPROTO_TCP, TCP_INFO, &information, &length) == 0;
}

}  // namespace

std::int64_t UnsentBytes(int socket) {
  int unsent = 0;
  return socket >= 0 && ioctl(socket, SIOCOUTQ, &unsent) == 0 ? unsent : 0;
}

std::int64_t TakenBytes(int socket) {
  tcp_info information{};
  int waiting = 0;
  if (!ReadInformation(socket, information) || ioctl(socket, SIOCINQ, &waiting) != 0) return 0;
  return static_cast<std::int64_t>(information.tcpi_bytes_received) - waiting;
}

bool IsOver(int socket) {
  constexpr int kClosed = 7;  // TCP_CLOSE, whose name is in a header that this one excludes
  tcp_info information{};
  return !ReadInformation(socket, information) || information.tcpi_state == kClosed;
}

bool WaitReadable(int socket, int milliseconds) {
  pollfd waiting{socket, POLLIN, 0};
  return poll(&waiting, 1, milliseconds) != 0;
}

}  // namespace corvane
