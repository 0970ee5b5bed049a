// What curl calls in the middle of a run.
#include <array>
#include <exception>
#include <string>
#include <string_view>

#include <netdb.h>
#include <sys/socket.h>
#include <unistd.h>

#include "curl/ftp_channel.h"
#include "curl/run_under_way.h"
#include "curl/socket_state.h"

namespace corvane {
namespace {

std::string AddressText(const curl_sockaddr& address) {
  std::array<char, NI_MAXHOST> text{};
  const bool known =
      getnameinfo(&address.addr, address.addrlen, text.data(), text.size(), nullptr, 0, NI_NUMERICHOST) == 0;
  return known ? text.data() : "";
}

}  // namespace

template <class Result, class Body>
Result FtpChannel::Guarded(void* self, Result failure, Body body) noexcept {
  auto& channel = *static_cast<FtpChannel*>(self);
  try {
    return body(channel);
  } catch (...) {
    if (channel.run_ != nullptr) channel.run_->problem = std::current_exception();
    channel.sockets_.Cut();
    return failure;
  }
}

int FtpChannel::OnDebug(CURL*, curl_infotype type, char* bytes, std::size_t length, void* self) {
  return Guarded(self, 0, [type, line = std::string_view(bytes, length)](FtpChannel& channel) {
    if (type == CURLINFO_HEADER_OUT) channel.transcript_.AddCommand(line);
    if (type != CURLINFO_HEADER_IN) return 0;
    channel.transcript_.AddReplyLine(line);
    if (channel.run_ != nullptr) channel.run_->parsed += static_cast<std::int64_t>(line.size());
    return 0;
  });
}

std::size_t FtpChannel::OnRead(char* buffer, std::size_t size, std::size_t count, void* self) {
  return Guarded(self, std::size_t{CURL_READFUNC_ABORT}, [buffer, length = size * count](FtpChannel& channel) {
    FtpData* data = channel.run_ != nullptr ? channel.run_->task.data : nullptr;
    const std::ptrdiff_t read = data != nullptr ? data->Read(buffer, length) : -1;
    return read < 0 ? CURL_READFUNC_ABORT : static_cast<std::size_t>(read);
  });
}

std::size_t FtpChannel::OnWrite(char* bytes, std::size_t size, std::size_t count, void* self) {
  return Guarded(self, std::size_t{0}, [bytes, length = size * count](FtpChannel& channel) {
    FtpData* data = channel.run_ != nullptr ? channel.run_->task.data : nullptr;
    if (data == nullptr) return length;  // curl's own words about a file whose size is asked for
    if (!data->Write({bytes, length})) return std::size_t{0};
    channel.run_->received += static_cast<std::int64_t>(length);
    return length;
  });
}

curl_socket_t FtpChannel::OnOpenSocket(void* self, curlsocktype, curl_sockaddr* address) {
  return Guarded(self, curl_socket_t{CURL_SOCKET_BAD}, [address](FtpChannel& channel) {
    const bool is_login = channel.run_ != nullptr && channel.run_->task.kind == FtpTask::Kind::Login;
    if (is_login) {
      channel.run_->address = AddressText(*address);
      channel.run_->had_address = true;
    }
    const curl_socket_t made = channel.sockets_.Open(*address);
    if (channel.run_ != nullptr && !is_login) channel.run_->data = made;
    return made;
  });
}

int FtpChannel::OnCloseSocket(void* self, curl_socket_t socket) {
  return Guarded(self, 0, [socket](FtpChannel& channel) { return channel.CloseSocket(socket); });
}

int FtpChannel::CloseSocket(curl_socket_t socket) {
  sockets_.Forget(socket);
  if (socket == control_) control_ = CURL_SOCKET_BAD;
  const bool is_data = run_ != nullptr && socket == run_->data;
  return is_data ? CloseData(socket) : close(socket);
}

int FtpChannel::CloseData(curl_socket_t socket) {
  const bool reply_follows = transcript_.Last().code / 100 == 1 && !IsOver(socket);
  // What the kernel still holds of an upload tells whether a slow line is alive.
  run_->draining = reply_follows && run_->task.kind == FtpTask::Kind::Upload && UnsentBytes(socket) > 0;
  int result = 0;
  if (run_->draining) {
    result = shutdown(socket, SHUT_WR);
  } else {
    run_->data = CURL_SOCKET_BAD;
    result = close(socket);
  }
  if (reply_follows && !login_.encrypted) WaitForLastReply();
  return result;
}

}  // namespace corvane
