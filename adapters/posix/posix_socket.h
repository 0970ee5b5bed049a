// A TCP connection by sockets, looked at by a timer of the loop, so that it works with every loop.
//
// Names are resolved on a thread of their own, which may outlive the socket.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/event_loop.h"
#include "platform/tcp_socket.h"

namespace corvane {

/// Each tick of the timer takes one step and tells at most one event, as its last act; so a handler may do anything but
/// destroy the socket.
class PosixSocket : public TcpSocket {
 public:
  /// `loop` must outlive it.
  explicit PosixSocket(EventLoop& loop);
  ~PosixSocket() override;

  void Connect(const std::string& host, std::int32_t port) override;
  void Send(std::string_view data) override;
  [[nodiscard]] std::string ReceiveAll() override;
  void Close() override;
  [[nodiscard]] SocketState State() const override { return state_; }
  void SetHandler(std::function<void(SocketEvent event, const std::string& text)> handler) override;

 private:
  struct Lookup;

  void Tick();
  void TakeLookup();
  /// Begins with the next address that can be tried; false when none is left.
  bool TryNextAddress();
  void CheckConnect();
  /// True when something was told.
  bool SendSome();
  bool ReceiveSome();
  void Enter(SocketState state, const std::string& text);
  void Fail(const std::string& text);
  void Tell(SocketEvent event, const std::string& text) const;
  void CloseDescriptor();

  EventLoop& loop_;
  std::unique_ptr<Timer> timer_;
  std::function<void(SocketEvent, const std::string&)> handler_;
  SocketState state_ = SocketState::Closed;
  bool untold_ = false;  ///< the state was entered in a call, its event is still to come
  std::string peer_;     ///< "host:port", for texts
  std::shared_ptr<Lookup> lookup_;
  std::size_t next_address_ = 0;
  std::int64_t connect_began_ = 0;
  int last_error_ = 0;
  int descriptor_ = -1;
  std::string outgoing_;
  bool sending_ = false;
  std::string received_;
};

}  // namespace corvane
