// One outgoing TCP connection.
//
// Calls return at once; what happens is told to the one handler, in the loop's thread, inside `Yield` and `Poll`.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace corvane {

enum class SocketState : std::int32_t {
  Closed = 0,
  Open = 1,
  Listening = 2,
  ConnectionPending = 3,
  ResolvingHost = 4,
  HostResolved = 5,
  Connecting = 6,
  Connected = 7,
  PeerClosing = 8,
  Error = 9,
};

enum class SocketEvent : std::uint8_t { StateChanged, SendComplete, DataArrived, Error };

class TcpSocket {
 public:
  virtual ~TcpSocket() = default;
  TcpSocket() = default;
  TcpSocket(const TcpSocket&) = delete;
  TcpSocket& operator=(const TcpSocket&) = delete;

  /// Begins to connect; a former connection is closed first.
  virtual void Connect(const std::string& host, std::int32_t port) = 0;
  /// Queues `data`; `SendComplete` follows when the kernel has all of it. Nothing happens unless it is connected.
  virtual void Send(std::string_view data) = 0;
  /// Takes what has arrived so far.
  [[nodiscard]] virtual std::string ReceiveAll() = 0;
  virtual void Close() = 0;
  [[nodiscard]] virtual SocketState State() const = 0;
  /// `text` says what happened, for the log.
  virtual void SetHandler(std::function<void(SocketEvent event, const std::string& text)> handler) = 0;
};

}  // namespace corvane
