#include "posix/posix_socket.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "base/status.h"

namespace corvane {
namespace {

constexpr std::int64_t kLookMilliseconds = 20;
/// How long one of several addresses may be silent before the next is tried.
constexpr std::int64_t kAddressMilliseconds = 10'000;
/// What nobody takes is left to the kernel from here on, so that a talkative peer cannot fill the memory.
constexpr std::size_t kMostReceived = 1024 * 1024;

}  // namespace

/// Written by the thread that resolves the name, read once `ready` is set.
struct PosixSocket::Lookup {
  struct Address {
    sockaddr_storage bytes{};
    socklen_t length = 0;
  };
  std::string host;
  std::string service;
  std::vector<Address> addresses;
  std::string error;
  std::atomic<bool> ready{false};

  void Resolve() {
    addrinfo wanted{};
    wanted.ai_socktype = SOCK_STREAM;
    wanted.ai_flags = AI_NUMERICSERV;
    addrinfo* found = nullptr;
    const int result = getaddrinfo(host.c_str(), service.c_str(), &wanted, &found);
    if (result != 0) error = gai_strerror(result);
    for (const addrinfo* each = found; each != nullptr; each = each->ai_next) {
      Address& address = addresses.emplace_back();
      std::memcpy(&address.bytes, each->ai_addr, each->ai_addrlen);
      address.length = each->ai_addrlen;
    }
    if (found != nullptr) freeaddrinfo(found);
    ready = true;
  }
};

PosixSocket::PosixSocket(EventLoop& loop) : loop_(loop), timer_(loop.MakeTimer([this] { Tick(); })) {}

PosixSocket::~PosixSocket() {
  CloseDescriptor();
}

void PosixSocket::SetHandler(std::function<void(SocketEvent event, const std::string& text)> handler) {
  handler_ = std::move(handler);
}

void PosixSocket::Connect(const std::string& host, std::int32_t port) {
  Close();
  peer_ = host + ":" + std::to_string(port);
  state_ = SocketState::ResolvingHost;
  untold_ = true;
  next_address_ = 0;
  last_error_ = 0;
  lookup_ = std::make_shared<Lookup>();
  lookup_->host = host;
  lookup_->service = std::to_string(port);
  timer_->Start(kLookMilliseconds);
  if (host.empty() || host.find('\0') != std::string::npos || port < 1 || port > 65535) {
    lookup_->error = "is no host name with a port from 1 to 65535";
    lookup_->ready = true;
    return;
  }
  try {
    std::thread([lookup = lookup_] { lookup->Resolve(); }).detach();
  } catch (const std::system_error& failure) {
    lookup_->error = failure.what();
    lookup_->ready = true;
  }
}

void PosixSocket::Send(std::string_view data) {
  if (state_ != SocketState::Connected || data.empty()) return;
  outgoing_ += data;
  sending_ = true;
}

std::string PosixSocket::ReceiveAll() {
  return std::exchange(received_, {});
}

void PosixSocket::Close() {
  CloseDescriptor();
  lookup_.reset();
  outgoing_.clear();
  sending_ = false;
  received_.clear();
  if (std::exchange(state_, SocketState::Closed) == SocketState::Closed) return;
  untold_ = true;
  timer_->Start(kLookMilliseconds);
}

void PosixSocket::Tick() {
  if (std::exchange(untold_, false)) return Tell(SocketEvent::StateChanged, peer_);
  switch (state_) {
    case SocketState::ResolvingHost:
      return TakeLookup();
    case SocketState::HostResolved:
      if (!TryNextAddress()) return Fail(Status::FromErrno(peer_, last_error_).text());
      return Enter(SocketState::Connecting, peer_);
    case SocketState::Connecting:
      return CheckConnect();
    case SocketState::Connected:
    case SocketState::PeerClosing:
      if (!SendSome()) ReceiveSome();
      return;
    default:
      timer_->Stop();
  }
}

void PosixSocket::TakeLookup() {
  if (!lookup_->ready) return;
  if (!lookup_->error.empty()) return Fail(peer_ + ": " + lookup_->error);
  Enter(SocketState::HostResolved, peer_);
}

bool PosixSocket::TryNextAddress() {
  CloseDescriptor();
  while (next_address_ < lookup_->addresses.size()) {
    const Lookup::Address& address = lookup_->addresses[next_address_++];
    descriptor_ = socket(address.bytes.ss_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    connect_began_ = loop_.MonotonicMilliseconds();
    const auto* const bytes = reinterpret_cast<const sockaddr*>(&address.bytes);
    if (descriptor_ >= 0 && (connect(descriptor_, bytes, address.length) == 0 || errno == EINPROGRESS)) return true;
    last_error_ = errno;
    CloseDescriptor();
  }
  return false;
}

void PosixSocket::CheckConnect() {
  pollfd ready{descriptor_, POLLOUT, 0};
  if (poll(&ready, 1, 0) > 0) {
    socklen_t length = sizeof last_error_;
    if (getsockopt(descriptor_, SOL_SOCKET, SO_ERROR, &last_error_, &length) != 0) last_error_ = errno;
    if (last_error_ == 0) return Enter(SocketState::Connected, peer_);
  } else {
    const bool more = next_address_ < lookup_->addresses.size();
    if (!more || loop_.MonotonicMilliseconds() - connect_began_ < kAddressMilliseconds) return;
    last_error_ = ETIMEDOUT;
  }
  if (!TryNextAddress()) Fail(Status::FromErrno(peer_, last_error_).text());
}

bool PosixSocket::SendSome() {
  if (!sending_) return false;
  std::size_t done = 0;
  while (done < outgoing_.size()) {
    const ssize_t sent = send(descriptor_, outgoing_.data() + done, outgoing_.size() - done, MSG_NOSIGNAL);
    if (sent < 0 && errno == EINTR) continue;
    if (sent < 0 && errno != EAGAIN) {
      Fail(Status::FromErrno(peer_, errno).text());
      return true;
    }
    if (sent <= 0) break;
    done += static_cast<std::size_t>(sent);
  }
  outgoing_.erase(0, done);
  if (!outgoing_.empty()) return false;
  sending_ = false;
  Tell(SocketEvent::SendComplete, peer_);
  return true;
}

bool PosixSocket::ReceiveSome() {
  if (state_ == SocketState::PeerClosing) return false;
  const std::size_t before = received_.size();
  std::array<char, 16 * 1024> block;
  ssize_t got = 1;
  while (received_.size() < kMostReceived && got > 0) {
    got = recv(descriptor_, block.data(), block.size(), 0);
    if (got < 0 && errno == EINTR)
      got = 1;
    else if (got > 0)
      received_.append(block.data(), static_cast<std::size_t>(got));
  }
  const int error = errno;
  if (received_.size() > before) {
    // The end, if it was seen, is seen again at the next tick.
    Tell(SocketEvent::DataArrived, peer_);
  } else if (got == 0) {
    Enter(SocketState::PeerClosing, peer_);
  } else if (got < 0 && error != EAGAIN) {
    Fail(Status::FromErrno(peer_, error).text());
  } else {
    return false;
  }
  return true;
}

void PosixSocket::Enter(SocketState state, const std::string& text) {
  state_ = state;
  Tell(SocketEvent::StateChanged, text);
}

void PosixSocket::Fail(const std::string& text) {
  CloseDescriptor();
  outgoing_.clear();
  sending_ = false;
  state_ = SocketState::Error;
  Tell(SocketEvent::Error, text);
}

void PosixSocket::Tell(SocketEvent event, const std::string& text) const {
  const auto handler = handler_;  // the handler may set another
  if (handler) handler(event, text);
}

void PosixSocket::CloseDescriptor() {
  if (descriptor_ >= 0) close(std::exchange(descriptor_, -1));
}

}  // namespace corvane
